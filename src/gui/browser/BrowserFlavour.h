// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/ScanResult.h"

#include <QList>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

// What tells the two browser windows apart. Everything else about them is one implementation.
struct BrowserFlavour
{
    enum class Panes { ListBoxes, Grids };

    // One property the non-maximised window puts back on every resize.
    struct Restore
    {
        enum Property { Left, Top, Width, Height };
        QString control;
        Property property;
        int twips;
    };

    QString objectName; // "ShortBrowser", "LongBrowser"
    QString caption;
    QSize clientTwips;
    Panes panes = Panes::ListBoxes;
    int label2Left = 1605;
    QString label10Text;
    QString modeFrameName; // holds Option1 / Option2
    QRect modeFrameTwips;
    QString playerFrameName; // hidden at start, holds the player
    QRect playerFrameTwips;
    QString closeLabelName;    // the two "Click to Close" labels of the player frame
    bool hasGoToFrame = false; // Frame5 with the go-to boxes, and the banner Image1 it takes turns with
    int pathFrameTop = 6870;

    // The listing: the walk's flavour (ShortBrowser stops at 32,767 files); whether the file names are in
    // their pane before the first entries are selected (LongBrowser's passes over its grids run straight
    // after the walk, ShortBrowser's file-name pass at the end, so its name list starts unselected); and
    // whether a listing without sub-folders shows the bare file count beside the file paths.
    ScanResult::Flavour walk = ScanResult::Flavour::Short;
    bool fileNamesBeforeSelection = false;
    bool noFolderShowsFileCount = true;

    // The text a double-click action works on: a path box, or an entry of the folder-path or file-path pane
    // (at the folder-name pane's row, or at the pane's own current row).
    enum class ItemText { Text1, Text2, FolderPathAtNameRow, FolderPathRow, FilePathRow };
    ItemText folderOpenText = ItemText::Text1;
    ItemText folderLocateText = ItemText::FolderPathAtNameRow;
    bool folderActionMovesPathRow = false; // the folder-path pane's row follows the folder-name pane's
    ItemText filePathsActionText = ItemText::FilePathRow;
    ItemText fileNamesActionText = ItemText::FilePathRow;
    ItemText searchFolderText = ItemText::FolderPathRow;
    ItemText searchFileText = ItemText::FilePathRow;
    // Setting a list box's ListIndex runs its click handler; setting a grid's Row does not.
    bool selectingRunsClick = true;
    // List positions and counts of list boxes are 16-bit: a serial number past 32,767 overflows. A grid's
    // are 32-bit.
    bool sixteenBitPositions = true;

    QString folderMenuCaption;
    QStringList folderMenuNames;
    QStringList folderMenuCaptions;
    int folderMenuSeparatorBefore = -1; // index of the entry a separator precedes; -1 for none
    QString fileMenuCaption;
    QStringList fileMenuNames;
    QStringList fileMenuCaptions;
    int fileMenuSeparatorBefore = -1;

    // What the context menus and the copies into the collection folder act on. A right-click in ShortBrowser
    // selects the entry under the mouse first, in its folder list only once something is selected; LongBrowser
    // acts on the rows current before the click. ShortBrowser reads a partner list at the index of the list
    // clicked; LongBrowser reads each grid's current cell, and copies the file named in the file path box.
    bool rightClickSelects = true;
    bool menusReadCurrentCells = false;
    // What they say. "C:\Quillbox" and "C:\QUILLBOX" stand for the collection folder's path; %1 is the item's
    // name in capitals.
    QString replaceFileQuestion;
    QString folderCopiedReport;
    QString absoluteNameHeading;

    QList<Restore> restore;

    // The result pane names: "List1".."List4" or "MSFlexGrid1".."MSFlexGrid4".
    QString paneName(int number) const;

    static const BrowserFlavour& shortBrowser();
    static const BrowserFlavour& longBrowser();
};
