// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserFlavour.h"

const BrowserFlavour& BrowserFlavour::shortBrowser()
{
    static const BrowserFlavour f = [] {
        BrowserFlavour s;
        BrowserTexts& t = s.texts;
        t.objectName = QStringLiteral("ShortBrowser");
        t.caption = QStringLiteral("QUILLARY (Short Version)");
        t.label10Text = QStringLiteral("Set Option &  Double Click Folder or File to open");
        t.modeFrameName = QStringLiteral("Frame5");
        t.playerFrameName = QStringLiteral("Frame6");
        t.closeLabelName = QStringLiteral("Label12");
        t.replaceFileQuestion = QStringLiteral(
            "File of this name exists in the Folder 'C:\\Quillbox'. Would you like to replace this file?");
        t.folderCopiedReport = QStringLiteral("Folder/ Sub-Folders of the Folder '%1' copied to 'C:\\QUILLBOX' folder");
        t.absoluteNameHeading = QStringLiteral("Aboslute File Name is:");

        BrowserBehaviour& b = s.behaviour;
        b.panes = BrowserBehaviour::Panes::ListBoxes;
        b.hasGoToFrame = false;
        b.walk = ScanResult::Flavour::Short;
        b.fileNamesBeforeSelection = false;
        b.noFolderShowsFileCount = true;
        b.timesWriting = false;
        b.rightClickSelects = true;
        b.menusReadCurrentCells = false;

        s.menus.folderMenu = {QStringLiteral("PopUpMenu2"),
                              {{QStringLiteral("OpenFolder"), QStringLiteral("Open the Selected Folder")},
                               {QStringLiteral("LocateThisFolder"), QStringLiteral("Locate This Folder")},
                               {QStringLiteral("ShowSerialNo2"), QStringLiteral("Show List Serial Number")},
                               {QStringLiteral("ShowFolderPath"), QStringLiteral("Show Selected Folder Path")},
                               {QStringLiteral("SaveList2Contents"), QStringLiteral("Save Contents of This List")},
                               {QStringLiteral("CopyFolders"), QStringLiteral("Copy this Folder to C:\\Quillbox")}},
                              4};
        s.menus.fileMenu = {QStringLiteral("Popup Menu"),
                            {{QStringLiteral("OpenThisFile"), QStringLiteral("Open The Selected File")},
                             {QStringLiteral("LocateThisFile"), QStringLiteral("Locate The Selected File")},
                             {QStringLiteral("ShowSerialNo"), QStringLiteral("Show List Serial Number")},
                             {QStringLiteral("AbsoluteFileName"), QStringLiteral("Show Absolute FileName")},
                             {QStringLiteral("SaveList3Contents"), QStringLiteral("Save Contents of This List")},
                             {QStringLiteral("SaveFile_3"), QStringLiteral("Save This File to C:\\Quillbox")}},
                            4};

        s.layout = BrowserLayout::make(
            t, b, {QSize(10455, 8535), 1605, QRect(30, 6495, 2415, 405), QRect(165, 405, 4770, 3930), 6870});
        return s;
    }();
    return f;
}

const BrowserFlavour& BrowserFlavour::longBrowser()
{
    static const BrowserFlavour f = [] {
        BrowserFlavour l;
        BrowserTexts& t = l.texts;
        t.objectName = QStringLiteral("LongBrowser");
        t.caption = QStringLiteral("QUILLARY (Long Version)");
        t.label10Text = QStringLiteral(" Set Option &  Double Click Folder or File to open");
        t.modeFrameName = QStringLiteral("Frame6");
        t.playerFrameName = QStringLiteral("Frame7");
        t.closeLabelName = QStringLiteral("Label13");
        t.replaceFileQuestion =
            QStringLiteral("File %1 exists in the Folder 'C:\\Quillbox'. Would you like to replace this file?");
        t.folderCopiedReport = QStringLiteral("Folder/ Sub-Folders of %1 copied to 'C:\\QUILLBOX' folder");
        t.absoluteNameHeading = QStringLiteral("Aboslute FileName is:");

        BrowserBehaviour& b = l.behaviour;
        using ItemText = BrowserBehaviour::ItemText;
        b.panes = BrowserBehaviour::Panes::Grids;
        b.hasGoToFrame = true;
        b.walk = ScanResult::Flavour::Long;
        b.fileNamesBeforeSelection = true;
        b.noFolderShowsFileCount = false;
        b.timesWriting = true;
        b.folderOpenText = ItemText::FolderPathRow;
        b.folderLocateText = ItemText::Text1;
        b.folderActionMovesPathRow = true;
        b.filePathsActionText = ItemText::FilePathRow;
        b.fileNamesActionText = ItemText::Text2;
        b.searchFolderText = ItemText::Text1;
        b.searchFileText = ItemText::Text2;
        b.selectingRunsClick = false;
        b.sixteenBitPositions = false;
        b.rightClickSelects = false;
        b.menusReadCurrentCells = true;

        l.menus.folderMenu = {QStringLiteral("PopupMenu2"),
                              {{QStringLiteral("OpenFolder"), QStringLiteral("Open the Selected Folder")},
                               {QStringLiteral("LocateThisFolder"), QStringLiteral("Locate the Selected Folder")},
                               {QStringLiteral("ShowSerialNo2"), QStringLiteral("Show Item Serial Number")},
                               {QStringLiteral("ShowFolderPath"), QStringLiteral("ShowSelected Folder Path")},
                               {QStringLiteral("SaveMSFlexGrid2Contents"), QStringLiteral("SaveContents of this List")},
                               {QStringLiteral("CopyFolders"), QStringLiteral("Copy Selected Folder/ Sub-folders")}},
                              -1};
        l.menus.fileMenu = {QStringLiteral("PopupMenu"),
                            {{QStringLiteral("OpenThisFile"), QStringLiteral("Open the Selected File")},
                             {QStringLiteral("LocateThisFile"), QStringLiteral("Locate the Selected File")},
                             {QStringLiteral("ShowSerialNo3"), QStringLiteral("Show Item Serial Number")},
                             {QStringLiteral("FolderPathName"), QStringLiteral("Show Absolute File Name")},
                             {QStringLiteral("SaveMSFlexGrid3Contents"), QStringLiteral("Save Contents of this List")},
                             {QStringLiteral("SaveFileTo_MSF3"), QStringLiteral("Save this File to C:\\Quillbox")}},
                            4};

        l.layout = BrowserLayout::make(
            t, b, {QSize(10395, 8415), 1635, QRect(60, 6480, 2415, 405), QRect(30, 435, 4770, 3930), 6750});
        return l;
    }();
    return f;
}
