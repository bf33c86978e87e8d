// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/BrowserControls.h"
#include "flavour/BrowserFlavour.h"

class QWidget;

// The resize rule of a browser window, run on every resize and change of state: the properties the layout
// table's `restore` names go back to their design values, or, while the window is maximised, take values from
// the window's size. The file-names toggle works only in the design size.
class ResizeRule
{
public:
    ResizeRule(QWidget& window, const BrowserFlavour& flavour, const BrowserControls& ui)
        : m_window(window), m_flavour(flavour), m_ui(ui)
    {
    }

    void apply();

private:
    QWidget& m_window;
    const BrowserFlavour& m_flavour;
    const BrowserControls& m_ui;
    bool m_applying = false;
};
