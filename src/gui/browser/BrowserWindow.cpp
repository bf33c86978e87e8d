// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserWindow.h"

#include "ClassicLook.h"
#include "ClickableFrame.h"
#include "ClickableLabel.h"
#include "DriveCaptionLabel.h"
#include "DriveSelector.h"
#include "FolderTreeModel.h"
#include "ListingDriver.h"
#include "Pictures.h"
#include "ResultGrid.h"
#include "ResultList.h"
#include "ResultPanes.h"
#include "SaveActions.h"
#include "actions/ContextMenus.h"
#include "actions/GoToCell.h"
#include "actions/ItemActions.h"
#include "common/NativeText.h"
#include "common/RuntimeError.h"
#include "export/CollectionFolder.h"
#include "platform/ControlPurposes.h"
#include "platform/MediaPlayer.h"
#include "platform/MessageService.h"
#include "platform/ProgramEnd.h"
#include "platform/Twips.h"
#include "search/SearchSection.h"
#include "volumes/DriveCaption.h"
#include "volumes/VolumeService.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QHash>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTreeView>

namespace {

const QString ShowFileNames = QStringLiteral("Show File Names only");
const QString HideFileNames = QStringLiteral("Hide File Names only");
const QString ExecutionTime = QStringLiteral("Execution Time in msec");
const QString PleaseWait = QStringLiteral(" Pl wait... ");
constexpr int NarrowWidth = 10530;
constexpr int WideWidth = 13560;

const QColor LightYellow(0xFF, 0xFF, 0xC0);
const QColor LightCyan(0xC0, 0xFF, 0xFF);

// Design places in twips, relative to the control's parent. The flavour's own places are added on top.
QHash<QString, QRect> sharedPlaces()
{
    return {
        {QStringLiteral("Label3"), {105, 105, 1485, 240}},
        {QStringLiteral("Label2"), {1605, 105, 690, 240}},
        {QStringLiteral("Label4_3"), {105, 450, 2265, 195}},
        {QStringLiteral("Drive1"), {105, 690, 2265, 315}},
        {QStringLiteral("Dir1"), {60, 1065, 2280, 2340}},
        {QStringLiteral("List_Folders"), {105, 3480, 2265, 405}},
        {QStringLiteral("CreateTextFiles"), {105, 3930, 2265, 405}},
        {QStringLiteral("Label9Com"), {105, 4380, 2265, 405}},
        {QStringLiteral("Frame2"), {60, 4860, 2310, 429}},
        {QStringLiteral("Label1_0"), {45, 15, 2220, 195}},
        {QStringLiteral("Label1_5"), {45, 225, 2220, 195}},
        {QStringLiteral("Frame3"), {60, 5310, 2310, 522}},
        {QStringLiteral("Label1_3"), {45, 45, 2220, 195}},
        {QStringLiteral("Label1_6"), {45, 285, 2220, 195}},
        {QStringLiteral("Image6"), {105, 5895, 360, 360}},
        {QStringLiteral("Image2"), {555, 5895, 360, 360}},
        {QStringLiteral("Label10"), {60, 6330, 4800, 165}},
        {QStringLiteral("Option1"), {135, 120, 705, 225}},
        {QStringLiteral("Option2"), {1335, 120, 900, 225}},
        {QStringLiteral("Image3"), {405, 7110, 240, 240}},
        {QStringLiteral("Image4"), {105, 7215, 240, 240}},
        {QStringLiteral("Command1"), {1065, 7500, 75, 195}},
        // Result panes: folder names, file paths, and beyond the narrow window's edge file names and folder paths.
        {QStringLiteral("pane2"), {2490, 405, 2850, 5925}},
        {QStringLiteral("pane3"), {5400, 405, 4800, 5910}},
        {QStringLiteral("Label5"), {5400, 6330, 4785, 195}},
        {QStringLiteral("Frame4"), {10500, 448, 1320, 420}},
        {QStringLiteral("Label1_4"), {0, 0, 1320, 195}},
        {QStringLiteral("Label1_2"), {0, 210, 1320, 195}},
        {QStringLiteral("pane4"), {10500, 900, 1320, 5925}},
        {QStringLiteral("pane1"), {11865, 1800, 1470, 3300}},
        {QStringLiteral("Label1_1"), {11865, 5145, 1470, 195}},
        // The paths, the file-names toggle and the status line along the bottom.
        {QStringLiteral("Label4_0"), {690, 210, 1740, 195}},
        {QStringLiteral("Text1"), {2490, 165, 7740, 285}},
        {QStringLiteral("Label4_2"), {840, 540, 1530, 195}},
        {QStringLiteral("Text2"), {2490, 495, 7740, 285}},
        {QStringLiteral("Label8"), {8895, 885, 1320, 525}},
        {QStringLiteral("Label11"), {4065, 1455, 1680, 195}},
        {QStringLiteral("Label4_1"), {6735, 1455, 1710, 195}},
        // Search section, over the lower part of the file-path pane while it is shown.
        {QStringLiteral("Frame1"), {5400, 2460, 4800, 3840}},
        {QStringLiteral("Label1_8"), {120, 270, 4560, 195}},
        {QStringLiteral("Label9"), {120, 585, 1140, 195}},
        {QStringLiteral("srchFolder"), {1320, 540, 3360, 285}},
        {QStringLiteral("SearchFolders"), {120, 930, 2220, 345}},
        {QStringLiteral("SearchFiles"), {2460, 930, 2220, 345}},
        {QStringLiteral("List5"), {120, 1365, 4560, 2070}},
        {QStringLiteral("Label1_7"), {120, 3495, 4560, 195}},
        // Player frame contents.
        {QStringLiteral("WindowsMediaPlayer1"), {120, 345, 4530, 3180}},
        {QStringLiteral("close0"), {120, 60, 1200, 240}},
        {QStringLiteral("close1"), {3450, 3600, 1200, 240}},
        // LongBrowser's go-to frame and banner, in the free band of the bottom frame.
        {QStringLiteral("Frame5"), {105, 855, 8640, 540}},
        {QStringLiteral("GoToFolder"), {0, 90, 1860, 345}},
        {QStringLiteral("Text4"), {1905, 120, 900, 285}},
        {QStringLiteral("GoToFilePath"), {2925, 90, 1860, 345}},
        {QStringLiteral("Text3"), {4830, 120, 900, 285}},
        {QStringLiteral("GoToFile"), {5850, 90, 1860, 345}},
        {QStringLiteral("Text5"), {7755, 120, 885, 285}},
        {QStringLiteral("Image1"), {105, 855, 2340, 540}},
    };
}

QLabel* makeLabel(QWidget* parent, const QString& name, const QString& text)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

void setBackground(QWidget* w, const QColor& colour)
{
    QPalette pal = w->palette();
    pal.setColor(QPalette::Window, colour);
    w->setPalette(pal);
    w->setAutoFillBackground(true);
}

void sunken(QLabel* label)
{
    label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
}

} // namespace

