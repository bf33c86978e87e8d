// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "BrowserControls.h"
#include "BrowserFlavour.h"
#include "common/RuntimeError.h"
#include "platform/Services.h"

#include <QPointer>
#include <QWidget>
#include <memory>

class DriveSelector;
class FolderTreeModel;
class GoToCell;
class ItemActions;
class ListingDriver;
class ResultPanes;
class ScanResult;
class SearchSection;

// The browser window, in either flavour (ShortBrowser with list boxes, LongBrowser with grids): the drive
// selector and folder tree, the result panes and their status labels, the Open/Locate mode and the ways back
// to Options and out of the program. The listing and the actions on its results build on the controls here.
class BrowserWindow : public QWidget
{
    Q_OBJECT
public:
    BrowserWindow(const BrowserFlavour& flavour, const Services& services, QWidget* optionsWindow);
    ~BrowserWindow() override;

    const BrowserFlavour& flavour() const { return m_flavour; }
    const BrowserControls& controls() const { return m_ui; }

    // The last drive text the drive selector gave.
    QString driveText() const { return m_driveText; }
    // The folder tree's path (Dir1.Path), and setting it, which runs the folder change when it differs.
    QString dir1Path() const { return m_dir1Path; }
    void setDir1Path(const QString& path);
    // True when "Open" is the double-click mode, false for "Locate".
    bool openMode() const;

    // The result panes, with the scan result they show (null before a listing and after a folder change).
    ResultPanes& panes() const { return *m_panes; }
    std::shared_ptr<const ScanResult> scanResult() const;
    // A listing whose walk is over as soon as it starts, with `walked` as its outcome.
    void listResult(std::shared_ptr<const ScanResult> walked);
    int GetRClickedItem(QWidget* MyList, float X, float Y) const;

    QString DriveTypeInfo(const QString& sDrive) const;
    QString GetDriveName(const QString& driveLetter) const;
    void ShowDriveCaption();

    // The wide state of the file-names toggle: the window at 13,560 twips, Label8 offering to hide the names.
    void showFileNames();
    ItemActions& actions() const { return *m_actions; }
    SearchSection& search() const { return *m_search; }

signals:
    // A listing has ended: panes, labels and buttons show its outcome.
    void scanFinished();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void buildWindow();
    void buildNavigation();
    void buildPanes();
    void buildPathFrame();
    void buildModeAndPictures();
    void buildSearchSection();
    void buildPlayerFrame();
    void buildGoToFrame();
    void buildMenus();
    void fillDrives();
    QRect designRect(const QString& name) const;

    void Form_Load();
    void Dir1_Change();
    void Drive1_Change();
    void resetResults();
    void clearPanes();
    void showBannerHideGoTo();
    RuntimeError::Number changeDrive(const QString& driveText);
    RuntimeError::Number setDir1PathToDrive(const QString& driveText);
    void Label8_Click();
    void Option1_Click();
    void Option2_Click();
    void Image2_Click();
    void Image6_Click();
    void playerFrame_Click();
    void Label11_DblClick();
    void Command1_Click();
    void applyLayout();
    void stretchToWindow();
    void setOuterWidth(int twips);
    void fitLabel2();

    const BrowserFlavour& m_flavour;
    Services m_services;
    QPointer<QWidget> m_options;
    BrowserControls m_ui;
    FolderTreeModel* m_dirModel = nullptr;
    DriveSelector* m_drives = nullptr;
    ResultPanes* m_panes = nullptr;
    ListingDriver* m_driver = nullptr;
    ItemActions* m_actions = nullptr;
    SearchSection* m_search = nullptr;
    GoToCell* m_goTo = nullptr;
    QString m_driveText;
    QString m_dir1Path;
    bool m_applyingLayout = false;
    // Where the stretched controls stood before the window was maximised, to put them back exactly.
    QList<QPair<QPointer<QWidget>, QRect>> m_normalPlaces;
};
