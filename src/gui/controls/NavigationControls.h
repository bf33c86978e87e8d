// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class DriveSelector;
class QLabel;
class QPushButton;
class QTreeView;

// The drive and folder choice and the command buttons down the left side: Label3 and the path label Label2,
// the drive selector and folder tree, "List All Folders & Files", "Create Text Files", the search toggle and the
// hidden Command1.
struct NavigationControls
{
    QLabel* Label3 = nullptr;
    QLabel* Label2 = nullptr;
    DriveSelector* Drive1 = nullptr;
    QTreeView* Dir1 = nullptr;
    QPushButton* List_Folders = nullptr;
    QPushButton* CreateTextFiles = nullptr;
    QPushButton* Label9Com = nullptr;
    QPushButton* Command1 = nullptr;
};