BrowserWindow::BrowserWindow(const BrowserFlavour& flavour, const Services& services, QWidget* optionsWindow)
    : m_flavour(flavour), m_services(services), m_options(optionsWindow)
{
    setObjectName(flavour.objectName);
    setWindowTitle(flavour.caption);
    buildWindow();
    m_panes = new ResultPanes(m_flavour, m_ui, this);
    m_driver = new ListingDriver(m_flavour, m_ui, *m_panes, m_services, this);
    connect(m_ui.List_Folders, &QPushButton::clicked, m_driver, &ListingDriver::List_Folders_Click);
    connect(m_driver, &ListingDriver::finished, this, &BrowserWindow::scanFinished);
    auto* saves = new SaveActions(*this, m_services);
    new ContextMenus(*this, m_services, *saves);
    m_actions = new ItemActions(m_flavour, m_ui, *m_panes, m_services, this);
    m_search = new SearchSection(m_flavour, m_ui, *m_panes, *m_actions, m_services, this);
    if (m_flavour.hasGoToFrame)
        m_goTo = new GoToCell(m_ui, *m_panes, m_services, *this);
    ControlPurposes::nameBrowserControls(this, m_flavour);
    Form_Load();
}

BrowserWindow::~BrowserWindow() = default;

QRect BrowserWindow::designRect(const QString& name) const
{
    static const QHash<QString, QRect> shared = sharedPlaces();
    if (name == QLatin1String("Label2"))
        return QRect(m_flavour.label2Left, 105, 690, 240);
    if (name == m_flavour.modeFrameName)
        return m_flavour.modeFrameTwips;
    if (name == m_flavour.playerFrameName)
        return m_flavour.playerFrameTwips;
    if (name == QLatin1String("pathFrame"))
        return QRect(0, m_flavour.pathFrameTop, 14000, 1665);
    for (int n = 1; n <= 4; ++n) {
        if (name == m_flavour.paneName(n))
            return shared.value(QStringLiteral("pane") + QString::number(n));
    }
    return shared.value(name);
}

