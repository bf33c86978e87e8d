// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserWindow.h"

#include "BrowserBuilder.h"
#include "FolderTreeModel.h"
#include "ListingDriver.h"
#include "ResizeRule.h"
#include "actions/ContextMenus.h"
#include "actions/GoToCell.h"
#include "actions/ItemActions.h"
#include "actions/SaveActions.h"
#include "common/NativeText.h"
#include "controls/ClickableFrame.h"
#include "controls/ClickableLabel.h"
#include "controls/DriveCaptionLabel.h"
#include "controls/DriveSelector.h"
#include "panes/ResultPanes.h"
#include "platform/ControlPurposes.h"
#include "platform/MessageService.h"
#include "platform/ProgramEnd.h"
#include "platform/Twips.h"
#include "search/SearchSection.h"
#include "volumes/DriveCaption.h"
#include "volumes/VolumeService.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeView>

namespace {

const QString ShowFileNames = QStringLiteral("Show File Names only");
const QString HideFileNames = QStringLiteral("Hide File Names only");
const QString ExecutionTime = QStringLiteral("Execution Time in msec");
const QString PleaseWait = QStringLiteral(" Pl wait... ");

} // namespace

BrowserWindow::BrowserWindow(const BrowserFlavour& flavour, const Services& services, QWidget* optionsWindow)
    : m_flavour(flavour), m_services(services), m_options(optionsWindow)
{
    setObjectName(flavour.texts.objectName);
    setWindowTitle(flavour.texts.caption);
    m_ui = BrowserBuilder::build(this, m_flavour, *m_services.volumes);
    fitLabel2();
    fillDrives();
    wireNavigation();
    wireWindowControls();
    m_resizeRule = std::make_unique<ResizeRule>(*this, m_flavour, m_ui);

    const BrowserBehaviour& behaviour = m_flavour.behaviour;
    m_panes = new ResultPanes(behaviour, m_ui.panes, m_ui.paths, m_ui.status, this);
    m_driver = new ListingDriver(behaviour, m_ui.navigation, m_ui.status, m_ui.goTo, *m_panes, m_services, this);
    connect(m_ui.navigation.List_Folders, &QPushButton::clicked, m_driver, &ListingDriver::List_Folders_Click);
    connect(m_driver, &ListingDriver::finished, this, &BrowserWindow::scanFinished);
    auto* saves = new SaveActions(behaviour, m_ui.navigation, m_ui.status, *m_panes, m_services, this);
    m_actions = new ItemActions(behaviour, m_ui.panes, m_ui.paths, m_ui.mode, m_ui.player, *m_panes, m_services, this);
    new ContextMenus(m_flavour, m_ui.menus, m_ui.panes, m_ui.paths, *m_panes, *m_actions, *saves, m_services, this);
    m_search = new SearchSection(behaviour, m_ui.search, m_ui.navigation, m_ui.paths, m_ui.status, *m_panes, *m_actions,
                                 m_services, this);
    if (behaviour.hasGoToFrame)
        m_goTo = new GoToCell(m_ui.goTo, m_ui.panes, *m_panes, m_services, *this, this);
    ControlPurposes::nameBrowserControls(this, m_flavour);
    Form_Load();
}

void BrowserWindow::wireNavigation()
{
    const NavigationControls& nav = m_ui.navigation;
    m_dirModel = new FolderTreeModel(this);
    nav.Dir1->setModel(m_dirModel);

    connect(nav.Drive1, &QComboBox::currentIndexChanged, this, [this] { Drive1_Change(); });
    connect(nav.Dir1->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        if (current.isValid())
            setDir1Path(m_dirModel->displayPath(current));
    });
    connect(nav.Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    // An opened folder shows the folders made in it since it was first read.
    connect(nav.Dir1, &QTreeView::expanded, m_dirModel, &FolderTreeModel::readAgain);
}

void BrowserWindow::wireWindowControls()
{
    connect(m_ui.paths.Label8, &ClickableLabel::clicked, this, [this] { Label8_Click(); });
    connect(m_ui.status.Label11, &ClickableLabel::doubleClicked, this, [this] { Label11_DblClick(); });
    connect(m_ui.mode.Option1, &QRadioButton::clicked, this, [this] { Option1_Click(); });
    connect(m_ui.mode.Option2, &QRadioButton::clicked, this, [this] { Option2_Click(); });
    connect(m_ui.mode.Image6, &ClickableLabel::clicked, this, [this] { Image6_Click(); });
    connect(m_ui.mode.Image2, &ClickableLabel::clicked, this, [this] { Image2_Click(); });
    for (ClickableLabel* label : m_ui.player.clickToClose)
        connect(label, &ClickableLabel::clicked, this, [this] { playerFrame_Click(); });
    connect(m_ui.player.playerFrame, &ClickableFrame::clicked, this, [this] { playerFrame_Click(); });
}

BrowserWindow::~BrowserWindow() = default;

