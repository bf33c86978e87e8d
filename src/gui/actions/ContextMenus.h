// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "CopyActions.h"
#include "controls/MenuControls.h"
#include "controls/PaneControls.h"
#include "controls/PathControls.h"
#include "flavour/BrowserFlavour.h"
#include "platform/Services.h"

#include <QObject>
#include <QPoint>
#include <array>
#include <functional>

class ItemActions;
class QAbstractItemView;
class QMenu;
class ResultPanes;
class SaveActions;

// The two pop-up menus of a browser window: mnuPopUp2 on the folder-name pane (List2 / MSFlexGrid2) and mnuPopUp
// on the file-path pane (List3 / MSFlexGrid3), shown by a right-click, with their entries' actions and
// information messages.
class ContextMenus : public QObject
{
    Q_OBJECT
public:
    ContextMenus(const BrowserFlavour& flavour, const MenuControls& menus, const PaneControls& paneControls,
                 const PathControls& paths, ResultPanes& panes, ItemActions& actions, SaveActions& saves,
                 const Services& services, QObject* parent);

    // The mouse-down on the folder pane (2) or the file pane (3); X and Y in twips within the pane.
    void pane_MouseDown(int pane, Qt::MouseButton Button, float X, float Y, const QPoint& globalPos);

    // Folder menu.
    void OpenFolder();
    void LocateThisFolder();
    void ShowSerialNo2();
    void ShowFolderPath();
    // File menu.
    void OpenThisFile();
    void LocateThisFile();
    void ShowSerialNo();
    void AbsoluteFileName();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QString partnerEntry(int partner, int selected) const;
    void showSerialNumber(int pane);
    QString folderPath() const;
    QString fileName() const;
    void bind(QMenu* menu, const std::array<std::function<void()>, 6>& handlers);

    const BrowserFlavour& m_flavour;
    const MenuControls& m_menus;
    const PathControls& m_paths;
    ResultPanes& m_panes;
    ItemActions& m_actions;
    SaveActions& m_saves;
    Services m_services;
    CopyActions m_copies;
    std::array<QAbstractItemView*, 4> m_views{}; // the panes 2 and 3 at their numbers
};
