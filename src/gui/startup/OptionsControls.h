// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>

class ClickableLabel;
class QFrame;
class QLabel;
class QRadioButton;
class QToolButton;

// The controls of Options under the design's names; `Option1(0)` is `Option1[0]` and "Option1_0".
struct OptionsControls
{
    QFrame* Frame1 = nullptr;
    QLabel* Label3 = nullptr;
    QLabel* Label2 = nullptr;
    std::array<QRadioButton*, 2> Option1{};
    std::array<QLabel*, 2> Label1{};
    QToolButton* OptionSelect = nullptr;
    QRadioButton* Option2 = nullptr;
    ClickableLabel* Image1 = nullptr;
};
