// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserBuilder.h"

#include "ClassicLook.h"
#include "Pictures.h"
#include "controls/ClickableFrame.h"
#include "controls/ClickableLabel.h"
#include "controls/DriveCaptionLabel.h"
#include "controls/DriveSelector.h"
#include "export/CollectionFolder.h"
#include "panes/ResultGrid.h"
#include "panes/ResultList.h"
#include "platform/Twips.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeView>

namespace {

const QString ShowFileNames = QStringLiteral("Show File Names only");
const QString ExecutionTime = QStringLiteral("Execution Time in msec");

const QColor LightYellow(0xFF, 0xFF, 0xC0);
const QColor LightCyan(0xC0, 0xFF, 0xFF);

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

BrowserControls BrowserBuilder::build(QWidget* window, const BrowserFlavour& flavour, const VolumeService& volumes)
{
    BrowserBuilder builder(window, flavour, volumes);
    builder.buildWindow();
    return builder.m_ui;
}

void BrowserBuilder::buildWindow()
{
    m_window->setFont(ClassicLook::uiFont());
    const BrowserLayout& layout = m_flavour.layout;
    m_window->resize(Twips::toPx(layout.clientTwips.width()), Twips::toPx(layout.clientTwips.height()));
    m_window->move(Twips::toPx(layout.originTwips.x()), Twips::toPx(layout.originTwips.y()));

    buildNavigation();
    buildPanes();
    buildPathFrame();
    buildModeAndPictures();
    buildSearchSection();
    buildPlayerFrame();
    if (m_flavour.behaviour.hasGoToFrame)
        buildGoToFrame();
    buildMenus();
    buildStatusLines();

    // Placed once from the design; afterwards the resize rule keeps them.
    const auto widgets = m_window->findChildren<QWidget*>();
    for (QWidget* w : widgets) {
        const QRect r = layout.rect(w->objectName());
        if (!r.isNull())
            Twips::place(w, r);
    }
    ClassicLook::fitLabels(m_window);
}

void BrowserBuilder::buildNavigation()
{
    m_ui.navigation.Label3 = makeLabel(m_window, QStringLiteral("Label3"), QStringLiteral(" Parent Folder: "));
    m_ui.navigation.Label2 = makeLabel(m_window, QStringLiteral("Label2"), QString());
    QFont bold = m_ui.navigation.Label2->font();
    bold.setBold(true);
    m_ui.navigation.Label2->setFont(bold);
    m_ui.navigation.Label2->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* caption = new DriveCaptionLabel(m_window);
    caption->setObjectName(QStringLiteral("Label4_3"));
    caption->setCaption(QStringLiteral("  DRIVE "));
    m_ui.status.Label4[3] = caption;
    sunken(caption);
    setBackground(caption, LightYellow);

    m_ui.navigation.Drive1 = new DriveSelector(m_volumes, m_window);
    m_ui.navigation.Drive1->setObjectName(QStringLiteral("Drive1"));
    m_ui.navigation.Dir1 = new QTreeView(m_window);
    m_ui.navigation.Dir1->setObjectName(QStringLiteral("Dir1"));
    m_ui.navigation.Dir1->setHeaderHidden(true);
    m_ui.navigation.Dir1->setUniformRowHeights(true);

    m_ui.navigation.List_Folders = new QPushButton(QStringLiteral("List All Folders && Files"), m_window);
    m_ui.navigation.List_Folders->setObjectName(QStringLiteral("List_Folders"));
    m_ui.navigation.CreateTextFiles = new QPushButton(QStringLiteral("Create Text Files"), m_window);
    m_ui.navigation.CreateTextFiles->setObjectName(QStringLiteral("CreateTextFiles"));
    m_ui.navigation.Label9Com = new QPushButton(QStringLiteral("Show/ Hide Search Section"), m_window);
    m_ui.navigation.Label9Com->setObjectName(QStringLiteral("Label9Com"));
    m_ui.navigation.Command1 = new QPushButton(QStringLiteral("Command1"), m_window);
    m_ui.navigation.Command1->setObjectName(QStringLiteral("Command1"));
    m_ui.navigation.Command1->hide();
}

void BrowserBuilder::buildPanes()
{
    const bool grids = m_flavour.behaviour.grids();
    for (int n = 1; n <= 4; ++n) {
        if (grids) {
            auto* grid = new ResultGrid(m_window);
            grid->setObjectName(m_flavour.behaviour.paneName(n));
            m_ui.panes.MSFlexGrid[n] = grid;
        } else {
            auto* list = new ResultList(m_window);
            list->setObjectName(m_flavour.behaviour.paneName(n));
            m_ui.panes.List[n] = list;
        }
    }
    // The file-name list allows several selected entries; its click handler relies on that.
    if (!grids)
        m_ui.panes.List[4]->setSelectionMode(QAbstractItemView::ExtendedSelection);
    // The counters: folders in Frame2, file paths in Frame3, file names in Frame4 above their pane.
    m_ui.status.Frame2 = new QFrame(m_window);
    m_ui.status.Frame2->setObjectName(QStringLiteral("Frame2"));
    m_ui.status.Frame3 = new QFrame(m_window);
    m_ui.status.Frame3->setObjectName(QStringLiteral("Frame3"));
    m_ui.status.Frame4 = new QFrame(m_window);
    m_ui.status.Frame4->setObjectName(QStringLiteral("Frame4"));

    QWidget* parents[9] = {m_ui.status.Frame2,
                           m_window,
                           m_ui.status.Frame4,
                           m_ui.status.Frame3,
                           m_ui.status.Frame4,
                           m_ui.status.Frame2,
                           m_ui.status.Frame3,
                           nullptr,
                           nullptr}; // 7 and 8 belong to the search section
    for (int i = 0; i < 7; ++i)
        m_ui.status.Label1[i] = makeLabel(parents[i], QStringLiteral("Label1_") + QString::number(i), QString());

    m_ui.status.Label5 = makeLabel(m_window, QStringLiteral("Label5"), QString());
    m_ui.status.Label5->setAlignment(Qt::AlignCenter);
}

void BrowserBuilder::buildPathFrame()
{
    m_ui.paths.pathFrame = new QFrame(m_window);
    m_ui.paths.pathFrame->setObjectName(QStringLiteral("pathFrame"));
    QFrame* f = m_ui.paths.pathFrame;

    m_ui.status.Label4[0] = makeLabel(f, QStringLiteral("Label4_0"), QStringLiteral(" Selected Folder's Path: "));
    m_ui.status.Label4[2] = makeLabel(f, QStringLiteral("Label4_2"), QStringLiteral(" Selected File's Path: "));
    m_ui.status.Label4[0]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_ui.status.Label4[2]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_ui.paths.Text1 = new QLineEdit(f);
    m_ui.paths.Text1->setObjectName(QStringLiteral("Text1"));
    m_ui.paths.Text2 = new QLineEdit(f);
    m_ui.paths.Text2->setObjectName(QStringLiteral("Text2"));

    m_ui.paths.Label8 = new ClickableLabel(ShowFileNames, f);
    m_ui.paths.Label8->setObjectName(QStringLiteral("Label8"));
    m_ui.paths.Label8->setAlignment(Qt::AlignCenter);
    m_ui.paths.Label8->setWordWrap(true);
    m_ui.paths.Label8->setCursor(Qt::PointingHandCursor);
    m_ui.paths.Label8->setFrameStyle(QFrame::Panel | QFrame::Raised);
    setBackground(m_ui.paths.Label8, LightCyan);

    m_ui.status.Label11 = new ClickableLabel(ExecutionTime, f);
    m_ui.status.Label11->setObjectName(QStringLiteral("Label11"));
    m_ui.status.Label11->setAlignment(Qt::AlignCenter);
    sunken(m_ui.status.Label11);
    m_ui.status.Label11->setAutoFillBackground(true);

    const CollectionFolder collection;
    m_ui.status.Label4[1] =
        makeLabel(f, QStringLiteral("Label4_1"), QStringLiteral("Saves in ") + collection.pathWithSeparator());
    // The collection folder's path is the user's own and may be long: the label grows to the right, into free
    // space, rather than over the timing label on its left.
    m_ui.status.Label4[1]->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    sunken(m_ui.status.Label4[1]);
}

void BrowserBuilder::buildModeAndPictures()
{
    m_ui.mode.Label10 = makeLabel(m_window, QStringLiteral("Label10"), m_flavour.texts.label10Text);

    m_ui.mode.modeFrame = new QFrame(m_window);
    m_ui.mode.modeFrame->setObjectName(m_flavour.texts.modeFrameName);
    m_ui.mode.Option1 = new QRadioButton(QStringLiteral("Open"), m_ui.mode.modeFrame);
    m_ui.mode.Option1->setObjectName(QStringLiteral("Option1"));
    m_ui.mode.Option2 = new QRadioButton(QStringLiteral("Locate"), m_ui.mode.modeFrame);
    m_ui.mode.Option2->setObjectName(QStringLiteral("Option2"));
    m_ui.mode.Option2->setChecked(true);

    const int icon = Twips::toPx(360);
    auto picture = [this](const QString& name, const QPixmap& pm) {
        auto* image = new ClickableLabel(m_window);
        image->setObjectName(name);
        image->setPixmap(pm);
        image->setScaledContents(true);
        return image;
    };
    m_ui.mode.Image6 = picture(QStringLiteral("Image6"), Pictures::backToOptions(icon));
    m_ui.mode.Image6->setToolTip(QStringLiteral("Go to Option Selection Screen"));
    m_ui.mode.Image6->setCursor(Qt::PointingHandCursor);
    m_ui.mode.Image2 = picture(QStringLiteral("Image2"), Pictures::about(icon));
    m_ui.mode.Image2->setCursor(Qt::PointingHandCursor);
    m_ui.mode.Image3 = picture(QStringLiteral("Image3"), Pictures::folder(Twips::toPx(240)));
    m_ui.mode.Image4 = picture(QStringLiteral("Image4"), Pictures::file(Twips::toPx(240)));
}

void BrowserBuilder::buildSearchSection()
{
    auto* frame = new QFrame(m_window);
    frame->setObjectName(QStringLiteral("Frame1"));
    frame->setFrameStyle(QFrame::Box | QFrame::Raised);
    frame->setAutoFillBackground(true);
    m_ui.search.Frame1 = frame;
    auto* title = makeLabel(frame, QStringLiteral("Frame1Caption"), QStringLiteral("Search Section:"));
    title->adjustSize();
    title->move(Twips::toPx(90), 0);
    m_ui.status.Label1[8] = makeLabel(frame, QStringLiteral("Label1_8"),
                                      QStringLiteral("Search for Folders or Files within the Parent Folder"));
    m_ui.search.Label9 = makeLabel(frame, QStringLiteral("Label9"), QStringLiteral("Search String"));
    m_ui.search.srchFolder = new QLineEdit(frame);
    m_ui.search.srchFolder->setObjectName(QStringLiteral("srchFolder"));
    m_ui.search.SearchFolders = new QPushButton(QStringLiteral("Search Folders"), frame);
    m_ui.search.SearchFolders->setObjectName(QStringLiteral("SearchFolders"));
    m_ui.search.SearchFiles = new QPushButton(QStringLiteral("Search Files"), frame);
    m_ui.search.SearchFiles->setObjectName(QStringLiteral("SearchFiles"));
    // A list box like the result lists: the arrow keys run its click as the mouse does.
    auto* list5 = new ResultList(frame);
    list5->setObjectName(QStringLiteral("List5"));
    m_ui.search.List5 = list5;
    m_ui.status.Label1[7] = makeLabel(frame, QStringLiteral("Label1_7"), QString());
    frame->hide();
}

void BrowserBuilder::buildPlayerFrame()
{
    auto* frame = new ClickableFrame(m_window);
    frame->setObjectName(m_flavour.texts.playerFrameName);
    frame->setFrameStyle(QFrame::Box | QFrame::Raised);
    frame->setCursor(Qt::PointingHandCursor);
    frame->setAutoFillBackground(true);
    m_ui.player.playerFrame = frame;
    m_ui.player.WindowsMediaPlayer1 = new QWidget(frame);
    m_ui.player.WindowsMediaPlayer1->setObjectName(QStringLiteral("WindowsMediaPlayer1"));
    setBackground(m_ui.player.WindowsMediaPlayer1, Qt::black);
    for (int i = 0; i < 2; ++i) {
        auto* label = new ClickableLabel(QStringLiteral("Click to Close"), frame);
        label->setObjectName(m_flavour.texts.closeLabelName + QLatin1Char('_') + QString::number(i));
        label->setCursor(Qt::PointingHandCursor);
        m_ui.player.clickToClose[i] = label;
    }
    frame->hide();
}

void BrowserBuilder::buildGoToFrame()
{
    m_ui.goTo.Frame5 = new QFrame(m_ui.paths.pathFrame);
    m_ui.goTo.Frame5->setObjectName(QStringLiteral("Frame5"));
    auto button = [this](const QString& name, const QString& caption) {
        auto* b = new QPushButton(caption, m_ui.goTo.Frame5);
        b->setObjectName(name);
        return b;
    };
    auto box = [this](const QString& name) {
        auto* t = new QLineEdit(m_ui.goTo.Frame5);
        t->setObjectName(name);
        return t;
    };
    m_ui.goTo.GoToFolder = button(QStringLiteral("GoToFolder"), QStringLiteral("Go To Folder at #"));
    m_ui.goTo.Text4 = box(QStringLiteral("Text4"));
    m_ui.goTo.GoToFilePath = button(QStringLiteral("GoToFilePath"), QStringLiteral("Go To File at #"));
    m_ui.goTo.Text3 = box(QStringLiteral("Text3"));
    m_ui.goTo.GoToFile = button(QStringLiteral("GoToFile"), QStringLiteral("Go To File at #"));
    m_ui.goTo.Text5 = box(QStringLiteral("Text5"));
    m_ui.goTo.Frame5->hide();

    m_ui.goTo.Image1 = new ClickableLabel(m_ui.paths.pathFrame);
    m_ui.goTo.Image1->setObjectName(QStringLiteral("Image1"));
    const QRect r = Twips::toPx(m_flavour.layout.rect(QStringLiteral("Image1")));
    m_ui.goTo.Image1->setPixmap(Pictures::banner(r.width(), r.height()));
}

void BrowserBuilder::buildMenus()
{
    const QString collection = CollectionFolder().path();
    auto menu = [&](const QString& name, const BrowserMenus::Menu& design) {
        auto* m = new QMenu(design.caption, m_window);
        m->setObjectName(name);
        for (int i = 0; i < design.entries.size(); ++i) {
            if (i == design.separatorBefore)
                m->addSeparator()->setObjectName(name == QLatin1String("mnuPopUp2") ? QStringLiteral("dash2")
                                                                                    : QStringLiteral("dash1"));
            QString text = design.entries.at(i).caption;
            text.replace(QStringLiteral("C:\\Quillbox"), collection);
            m->addAction(text)->setObjectName(design.entries.at(i).name);
        }
        return m;
    };
    m_ui.menus.mnuPopUp2 = menu(QStringLiteral("mnuPopUp2"), m_flavour.menus.folderMenu);
    m_ui.menus.mnuPopUp = menu(QStringLiteral("mnuPopUp"), m_flavour.menus.fileMenu);
}

void BrowserBuilder::buildStatusLines()
{
    // The live count of a walk, over the left part of the bottom frame while the walk runs.
    m_ui.status.scanProgress = makeLabel(m_ui.paths.pathFrame, QStringLiteral("scanProgress"), QString());
    m_ui.status.scanProgress->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_ui.status.scanProgress->hide();
    // Only the grid window times the writing of a set, in a status label between the timing label and the
    // collection folder's label.
    if (m_flavour.behaviour.timesWriting) {
        m_ui.status.Label12 = makeLabel(m_ui.paths.pathFrame, QStringLiteral("Label12"), QString());
        m_ui.status.Label12->setAlignment(Qt::AlignCenter);
        sunken(m_ui.status.Label12);
        m_ui.status.Label12->hide();
    }
}