void BrowserWindow::fillDrives()
{
    const QSignalBlocker block(m_ui.navigation.Drive1);
    m_ui.navigation.Drive1->refresh();
    // The selector starts on the drive of the current folder, as the folder tree starts in that folder.
    const int current = m_ui.navigation.Drive1->findText(m_services.volumes->volumeOf(QDir::currentPath()).driveText());
    m_ui.navigation.Drive1->setCurrentIndex(current >= 0 ? current : 0);
}

void BrowserWindow::fitLabel2()
{
    // The path label grows with its text, starting from its design width.
    QLabel* label = m_ui.navigation.Label2;
    const int width = qMax(Twips::toPx(m_flavour.layout.rect(label->objectName()).width()), label->sizeHint().width());
    label->resize(width, label->height());
}

// --- Window load, folder and drive change -------------------------------------------------------------------

void BrowserWindow::Form_Load()
{
    const Volume start = m_services.volumes->volumeOf(QDir::currentPath());
    m_dirModel->setRootPath(NativeText::fromDisplay(start.root));
    // The tree reports the new current folder back; setDir1Path ignores it because the path is already set.
    m_dir1Path = QDir::currentPath();
    m_ui.navigation.Dir1->setCurrentIndex(m_dirModel->index(NativeText::fromDisplay(m_dir1Path)));
    Dir1_Change();
    m_ui.navigation.CreateTextFiles->setEnabled(false);
}

void BrowserWindow::setDir1Path(const QString& path)
{
    if (path == m_dir1Path)
        return;
    m_dir1Path = path;
    const QModelIndex index = m_dirModel->index(NativeText::fromDisplay(path));
    m_ui.navigation.Dir1->setCurrentIndex(index);
    m_ui.navigation.Dir1->scrollTo(index);
    Dir1_Change();
}

void BrowserWindow::Dir1_Change()
{
    m_ui.navigation.Label2->setText(m_dir1Path);
    fitLabel2();
    resetResults();
    ShowDriveCaption();
    showBannerHideGoTo();
}

// Everything a listing fills, back to the state before any listing.
void BrowserWindow::resetResults()
{
    clearPanes();
    for (int i : {0, 1, 3, 4, 6, 2})
        m_ui.status.Label1[i]->setText(QString());
    m_ui.paths.Text1->setText(QString());
    m_ui.paths.Text2->setText(QString());
    m_ui.status.Label1[5]->setText(QString());
    m_ui.navigation.CreateTextFiles->setEnabled(false);
    m_ui.navigation.Label9Com->setEnabled(false);
    m_ui.status.Label11->setText(ExecutionTime);
    m_ui.navigation.List_Folders->setEnabled(true);
    if (m_search)
        m_search->reset();
}

void BrowserWindow::clearPanes()
{
    m_panes->clear();
}

std::shared_ptr<const ScanResult> BrowserWindow::scanResult() const
{
    return m_panes->result();
}

void BrowserWindow::listResult(std::shared_ptr<const ScanResult> walked)
{
    m_driver->list(std::move(walked));
}

int BrowserWindow::GetRClickedItem(QWidget* MyList, float X, float Y) const
{
    return m_panes->GetRClickedItem(MyList, X, Y);
}

void BrowserWindow::showBannerHideGoTo()
{
    if (!m_flavour.behaviour.hasGoToFrame)
        return;
    m_ui.goTo.Image1->show();
    m_ui.goTo.Frame5->hide();
}

RuntimeError::Number BrowserWindow::changeDrive(const QString& driveText)
{
    bool found = false;
    const Volume v = m_services.volumes->find(driveText, &found);
    if (!found || !v.ready)
        return RuntimeError::DeviceUnavailable;
    return QDir::setCurrent(v.root) ? RuntimeError::None : RuntimeError::DeviceUnavailable;
}

RuntimeError::Number BrowserWindow::setDir1PathToDrive(const QString& driveText)
{
    bool found = false;
    const Volume v = m_services.volumes->find(driveText, &found);
    if (!found || !v.ready)
        return RuntimeError::DeviceUnavailable;
    if (!QDir(v.root).exists())
        return RuntimeError::PathNotFound;
    if (m_dirModel->rootPath() != NativeText::fromDisplay(v.root))
        m_dirModel->setRootPath(NativeText::fromDisplay(v.root));
    setDir1Path(v.root);
    return RuntimeError::None;
}

void BrowserWindow::Drive1_Change()
{
    // Every step runs whatever the one before it did. A drive without a medium fails each step that touches
    // it, so the window ends with the tree hidden and the listing button disabled, and says nothing.
    auto trap = [this](RuntimeError::Number error) {
        if (error == RuntimeError::DeviceUnavailable) {
            m_ui.navigation.Dir1->hide();
            m_ui.navigation.List_Folders->setEnabled(false);
        }
    };
    const QString drive = m_ui.navigation.Drive1->currentText();
    trap(changeDrive(drive));
    m_ui.navigation.Dir1->show();
    m_ui.navigation.List_Folders->setEnabled(true);
    trap(setDir1PathToDrive(drive));
    Dir1_Change();
    resetResults();
    trap(setDir1PathToDrive(m_driveText));
    ShowDriveCaption();
    showBannerHideGoTo();
}

