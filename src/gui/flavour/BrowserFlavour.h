// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "flavour/BrowserBehaviour.h"
#include "flavour/BrowserLayout.h"
#include "flavour/BrowserMenus.h"
#include "flavour/BrowserTexts.h"

// What tells the two browser windows apart: their texts, their layout, their behaviour and their menus.
struct BrowserFlavour
{
    BrowserTexts texts;
    BrowserBehaviour behaviour;
    BrowserMenus menus;
    BrowserLayout layout;

    static const BrowserFlavour& shortBrowser();
    static const BrowserFlavour& longBrowser();
};
