// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserLayout.h"

#include "BrowserBehaviour.h"
#include "BrowserTexts.h"

namespace {

// Design places in twips, relative to the control's parent, that both windows share.
QHash<QString, QRect> sharedPlaces()
{
    return {
        {QStringLiteral("Label3"), {105, 105, 1485, 240}},
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
        {QStringLiteral("Label12"), {5775, 1455, 930, 195}},
        {QStringLiteral("scanProgress"), {105, 1455, 3900, 195}},
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

} // namespace

BrowserLayout BrowserLayout::make(const BrowserTexts& texts, const BrowserBehaviour& behaviour, const Own& own)
{
    BrowserLayout layout;
    layout.clientTwips = own.clientTwips;
    layout.places = sharedPlaces();
    QHash<QString, QRect>& p = layout.places;
    p.insert(QStringLiteral("Label2"), QRect(own.label2Left, 105, 690, 240));
    p.insert(texts.modeFrameName, own.modeFrame);
    p.insert(texts.playerFrameName, own.playerFrame);
    p.insert(QStringLiteral("pathFrame"), QRect(0, own.pathFrameTop, 14000, 1665));
    p.insert(texts.closeLabelName + QStringLiteral("_0"), QRect(120, 60, 1200, 240));
    p.insert(texts.closeLabelName + QStringLiteral("_1"), QRect(3450, 3600, 1200, 240));
    for (int n = 1; n <= 4; ++n)
        p.insert(behaviour.paneName(n), p.take(QStringLiteral("pane") + QString::number(n)));

    using R = Restore;
    layout.restore = {
        {behaviour.paneName(3), R::Width, 4800},
        {texts.playerFrameName, R::Left, own.playerFrame.left()},
        {QStringLiteral("Label5"), R::Width, 4785},
        {QStringLiteral("Text1"), R::Width, 7740},
        {QStringLiteral("Text2"), R::Width, 7740},
        {QStringLiteral("Frame3"), R::Height, 522},
        {QStringLiteral("Frame2"), R::Height, 429},
        {behaviour.paneName(3), R::Height, 5910},
        // The folder list's height was always kept in pixels, not twips; 395 pixels make it as tall as the
        // file lists beside it.
        {behaviour.paneName(2), R::Height, 395 * 15},
        {behaviour.paneName(4), R::Height, 5925},
        {QStringLiteral("Frame4"), R::Top, 448},
        {QStringLiteral("Label10"), R::Top, 6330},
        {QStringLiteral("Image3"), R::Top, 7110},
        {QStringLiteral("Image4"), R::Top, 7215},
    };
    return layout;
}