void BrowserWindow::buildWindow()
{
    setFont(ClassicLook::uiFont());
    const QSize client = m_flavour.clientTwips;
    resize(Twips::toPx(client.width()), Twips::toPx(client.height()));
    move(Twips::toPx(45), Twips::toPx(330));

    buildNavigation();
    buildPanes();
    buildPathFrame();
    buildModeAndPictures();
    buildSearchSection();
    buildPlayerFrame();
    if (m_flavour.hasGoToFrame)
        buildGoToFrame();
    buildMenus();

    // Placed once from the design; afterwards the resize rule keeps them.
    const auto widgets = findChildren<QWidget*>();
    for (QWidget* w : widgets) {
        const QRect r = designRect(w->objectName());
        if (!r.isNull())
            Twips::place(w, r);
    }
    ClassicLook::fitLabels(this);
    fitLabel2();
}

void BrowserWindow::buildNavigation()
{
    m_ui.Label3 = makeLabel(this, QStringLiteral("Label3"), QStringLiteral(" Parent Folder: "));
    m_ui.Label2 = makeLabel(this, QStringLiteral("Label2"), QString());
    QFont bold = m_ui.Label2->font();
    bold.setBold(true);
    m_ui.Label2->setFont(bold);
    m_ui.Label2->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* caption = new DriveCaptionLabel(this);
    caption->setObjectName(QStringLiteral("Label4_3"));
    caption->setCaption(QStringLiteral("  DRIVE "));
    m_ui.Label4[3] = caption;
    sunken(m_ui.Label4[3]);
    setBackground(m_ui.Label4[3], LightYellow);

    m_drives = new DriveSelector(*m_services.volumes, this);
    m_ui.Drive1 = m_drives;
    m_ui.Drive1->setObjectName(QStringLiteral("Drive1"));
    fillDrives();

    m_dirModel = new FolderTreeModel(this);
    m_ui.Dir1 = new QTreeView(this);
    m_ui.Dir1->setObjectName(QStringLiteral("Dir1"));
    m_ui.Dir1->setModel(m_dirModel);
    m_ui.Dir1->setHeaderHidden(true);
    m_ui.Dir1->setUniformRowHeights(true);

    m_ui.List_Folders = new QPushButton(QStringLiteral("List All Folders && Files"), this);
    m_ui.List_Folders->setObjectName(QStringLiteral("List_Folders"));
    m_ui.CreateTextFiles = new QPushButton(QStringLiteral("Create Text Files"), this);
    m_ui.CreateTextFiles->setObjectName(QStringLiteral("CreateTextFiles"));
    m_ui.Label9Com = new QPushButton(QStringLiteral("Show/ Hide Search Section"), this);
    m_ui.Label9Com->setObjectName(QStringLiteral("Label9Com"));
    m_ui.Command1 = new QPushButton(QStringLiteral("Command1"), this);
    m_ui.Command1->setObjectName(QStringLiteral("Command1"));
    m_ui.Command1->hide();

    connect(m_ui.Drive1, &QComboBox::currentIndexChanged, this, [this] { Drive1_Change(); });
    connect(m_ui.Dir1->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (current.isValid())
                    setDir1Path(m_dirModel->displayPath(current));
            });
    connect(m_ui.Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    // An opened folder shows the folders made in it since it was first read.
    connect(m_ui.Dir1, &QTreeView::expanded, m_dirModel, &FolderTreeModel::readAgain);
}

