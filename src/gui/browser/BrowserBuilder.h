// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/BrowserControls.h"
#include "flavour/BrowserFlavour.h"

class QWidget;

// Makes every control of a browser window, gives each its design name, look and place from the flavour's layout
// table, and hands them back in their groups. Nothing is connected here: the window and its helpers wire what
// they own.
class BrowserBuilder
{
public:
    static BrowserControls build(QWidget* window, const BrowserFlavour& flavour);

private:
    BrowserBuilder(QWidget* window, const BrowserFlavour& flavour) : m_window(window), m_flavour(flavour) {}

    void buildWindow();
    void buildNavigation();
    void buildPanes();
    void buildPathFrame();
    void buildModeAndPictures();
    void buildSearchSection();
    void buildPlayerFrame();
    void buildGoToFrame();
    void buildMenus();
    void buildStatusLines();

    QWidget* m_window;
    const BrowserFlavour& m_flavour;
    BrowserControls m_ui;
};
