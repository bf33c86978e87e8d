// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>

class ClickableFrame;
class ClickableLabel;
class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListView;
class QMenu;
class QPushButton;
class QRadioButton;
class QTableView;
class QTreeView;
class QWidget;

// The controls of a browser window under the names the design gives them; an array element `Label1(5)` is
// `Label1[5]` here and "Label1_5" as object name. Panes the flavour does not have stay null: `List1`..`List4`
// in LongBrowser, `MSFlexGrid1`..`MSFlexGrid4` in ShortBrowser, the go-to frame in ShortBrowser.
struct BrowserControls
{
    QLabel* Label3 = nullptr;
    QLabel* Label2 = nullptr;
    QComboBox* Drive1 = nullptr;
    QTreeView* Dir1 = nullptr;
    std::array<QLabel*, 4> Label4{};
    std::array<QLabel*, 9> Label1{};
    ClickableLabel* Label11 = nullptr;
    ClickableLabel* Label8 = nullptr;
    QLabel* Label5 = nullptr;
    QLabel* Label10 = nullptr;
    QPushButton* List_Folders = nullptr;
    QPushButton* CreateTextFiles = nullptr;
    QPushButton* Label9Com = nullptr;
    QPushButton* Command1 = nullptr;
    QFrame* Frame2 = nullptr;
    QFrame* Frame3 = nullptr;
    QFrame* Frame4 = nullptr;
    QFrame* pathFrame = nullptr;
    QFrame* modeFrame = nullptr; // Frame5 in ShortBrowser, Frame6 in LongBrowser
    QRadioButton* Option1 = nullptr;
    QRadioButton* Option2 = nullptr;
    ClickableLabel* Image2 = nullptr;
    ClickableLabel* Image3 = nullptr;
    ClickableLabel* Image4 = nullptr;
    ClickableLabel* Image6 = nullptr;
    ClickableFrame* playerFrame = nullptr;         // Frame6 in ShortBrowser, Frame7 in LongBrowser
    std::array<ClickableLabel*, 2> clickToClose{}; // Label12 / Label13, indices 0 and 1
    QWidget* WindowsMediaPlayer1 = nullptr;

    std::array<QListView*, 6> List{};        // List1..List5 at their numbers; [0] unused
    std::array<QTableView*, 5> MSFlexGrid{}; // MSFlexGrid1..MSFlexGrid4 at their numbers; [0] unused
    QLineEdit* Text1 = nullptr;
    QLineEdit* Text2 = nullptr;
    QLineEdit* Text3 = nullptr;
    QLineEdit* Text4 = nullptr;
    QLineEdit* Text5 = nullptr;

    // Search section.
    QFrame* Frame1 = nullptr;
    QLabel* Label9 = nullptr;
    QLineEdit* srchFolder = nullptr;
    QPushButton* SearchFolders = nullptr;
    QPushButton* SearchFiles = nullptr;

    // LongBrowser's go-to frame and the banner that takes its place until a listing ends.
    QFrame* Frame5 = nullptr;
    QPushButton* GoToFolder = nullptr;
    QPushButton* GoToFilePath = nullptr;
    QPushButton* GoToFile = nullptr;
    ClickableLabel* Image1 = nullptr;

    QMenu* mnuPopUp = nullptr;  // the file menu
    QMenu* mnuPopUp2 = nullptr; // the folder menu
};
