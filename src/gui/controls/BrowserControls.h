// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/GoToControls.h"
#include "controls/MenuControls.h"
#include "controls/ModeControls.h"
#include "controls/NavigationControls.h"
#include "controls/PaneControls.h"
#include "controls/PathControls.h"
#include "controls/PlayerControls.h"
#include "controls/SearchControls.h"
#include "controls/StatusControls.h"

// The controls of a browser window, in the groups that own them, under the names the design gives them; an
// array element `Label1(5)` is `Label1[5]` here and "Label1_5" as object name. Each helper of the window is
// handed only the groups it works on.
struct BrowserControls
{
    NavigationControls navigation;
    PaneControls panes;
    PathControls paths;
    StatusControls status;
    ModeControls mode;
    PlayerControls player;
    SearchControls search;
    GoToControls goTo;
    MenuControls menus;
};
