// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/BrowserControls.h"
#include "flavour/BrowserFlavour.h"

class QWidget;
class VolumeService;

// Makes every control of a browser window, gives each its design name, look and place from the flavour's layout
// table, and hands them back in their groups. Nothing is connected here: the window and its helpers wire what
// they own.
class BrowserBuilder
{
public:
    static BrowserControls build(QWidget* window, const BrowserFlavour& flavour, const VolumeService& volumes);

private:
    BrowserBuilder(QWidget* window, const BrowserFlavour& flavour, const VolumeService& volumes)
        : m_window(window), m_flavour(flavour), m_volumes(volumes)
    {
    }

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
    const VolumeService& m_volumes;
    BrowserControls m_ui;
};