void BrowserWindow::fillDrives()
{
    const QSignalBlocker block(m_ui.Drive1);
    m_drives->refresh();
    // The selector starts on the drive of the current folder, as the folder tree starts in that folder.
    const int current = m_ui.Drive1->findText(m_services.volumes->volumeOf(QDir::currentPath()).driveText());
    m_ui.Drive1->setCurrentIndex(current >= 0 ? current : 0);
}

void BrowserWindow::buildPanes()
{
    const bool grids = m_flavour.panes == BrowserFlavour::Panes::Grids;
    for (int n = 1; n <= 4; ++n) {
        if (grids) {
            auto* grid = new ResultGrid(this);
            grid->setObjectName(m_flavour.paneName(n));
            m_ui.MSFlexGrid[n] = grid;
        } else {
            auto* list = new ResultList(this);
            list->setObjectName(m_flavour.paneName(n));
            m_ui.List[n] = list;
        }
    }
    // The file-name list allows several selected entries; its click handler relies on that.
    if (!grids)
        m_ui.List[4]->setSelectionMode(QAbstractItemView::ExtendedSelection);
    // The counters: folders in Frame2, file paths in Frame3, file names in Frame4 above their pane.
    m_ui.Frame2 = new QFrame(this);
    m_ui.Frame2->setObjectName(QStringLiteral("Frame2"));
    m_ui.Frame3 = new QFrame(this);
    m_ui.Frame3->setObjectName(QStringLiteral("Frame3"));
    m_ui.Frame4 = new QFrame(this);
    m_ui.Frame4->setObjectName(QStringLiteral("Frame4"));

    QWidget* parents[9] = {m_ui.Frame2, this,        m_ui.Frame4, m_ui.Frame3, m_ui.Frame4,
                           m_ui.Frame2, m_ui.Frame3, nullptr,     nullptr}; // 7 and 8 belong to the search section
    for (int i = 0; i < 7; ++i)
        m_ui.Label1[i] = makeLabel(parents[i], QStringLiteral("Label1_") + QString::number(i), QString());

    m_ui.Label5 = makeLabel(this, QStringLiteral("Label5"), QString());
    m_ui.Label5->setAlignment(Qt::AlignCenter);
}

void BrowserWindow::buildPathFrame()
{
    m_ui.pathFrame = new QFrame(this);
    m_ui.pathFrame->setObjectName(QStringLiteral("pathFrame"));
    QFrame* f = m_ui.pathFrame;

    m_ui.Label4[0] = makeLabel(f, QStringLiteral("Label4_0"), QStringLiteral(" Selected Folder's Path: "));
    m_ui.Label4[2] = makeLabel(f, QStringLiteral("Label4_2"), QStringLiteral(" Selected File's Path: "));
    m_ui.Label4[0]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_ui.Label4[2]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_ui.Text1 = new QLineEdit(f);
    m_ui.Text1->setObjectName(QStringLiteral("Text1"));
    m_ui.Text2 = new QLineEdit(f);
    m_ui.Text2->setObjectName(QStringLiteral("Text2"));

    m_ui.Label8 = new ClickableLabel(ShowFileNames, f);
    m_ui.Label8->setObjectName(QStringLiteral("Label8"));
    m_ui.Label8->setAlignment(Qt::AlignCenter);
    m_ui.Label8->setWordWrap(true);
    m_ui.Label8->setCursor(Qt::PointingHandCursor);
    m_ui.Label8->setFrameStyle(QFrame::Panel | QFrame::Raised);
    setBackground(m_ui.Label8, LightCyan);

    m_ui.Label11 = new ClickableLabel(ExecutionTime, f);
    m_ui.Label11->setObjectName(QStringLiteral("Label11"));
    m_ui.Label11->setAlignment(Qt::AlignCenter);
    sunken(m_ui.Label11);
    m_ui.Label11->setAutoFillBackground(true);

    const CollectionFolder collection;
    m_ui.Label4[1] =
        makeLabel(f, QStringLiteral("Label4_1"), QStringLiteral("Saves in ") + collection.pathWithSeparator());
    // The collection folder's path is the user's own and may be long: the label grows to the right, into free
    // space, rather than over the timing label on its left.
    m_ui.Label4[1]->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    sunken(m_ui.Label4[1]);

    connect(m_ui.Label8, &ClickableLabel::clicked, this, [this] { Label8_Click(); });
    connect(m_ui.Label11, &ClickableLabel::doubleClicked, this, [this] { Label11_DblClick(); });
}

