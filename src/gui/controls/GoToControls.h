// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class ClickableLabel;
class QFrame;
class QLineEdit;
class QPushButton;

// LongBrowser's go-to frame `Frame5` (a button and a number box per grid) and the banner `Image1` it takes
// turns with; all null in ShortBrowser.
struct GoToControls
{
    QFrame* Frame5 = nullptr;
    QPushButton* GoToFolder = nullptr;
    QLineEdit* Text4 = nullptr;
    QPushButton* GoToFilePath = nullptr;
    QLineEdit* Text3 = nullptr;
    QPushButton* GoToFile = nullptr;
    QLineEdit* Text5 = nullptr;
    ClickableLabel* Image1 = nullptr;
};
