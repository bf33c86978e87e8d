// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>

class QListView;
class QTableView;

// The four result panes at their design numbers (1 folder paths, 2 folder names, 3 file paths, 4 file names);
// [0] is unused. ShortBrowser has the list boxes `List1`..`List4`, LongBrowser the grids
// `MSFlexGrid1`..`MSFlexGrid4`; the other array stays null.
struct PaneControls
{
    std::array<QListView*, 5> List{};
    std::array<QTableView*, 5> MSFlexGrid{};
};