void BrowserWindow::buildModeAndPictures()
{
    m_ui.Label10 = makeLabel(this, QStringLiteral("Label10"), m_flavour.label10Text);

    m_ui.modeFrame = new QFrame(this);
    m_ui.modeFrame->setObjectName(m_flavour.modeFrameName);
    m_ui.Option1 = new QRadioButton(QStringLiteral("Open"), m_ui.modeFrame);
    m_ui.Option1->setObjectName(QStringLiteral("Option1"));
    m_ui.Option2 = new QRadioButton(QStringLiteral("Locate"), m_ui.modeFrame);
    m_ui.Option2->setObjectName(QStringLiteral("Option2"));
    m_ui.Option2->setChecked(true);
    connect(m_ui.Option1, &QRadioButton::clicked, this, [this] { Option1_Click(); });
    connect(m_ui.Option2, &QRadioButton::clicked, this, [this] { Option2_Click(); });

    const int icon = Twips::toPx(360);
    auto picture = [this](const QString& name, const QPixmap& pm) {
        auto* image = new ClickableLabel(this);
        image->setObjectName(name);
        image->setPixmap(pm);
        image->setScaledContents(true);
        return image;
    };
    m_ui.Image6 = picture(QStringLiteral("Image6"), Pictures::backToOptions(icon));
    m_ui.Image6->setToolTip(QStringLiteral("Go to Option Selection Screen"));
    m_ui.Image6->setCursor(Qt::PointingHandCursor);
    m_ui.Image2 = picture(QStringLiteral("Image2"), Pictures::about(icon));
    m_ui.Image2->setCursor(Qt::PointingHandCursor);
    m_ui.Image3 = picture(QStringLiteral("Image3"), Pictures::folder(Twips::toPx(240)));
    m_ui.Image4 = picture(QStringLiteral("Image4"), Pictures::file(Twips::toPx(240)));
    connect(m_ui.Image6, &ClickableLabel::clicked, this, [this] { Image6_Click(); });
    connect(m_ui.Image2, &ClickableLabel::clicked, this, [this] { Image2_Click(); });
}

void BrowserWindow::buildSearchSection()
{
    auto* frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("Frame1"));
    frame->setFrameStyle(QFrame::Box | QFrame::Raised);
    frame->setAutoFillBackground(true);
    m_ui.Frame1 = frame;
    auto* title = makeLabel(frame, QStringLiteral("Frame1Caption"), QStringLiteral("Search Section:"));
    title->adjustSize();
    title->move(Twips::toPx(90), 0);
    m_ui.Label1[8] = makeLabel(frame, QStringLiteral("Label1_8"),
                               QStringLiteral("Search for Folders or Files within the Parent Folder"));
    m_ui.Label9 = makeLabel(frame, QStringLiteral("Label9"), QStringLiteral("Search String"));
    m_ui.srchFolder = new QLineEdit(frame);
    m_ui.srchFolder->setObjectName(QStringLiteral("srchFolder"));
    m_ui.SearchFolders = new QPushButton(QStringLiteral("Search Folders"), frame);
    m_ui.SearchFolders->setObjectName(QStringLiteral("SearchFolders"));
    m_ui.SearchFiles = new QPushButton(QStringLiteral("Search Files"), frame);
    m_ui.SearchFiles->setObjectName(QStringLiteral("SearchFiles"));
    // A list box like the result lists: the arrow keys run its click as the mouse does.
    auto* list5 = new ResultList(frame);
    list5->setObjectName(QStringLiteral("List5"));
    m_ui.List[5] = list5;
    m_ui.Label1[7] = makeLabel(frame, QStringLiteral("Label1_7"), QString());
    frame->hide();
}

