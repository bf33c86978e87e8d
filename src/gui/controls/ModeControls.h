// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class ClickableLabel;
class QFrame;
class QLabel;
class QRadioButton;

// The double-click mode (`Option1` "Open", `Option2` "Locate") in its frame (Frame5 in ShortBrowser, Frame6 in
// LongBrowser), the hint `Label10` above it, and the pictures: back to Options (`Image6`), about (`Image2`) and
// the folder and file marks (`Image3`, `Image4`).
struct ModeControls
{
    QFrame* modeFrame = nullptr;
    QRadioButton* Option1 = nullptr;
    QRadioButton* Option2 = nullptr;
    QLabel* Label10 = nullptr;
    ClickableLabel* Image2 = nullptr;
    ClickableLabel* Image3 = nullptr;
    ClickableLabel* Image4 = nullptr;
    ClickableLabel* Image6 = nullptr;
};
