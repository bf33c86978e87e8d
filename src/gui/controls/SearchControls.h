// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QFrame;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;

// The search section `Frame1`, over the lower part of the file-path pane while it is shown: the search text,
// the two search buttons and the result list `List5`. Its title and count are status labels.
struct SearchControls
{
    QFrame* Frame1 = nullptr;
    QLabel* Label9 = nullptr;
    QLineEdit* srchFolder = nullptr;
    QPushButton* SearchFolders = nullptr;
    QPushButton* SearchFiles = nullptr;
    QListView* List5 = nullptr;
};
