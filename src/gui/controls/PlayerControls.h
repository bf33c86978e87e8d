// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>

class ClickableFrame;
class ClickableLabel;
class QWidget;

// The player's frame (Frame6 in ShortBrowser, Frame7 in LongBrowser), hidden until something plays, with the
// player's picture area and its two "Click to Close" labels (Label12 / Label13, indices 0 and 1).
struct PlayerControls
{
    ClickableFrame* playerFrame = nullptr;
    QWidget* WindowsMediaPlayer1 = nullptr;
    std::array<ClickableLabel*, 2> clickToClose{};
};
