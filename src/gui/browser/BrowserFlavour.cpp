// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserFlavour.h"

QString BrowserFlavour::paneName(int number) const
{
    return (panes == Panes::ListBoxes ? QStringLiteral("List") : QStringLiteral("MSFlexGrid")) +
           QString::number(number);
}

namespace {

QList<BrowserFlavour::Restore> restoreValues(const BrowserFlavour& f)
{
    using R = BrowserFlavour::Restore;
    return {
        {f.paneName(3), R::Width, 4800},
        {f.playerFrameName, R::Left, f.playerFrameTwips.left()},
        {QStringLiteral("Label5"), R::Width, 4785},
        {QStringLiteral("Text1"), R::Width, 7740},
        {QStringLiteral("Text2"), R::Width, 7740},
        {QStringLiteral("Frame3"), R::Height, 522},
        {QStringLiteral("Frame2"), R::Height, 429},
        {f.paneName(3), R::Height, 5910},
        // The folder list's height was always kept in pixels, not twips; 395 pixels make it as tall as the
        // file lists beside it.
        {f.paneName(2), R::Height, 395 * 15},
        {f.paneName(4), R::Height, 5925},
        {QStringLiteral("Frame4"), R::Top, 448},
        {QStringLiteral("Label10"), R::Top, 6330},
        {QStringLiteral("Image3"), R::Top, 7110},
        {QStringLiteral("Image4"), R::Top, 7215},
    };
}

} // namespace

const BrowserFlavour& BrowserFlavour::shortBrowser()
{
    static const BrowserFlavour f = [] {
        BrowserFlavour s;
        s.objectName = QStringLiteral("ShortBrowser");
        s.caption = QStringLiteral("QUILLARY (Short Version)");
        s.clientTwips = QSize(10455, 8535);
        s.panes = Panes::ListBoxes;
        s.label2Left = 1605;
        s.label10Text = QStringLiteral("Set Option &  Double Click Folder or File to open");
        s.modeFrameName = QStringLiteral("Frame5");
        s.modeFrameTwips = QRect(30, 6495, 2415, 405);
        s.playerFrameName = QStringLiteral("Frame6");
        s.playerFrameTwips = QRect(165, 405, 4770, 3930);
        s.closeLabelName = QStringLiteral("Label12");
        s.hasGoToFrame = false;
        s.pathFrameTop = 6870;
        s.walk = ScanResult::Flavour::Short;
        s.fileNamesBeforeSelection = false;
        s.noFolderShowsFileCount = true;
        s.folderMenuCaption = QStringLiteral("PopUpMenu2");
        s.folderMenuNames = {QStringLiteral("OpenFolder"),        QStringLiteral("LocateThisFolder"),
                             QStringLiteral("ShowSerialNo2"),     QStringLiteral("ShowFolderPath"),
                             QStringLiteral("SaveList2Contents"), QStringLiteral("CopyFolders")};
        s.folderMenuCaptions = {
            QStringLiteral("Open the Selected Folder"),   QStringLiteral("Locate This Folder"),
            QStringLiteral("Show List Serial Number"),    QStringLiteral("Show Selected Folder Path"),
            QStringLiteral("Save Contents of This List"), QStringLiteral("Copy this Folder to C:\\Quillbox")};
        s.folderMenuSeparatorBefore = 4;
        s.fileMenuCaption = QStringLiteral("Popup Menu");
        s.fileMenuNames = {QStringLiteral("OpenThisFile"),      QStringLiteral("LocateThisFile"),
                           QStringLiteral("ShowSerialNo"),      QStringLiteral("AbsoluteFileName"),
                           QStringLiteral("SaveList3Contents"), QStringLiteral("SaveFile_3")};
        s.fileMenuCaptions = {
            QStringLiteral("Open The Selected File"),     QStringLiteral("Locate The Selected File"),
            QStringLiteral("Show List Serial Number"),    QStringLiteral("Show Absolute FileName"),
            QStringLiteral("Save Contents of This List"), QStringLiteral("Save This File to C:\\Quillbox")};
        s.fileMenuSeparatorBefore = 4;
        s.rightClickSelects = true;
        s.menusReadCurrentCells = false;
        s.replaceFileQuestion = QStringLiteral(
            "File of this name exists in the Folder 'C:\\Quillbox'. Would you like to replace this file?");
        s.folderCopiedReport = QStringLiteral("Folder/ Sub-Folders of the Folder '%1' copied to 'C:\\QUILLBOX' folder");
        s.absoluteNameHeading = QStringLiteral("Aboslute File Name is:");
        s.restore = restoreValues(s);
        return s;
    }();
    return f;
}

