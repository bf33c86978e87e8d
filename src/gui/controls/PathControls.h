// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class ClickableLabel;
class QFrame;
class QLineEdit;

// The frame along the bottom: the path boxes of the selected folder (`Text1`) and file (`Text2`), and the
// file-names toggle `Label8`.
struct PathControls
{
    QFrame* pathFrame = nullptr;
    QLineEdit* Text1 = nullptr;
    QLineEdit* Text2 = nullptr;
    ClickableLabel* Label8 = nullptr;
};
