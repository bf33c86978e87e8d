// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>

class ClickableLabel;
class QFrame;
class QLabel;

// The status labels: the counters `Label1(0)`..`Label1(6)` in their frames, the search section's title and count
// `Label1(8)` and `Label1(7)`, the captions `Label4(0)`..`Label4(3)` (folder path, collection folder, file path,
// drive), `Label5` under the file-path pane, the timing label `Label11`, LongBrowser's writing label `Label12`
// (null in ShortBrowser) and the live count of a walk.
struct StatusControls
{
    std::array<QLabel*, 9> Label1{};
    std::array<QLabel*, 4> Label4{};
    QFrame* Frame2 = nullptr;
    QFrame* Frame3 = nullptr;
    QFrame* Frame4 = nullptr;
    QLabel* Label5 = nullptr;
    ClickableLabel* Label11 = nullptr;
    QLabel* Label12 = nullptr;
    QLabel* scanProgress = nullptr;
};