void BrowserWindow::buildPlayerFrame()
{
    auto* frame = new ClickableFrame(this);
    frame->setObjectName(m_flavour.playerFrameName);
    frame->setFrameStyle(QFrame::Box | QFrame::Raised);
    frame->setCursor(Qt::PointingHandCursor);
    frame->setAutoFillBackground(true);
    m_ui.playerFrame = frame;
    m_ui.WindowsMediaPlayer1 = new QWidget(frame);
    m_ui.WindowsMediaPlayer1->setObjectName(QStringLiteral("WindowsMediaPlayer1"));
    setBackground(m_ui.WindowsMediaPlayer1, Qt::black);
    for (int i = 0; i < 2; ++i) {
        auto* label = new ClickableLabel(QStringLiteral("Click to Close"), frame);
        label->setObjectName(m_flavour.closeLabelName + QLatin1Char('_') + QString::number(i));
        label->setCursor(Qt::PointingHandCursor);
        Twips::place(label, designRect(QStringLiteral("close") + QString::number(i)));
        connect(label, &ClickableLabel::clicked, this, [this] { playerFrame_Click(); });
        m_ui.clickToClose[i] = label;
    }
    connect(frame, &ClickableFrame::clicked, this, [this] { playerFrame_Click(); });
    frame->hide();
}

void BrowserWindow::buildGoToFrame()
{
    m_ui.Frame5 = new QFrame(m_ui.pathFrame);
    m_ui.Frame5->setObjectName(QStringLiteral("Frame5"));
    auto button = [this](const QString& name, const QString& caption) {
        auto* b = new QPushButton(caption, m_ui.Frame5);
        b->setObjectName(name);
        return b;
    };
    auto box = [this](const QString& name) {
        auto* t = new QLineEdit(m_ui.Frame5);
        t->setObjectName(name);
        return t;
    };
    m_ui.GoToFolder = button(QStringLiteral("GoToFolder"), QStringLiteral("Go To Folder at #"));
    m_ui.Text4 = box(QStringLiteral("Text4"));
    m_ui.GoToFilePath = button(QStringLiteral("GoToFilePath"), QStringLiteral("Go To File at #"));
    m_ui.Text3 = box(QStringLiteral("Text3"));
    m_ui.GoToFile = button(QStringLiteral("GoToFile"), QStringLiteral("Go To File at #"));
    m_ui.Text5 = box(QStringLiteral("Text5"));
    m_ui.Frame5->hide();

    m_ui.Image1 = new ClickableLabel(m_ui.pathFrame);
    m_ui.Image1->setObjectName(QStringLiteral("Image1"));
    const QRect r = Twips::toPx(designRect(QStringLiteral("Image1")));
    m_ui.Image1->setPixmap(Pictures::banner(r.width(), r.height()));
}

void BrowserWindow::buildMenus()
{
    const QString collection = CollectionFolder().path();
    auto menu = [&](const QString& name, const QString& caption, const QStringList& entries,
                    const QStringList& captions, int separatorBefore) {
        auto* m = new QMenu(caption, this);
        m->setObjectName(name);
        for (int i = 0; i < entries.size(); ++i) {
            if (i == separatorBefore)
                m->addSeparator()->setObjectName(name == QLatin1String("mnuPopUp2") ? QStringLiteral("dash2")
                                                                                    : QStringLiteral("dash1"));
            QString text = captions.at(i);
            text.replace(QStringLiteral("C:\\Quillbox"), collection);
            m->addAction(text)->setObjectName(entries.at(i));
        }
        return m;
    };
    m_ui.mnuPopUp2 = menu(QStringLiteral("mnuPopUp2"), m_flavour.folderMenuCaption, m_flavour.folderMenuNames,
                          m_flavour.folderMenuCaptions, m_flavour.folderMenuSeparatorBefore);
    m_ui.mnuPopUp = menu(QStringLiteral("mnuPopUp"), m_flavour.fileMenuCaption, m_flavour.fileMenuNames,
                         m_flavour.fileMenuCaptions, m_flavour.fileMenuSeparatorBefore);
}