// --- Drive caption ------------------------------------------------------------------------------------------

QString BrowserWindow::DriveTypeInfo(const QString& sDrive) const
{
    return DriveCaption::driveTypeInfo(m_services.volumes->find(sDrive).type);
}

QString BrowserWindow::GetDriveName(const QString& driveLetter) const
{
    return DriveCaption::getDriveName(*m_services.volumes, driveLetter);
}

void BrowserWindow::ShowDriveCaption()
{
    m_driveText = m_ui.navigation.Drive1->currentText();
    // Where Windows takes a drive letter, a volume is named here by its root.
    bool found = false;
    const Volume v = m_services.volumes->find(m_driveText, &found);
    const QString type = DriveTypeInfo(found ? v.root : m_driveText);
    const QString label = GetDriveName(m_driveText);
    // The builder makes Label4(3) a caption label, which keeps the drive kind readable however long the mount.
    static_cast<DriveCaptionLabel*>(m_ui.status.Label4[3])->setCaption(DriveCaption::caption(m_driveText, type, label));
}

void BrowserWindow::Command1_Click()
{
    bool found = false;
    const Volume v = m_services.volumes->find(m_ui.navigation.Drive1->currentText(), &found);
    m_services.messages->message(QStringLiteral("The drive is of the type ") +
                                     DriveTypeInfo(found ? v.root : m_ui.navigation.Drive1->currentText()),
                                 MessageStyle::Plain);
}

// --- Mode, toggle, pictures, exits ---------------------------------------------------------------------------

bool BrowserWindow::openMode() const
{
    return m_ui.mode.Option1->isChecked();
}

void BrowserWindow::Label8_Click()
{
    if (m_ui.paths.Label8->text() == ShowFileNames) {
        setOuterWidth(m_flavour.layout.wideWidth);
        m_ui.paths.Label8->setText(HideFileNames);
    } else {
        setOuterWidth(m_flavour.layout.narrowWidth);
        m_ui.paths.Label8->setText(ShowFileNames);
    }
}

bool BrowserWindow::hasDesignSize() const
{
    return !(windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen));
}

void BrowserWindow::showFileNames()
{
    setOuterWidth(m_flavour.layout.wideWidth);
    m_ui.paths.Label8->setText(HideFileNames);
}

void BrowserWindow::setOuterWidth(int twips)
{
    const int frame = frameGeometry().width() - geometry().width();
    resize(Twips::toPx(twips) - frame, height());
}

void BrowserWindow::Option1_Click()
{
    m_services.messages->message(
        QStringLiteral("By choosing this option, you can directly open any FILE/ FOLDER from\r\n"
                       "the generated FILE/ FOLDER lists item."),
        MessageStyle::Information);
}

void BrowserWindow::Option2_Click()
{
    m_services.messages->message(QStringLiteral("By choosing this option, you can locate any FILE/ FOLDER by double\r\n"
                                                "clicking the generated FILE/ FOLDER lists item."),
                                 MessageStyle::Information);
}

void BrowserWindow::Image2_Click()
{
    m_services.messages->message(QStringLiteral("This Software can be used to create text files & display:\r\n"
                                                "\r\n"
                                                "1. LIST OF FOLDERS WITH THEIR SIZE\r\n"
                                                "2. LIST OF FOLDERS WITH THEIR PATH\r\n"
                                                "3. LIST OF FILES IN FOLDERS/ SUB FOLDERS\r\n"
                                                "4. LIST OF ALL FILES WITH THEIR PATH \r\n"
                                                "5. SEARCH FACILTY FOR FILES AND FOLDERS\r\n"
                                                "6. OPTION FOR OPENING FILES DIRECTLY FROM THE FILE LISTS\r\n"
                                                "\r\n"
                                                "Free software under the GNU GPL v3 or later, with NO WARRANTY.\r\n"
                                                "Written by the Quillary developers.\r\n"
                                                "Email: hello@quillary.example\r\n"
                                                "\tWeb: https://www.quillary.example\r\n"
                                                "Download the latest version from our website.\r\n"),
                                 MessageStyle::Information);
}

void BrowserWindow::playerFrame_Click()
{
    m_actions->closePlayer();
}

void BrowserWindow::Image6_Click()
{
    hide();
    if (m_options)
        m_options->show();
}

void BrowserWindow::Label11_DblClick()
{
    if (m_ui.status.Label11->text() == PleaseWait) {
        m_driver->cancel();
        m_services.programEnd->end();
    }
}

void BrowserWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    m_driver->cancel();
    m_services.programEnd->end();
}

// --- Resize rule ----------------------------------------------------------------------------------------------

void BrowserWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (m_resizeRule)
        m_resizeRule->apply();
}

void BrowserWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        if (m_resizeRule)
            m_resizeRule->apply();
}
