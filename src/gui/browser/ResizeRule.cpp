// SPDX-License-Identifier: GPL-3.0-or-later

#include "ResizeRule.h"

#include "controls/ClickableFrame.h"
#include "controls/ClickableLabel.h"
#include "platform/Twips.h"

#include <QFrame>

void ResizeRule::apply()
{
    if (m_applying)
        return;
    m_applying = true;
    const bool maximised = m_window.isMaximized();
    // The same properties in both states: design values when normal, values from the window's size when
    // maximised, where the file-path pane reaches to the file-name pane and the path boxes to the right edge.
    for (const BrowserLayout::Restore& step : m_flavour.layout.restore) {
        auto* w = m_window.findChild<QWidget*>(step.control);
        if (!w)
            continue;
        int px = Twips::toPx(step.twips);
        if (maximised) {
            if (step.control == m_flavour.behaviour.paneName(3) && step.property == BrowserLayout::Restore::Width)
                px = m_ui.status.Frame4->x() - w->x() - Twips::toPx(60);
            else if (step.control == QLatin1String("Label5") && step.property == BrowserLayout::Restore::Width)
                px = m_window.findChild<QWidget*>(m_flavour.behaviour.paneName(3))->width() - 1;
            else if (step.control.startsWith(QLatin1String("Text")))
                px = m_window.width() - w->x() - Twips::toPx(105);
            else if (w == m_ui.player.playerFrame)
                px = (m_window.width() - w->width()) / 2;
        }
        switch (step.property) {
        case BrowserLayout::Restore::Left:
            w->move(px, w->y());
            break;
        case BrowserLayout::Restore::Top:
            w->move(w->x(), px);
            break;
        case BrowserLayout::Restore::Width:
            w->resize(px, w->height());
            break;
        case BrowserLayout::Restore::Height:
            w->resize(w->width(), px);
            break;
        }
    }
    m_ui.paths.Label8->setEnabled(!maximised);
    m_applying = false;
}
