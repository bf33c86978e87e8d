// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/BrowserControls.h"
#include "flavour/BrowserFlavour.h"

#include <QList>
#include <QPair>
#include <QPointer>
#include <QRect>
#include <QWidget>

// The resize rule of a browser window, run on every resize and change of state: the properties the layout
// table's `restore` names go back to their design values; while the window is maximised the panes and the
// controls around them are stretched from their design places to the window's size, and put back exactly where
// they stood when it is restored. The file-names toggle works only in the design size.
class ResizeRule
{
public:
    ResizeRule(QWidget& window, const BrowserFlavour& flavour, const BrowserControls& ui)
        : m_window(window), m_flavour(flavour), m_ui(ui)
    {
    }

    void apply();

private:
    void restoreDesignValues();
    void stretchToWindow();

    QWidget& m_window;
    const BrowserFlavour& m_flavour;
    const BrowserControls& m_ui;
    bool m_applying = false;
    // Where the stretched controls stood before the window was maximised, to put them back exactly.
    QList<QPair<QPointer<QWidget>, QRect>> m_normalPlaces;
};