const BrowserFlavour& BrowserFlavour::longBrowser()
{
    static const BrowserFlavour f = [] {
        BrowserFlavour l;
        l.objectName = QStringLiteral("LongBrowser");
        l.caption = QStringLiteral("QUILLARY (Long Version)");
        l.clientTwips = QSize(10395, 8415);
        l.panes = Panes::Grids;
        l.label2Left = 1635;
        l.label10Text = QStringLiteral(" Set Option &  Double Click Folder or File to open");
        l.modeFrameName = QStringLiteral("Frame6");
        l.modeFrameTwips = QRect(60, 6480, 2415, 405);
        l.playerFrameName = QStringLiteral("Frame7");
        l.playerFrameTwips = QRect(30, 435, 4770, 3930);
        l.closeLabelName = QStringLiteral("Label13");
        l.hasGoToFrame = true;
        l.pathFrameTop = 6750;
        l.walk = ScanResult::Flavour::Long;
        l.fileNamesBeforeSelection = true;
        l.noFolderShowsFileCount = false;
        l.folderOpenText = ItemText::FolderPathRow;
        l.folderLocateText = ItemText::Text1;
        l.folderActionMovesPathRow = true;
        l.filePathsActionText = ItemText::FilePathRow;
        l.fileNamesActionText = ItemText::Text2;
        l.searchFolderText = ItemText::Text1;
        l.searchFileText = ItemText::Text2;
        l.selectingRunsClick = false;
        l.sixteenBitPositions = false;
        l.folderMenuCaption = QStringLiteral("PopupMenu2");
        l.folderMenuNames = {QStringLiteral("OpenFolder"),
                             QStringLiteral("LocateThisFolder"),
                             QStringLiteral("ShowSerialNo2"),
                             QStringLiteral("ShowFolderPath"),
                             QStringLiteral("SaveMSFlexGrid2Contents"),
                             QStringLiteral("CopyFolders")};
        l.folderMenuCaptions = {
            QStringLiteral("Open the Selected Folder"),  QStringLiteral("Locate the Selected Folder"),
            QStringLiteral("Show Item Serial Number"),   QStringLiteral("ShowSelected Folder Path"),
            QStringLiteral("SaveContents of this List"), QStringLiteral("Copy Selected Folder/ Sub-folders")};
        l.folderMenuSeparatorBefore = -1;
        l.fileMenuCaption = QStringLiteral("PopupMenu");
        l.fileMenuNames = {QStringLiteral("OpenThisFile"),
                           QStringLiteral("LocateThisFile"),
                           QStringLiteral("ShowSerialNo3"),
                           QStringLiteral("FolderPathName"),
                           QStringLiteral("SaveMSFlexGrid3Contents"),
                           QStringLiteral("SaveFileTo_MSF3")};
        l.fileMenuCaptions = {
            QStringLiteral("Open the Selected File"),     QStringLiteral("Locate the Selected File"),
            QStringLiteral("Show Item Serial Number"),    QStringLiteral("Show Absolute File Name"),
            QStringLiteral("Save Contents of this List"), QStringLiteral("Save this File to C:\\Quillbox")};
        l.fileMenuSeparatorBefore = 4;
        l.rightClickSelects = false;
        l.menusReadCurrentCells = true;
        l.replaceFileQuestion =
            QStringLiteral("File %1 exists in the Folder 'C:\\Quillbox'. Would you like to replace this file?");
        l.folderCopiedReport = QStringLiteral("Folder/ Sub-Folders of %1 copied to 'C:\\QUILLBOX' folder");
        l.absoluteNameHeading = QStringLiteral("Aboslute FileName is:");
        l.restore = restoreValues(l);
        return l;
    }();
    return f;
}