void BrowserWindow::fitLabel2()
{
    // The path label grows with its text, starting from its design width.
    QLabel* label = m_ui.Label2;
    const int width = qMax(Twips::toPx(690), label->sizeHint().width());
    label->resize(width, label->height());
}

// --- Window load, folder and drive change -------------------------------------------------------------------

void BrowserWindow::Form_Load()
{
    const Volume start = m_services.volumes->volumeOf(QDir::currentPath());
    m_dirModel->setRootPath(NativeText::fromDisplay(start.root));
    // The tree reports the new current folder back; setDir1Path ignores it because the path is already set.
    m_dir1Path = QDir::currentPath();
    m_ui.Dir1->setCurrentIndex(m_dirModel->index(NativeText::fromDisplay(m_dir1Path)));
    Dir1_Change();
    m_ui.CreateTextFiles->setEnabled(false);
}

void BrowserWindow::setDir1Path(const QString& path)
{
    if (path == m_dir1Path)
        return;
    m_dir1Path = path;
    const QModelIndex index = m_dirModel->index(NativeText::fromDisplay(path));
    m_ui.Dir1->setCurrentIndex(index);
    m_ui.Dir1->scrollTo(index);
    Dir1_Change();
}

void BrowserWindow::Dir1_Change()
{
    m_ui.Label2->setText(m_dir1Path);
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
        m_ui.Label1[i]->setText(QString());
    m_ui.Text1->setText(QString());
    m_ui.Text2->setText(QString());
    m_ui.Label1[5]->setText(QString());
    m_ui.CreateTextFiles->setEnabled(false);
    m_ui.Label9Com->setEnabled(false);
    m_ui.Label11->setText(ExecutionTime);
    m_ui.List_Folders->setEnabled(true);
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
    if (!m_flavour.hasGoToFrame)
        return;
    m_ui.Image1->show();
    m_ui.Frame5->hide();
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
            m_ui.Dir1->hide();
            m_ui.List_Folders->setEnabled(false);
        }
    };
    const QString drive = m_ui.Drive1->currentText();
    trap(changeDrive(drive));
    m_ui.Dir1->show();
    m_ui.List_Folders->setEnabled(true);
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
    m_driveText = m_ui.Drive1->currentText();
    // Where Windows takes a drive letter, a volume is named here by its root.
    bool found = false;
    const Volume v = m_services.volumes->find(m_driveText, &found);
    const QString type = DriveTypeInfo(found ? v.root : m_driveText);
    const QString label = GetDriveName(m_driveText);
    static_cast<DriveCaptionLabel*>(m_ui.Label4[3])->setCaption(DriveCaption::caption(m_driveText, type, label));
}

void BrowserWindow::Command1_Click()
{
    bool found = false;
    const Volume v = m_services.volumes->find(m_ui.Drive1->currentText(), &found);
    m_services.messages->message(QStringLiteral("The drive is of the type ") +
                                     DriveTypeInfo(found ? v.root : m_ui.Drive1->currentText()),
                                 MessageStyle::Plain);
}

// --- Mode, toggle, pictures, exits ---------------------------------------------------------------------------

bool BrowserWindow::openMode() const
{
    return m_ui.Option1->isChecked();
}

void BrowserWindow::Label8_Click()
{
    if (m_ui.Label8->text() == ShowFileNames) {
        setOuterWidth(WideWidth);
        m_ui.Label8->setText(HideFileNames);
    } else {
        setOuterWidth(NarrowWidth);
        m_ui.Label8->setText(ShowFileNames);
    }
}

void BrowserWindow::showFileNames()
{
    setOuterWidth(WideWidth);
    m_ui.Label8->setText(HideFileNames);
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
    if (m_ui.Label11->text() == PleaseWait) {
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
    applyLayout();
}

void BrowserWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        applyLayout();
}

