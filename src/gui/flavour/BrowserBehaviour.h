// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/ScanResult.h"

#include <QString>

// How the two browser windows behave differently; everything else about them is one implementation.
struct BrowserBehaviour
{
    enum class Panes { ListBoxes, Grids };
    Panes panes = Panes::ListBoxes;
    bool hasGoToFrame = false; // Frame5 with the go-to boxes, and the banner Image1 it takes turns with

    // The listing: the walk's flavour (ShortBrowser stops at 32,767 files); whether the file names are in
    // their pane before the first entries are selected (LongBrowser's passes over its grids run straight
    // after the walk, ShortBrowser's file-name pass at the end, so its name list starts unselected); and
    // whether a listing without sub-folders shows the bare file count beside the file paths.
    ScanResult::Flavour walk = ScanResult::Flavour::Short;
    bool fileNamesBeforeSelection = false;
    bool noFolderShowsFileCount = true;
    // Whether "Create Text Files" times its writing in Label12.
    bool timesWriting = false;

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

    // What the context menus and the copies into the collection folder act on. A right-click in ShortBrowser
    // selects the entry under the mouse first, in its folder list only once something is selected; LongBrowser
    // acts on the rows current before the click. ShortBrowser reads a partner list at the index of the list
    // clicked; LongBrowser reads each grid's current cell, and copies the file named in the file path box.
    bool rightClickSelects = true;
    bool menusReadCurrentCells = false;

    bool grids() const { return panes == Panes::Grids; }
    // The result pane names: "List1".."List4" or "MSFlexGrid1".."MSFlexGrid4".
    QString paneName(int number) const;
};
