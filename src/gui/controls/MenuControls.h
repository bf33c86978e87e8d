// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QMenu;

// The two pop-up menus: `mnuPopUp2` for folders, `mnuPopUp` for files.
struct MenuControls
{
    QMenu* mnuPopUp = nullptr;
    QMenu* mnuPopUp2 = nullptr;
};