void BrowserWindow::applyLayout()
{
    if (m_applyingLayout || !m_ui.Label8)
        return;
    m_applyingLayout = true;
    const bool maximised = isMaximized();
    if (maximised) {
        stretchToWindow();
    } else {
        for (const auto& [w, place] : std::as_const(m_normalPlaces)) {
            if (w)
                w->setGeometry(place);
        }
        m_normalPlaces.clear();
        for (const BrowserFlavour::Restore& step : m_flavour.restore) {
            auto* w = findChild<QWidget*>(step.control);
            if (!w)
                continue;
            const int px = Twips::toPx(step.twips);
            switch (step.property) {
            case BrowserFlavour::Restore::Left:
                w->move(px, w->y());
                break;
            case BrowserFlavour::Restore::Top:
                w->move(w->x(), px);
                break;
            case BrowserFlavour::Restore::Width:
                w->resize(px, w->height());
                break;
            case BrowserFlavour::Restore::Height:
                w->resize(w->width(), px);
                break;
            }
        }
    }
    m_ui.Label8->setEnabled(!maximised);
    m_applyingLayout = false;
}

// The maximised window: the panes, their frames and labels, the search section and the player take the window's
// width in the proportions of the wide design (all four panes in view), and its height down to the path frame,
// which keeps its height along the bottom edge and stretches its boxes and the go-to frame with the width.
void BrowserWindow::stretchToWindow()
{
    const double sx = width() / double(Twips::toPx(WideWidth - 120));
    const int designHeight = Twips::toPx(m_flavour.clientTwips.height());
    const int bandTop = Twips::toPx(m_flavour.pathFrameTop);
    const int newBandTop = qMax(bandTop, height() - (designHeight - bandTop));
    const double sy = newBandTop / double(bandTop);

    const bool firstTime = m_normalPlaces.isEmpty();
    auto place = [&](QWidget* w, bool stretchHeight, bool stretchWidth = true) {
        if (!w)
            return;
        const QRect design = designRect(w->objectName());
        if (design.isNull())
            return;
        if (firstTime)
            m_normalPlaces.append({w, w->geometry()});
        const QRect px = Twips::toPx(design);
        const int top = w->parentWidget() == this ? qRound(px.y() * sy) : px.y();
        w->setGeometry(qRound(px.x() * sx), top, stretchWidth ? qRound(px.width() * sx) : w->width(),
                       stretchHeight ? qRound(px.height() * sy) : w->height());
    };
    for (int n = 1; n <= 4; ++n)
        place(findChild<QWidget*>(m_flavour.paneName(n)), true);
    for (QWidget* w : {static_cast<QWidget*>(m_ui.Frame4), static_cast<QWidget*>(m_ui.Label5),
                       static_cast<QWidget*>(m_ui.Label1[1]), static_cast<QWidget*>(m_ui.Label10)})
        place(w, false);
    place(m_ui.Frame1, true);
    for (QWidget* w : m_ui.Frame1->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        place(w, w == m_ui.List[5]);
    place(m_ui.playerFrame, false, false);
    for (QWidget* w : {static_cast<QWidget*>(m_ui.modeFrame), static_cast<QWidget*>(m_ui.Image3),
                       static_cast<QWidget*>(m_ui.Image4)})
        place(w, false, false);

    if (firstTime)
        m_normalPlaces.append({m_ui.pathFrame, m_ui.pathFrame->geometry()});
    m_ui.pathFrame->setGeometry(0, newBandTop, width(), m_ui.pathFrame->height());
    for (QWidget* w :
         {static_cast<QWidget*>(m_ui.Text1), static_cast<QWidget*>(m_ui.Text2), static_cast<QWidget*>(m_ui.Frame5)})
        place(w, false);
    for (QWidget* w : {static_cast<QWidget*>(m_ui.Label8), static_cast<QWidget*>(m_ui.Label11),
                       static_cast<QWidget*>(m_ui.Label4[1]), static_cast<QWidget*>(m_ui.Image1)})
        place(w, false, false);
}
