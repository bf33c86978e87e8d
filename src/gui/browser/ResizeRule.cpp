// SPDX-License-Identifier: GPL-3.0-or-later

#include "ResizeRule.h"

#include "controls/ClickableFrame.h"
#include "controls/ClickableLabel.h"
#include "platform/Twips.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListView>

void ResizeRule::apply()
{
    if (m_applying)
        return;
    m_applying = true;
    const bool maximised = m_window.isMaximized();
    if (maximised) {
        stretchToWindow();
    } else {
        for (const auto& [w, place] : std::as_const(m_normalPlaces)) {
            if (w)
                w->setGeometry(place);
        }
        m_normalPlaces.clear();
        restoreDesignValues();
    }
    m_ui.paths.Label8->setEnabled(!maximised);
    m_applying = false;
}

void ResizeRule::restoreDesignValues()
{
    for (const BrowserLayout::Restore& step : m_flavour.layout.restore) {
        auto* w = m_window.findChild<QWidget*>(step.control);
        if (!w)
            continue;
        const int px = Twips::toPx(step.twips);
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
}

// The maximised window: the panes, their frames and labels, the search section and the player take the window's
// width in the proportions of the wide design (all four panes in view), and its height down to the path frame,
// which keeps its height along the bottom edge and stretches its boxes and the go-to frame's buttons and boxes with
// the width. The search section's controls share out its new height as they shared its design height; the folder
// and file pictures beside the path labels go down with the path frame and keep their place by the labels.
void ResizeRule::stretchToWindow()
{
    const BrowserLayout& layout = m_flavour.layout;
    const double sx = m_window.width() / double(Twips::toPx(layout.wideWidth - 120));
    const int designHeight = Twips::toPx(layout.clientTwips.height());
    const int bandTop = Twips::toPx(layout.rect(QStringLiteral("pathFrame")).top());
    const int newBandTop = qMax(bandTop, m_window.height() - (designHeight - bandTop));
    const double sy = newBandTop / double(bandTop);

    const bool firstTime = m_normalPlaces.isEmpty();
    auto designPlace = [&](QWidget* w) {
        if (!w)
            return QRect();
        const QRect design = layout.rect(w->objectName());
        if (design.isNull())
            return QRect();
        if (firstTime)
            m_normalPlaces.append({w, w->geometry()});
        return Twips::toPx(design);
    };
    // `ty` scales the top: `sy` in a parent as much taller as the window, 1 in the path frame.
    auto place = [&](QWidget* w, double ty, bool stretchHeight, bool stretchWidth = true) {
        const QRect px = designPlace(w);
        if (px.isNull())
            return;
        w->setGeometry(qRound(px.x() * sx), qRound(px.y() * ty), stretchWidth ? qRound(px.width() * sx) : w->width(),
                       stretchHeight ? qRound(px.height() * sy) : w->height());
    };
    for (int n = 1; n <= 4; ++n)
        place(m_window.findChild<QWidget*>(m_flavour.behaviour.paneName(n)), sy, true);
    for (QWidget* w : std::initializer_list<QWidget*>{m_ui.status.Frame4, m_ui.status.Label5, m_ui.status.Label1[1],
                                                      m_ui.mode.Label10})
        place(w, sy, false);
    QFrame* search = m_ui.search.Frame1;
    place(search, sy, true);
    for (QWidget* w : search->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        place(w, sy, w == m_ui.search.List5);
    place(m_ui.player.playerFrame, sy, false, false);
    place(m_ui.mode.modeFrame, sy, false, false);
    for (QWidget* w : std::initializer_list<QWidget*>{m_ui.mode.Image3, m_ui.mode.Image4}) {
        const QRect px = designPlace(w);
        if (!px.isNull())
            w->move(px.x(), px.y() + newBandTop - bandTop);
    }

    QFrame* pathFrame = m_ui.paths.pathFrame;
    if (firstTime)
        m_normalPlaces.append({pathFrame, pathFrame->geometry()});
    pathFrame->setGeometry(0, newBandTop, m_window.width(), pathFrame->height());
    for (QWidget* w : std::initializer_list<QWidget*>{m_ui.paths.Text1, m_ui.paths.Text2, m_ui.goTo.Frame5})
        place(w, 1, false);
    if (m_ui.goTo.Frame5) {
        for (QWidget* w : m_ui.goTo.Frame5->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            place(w, 1, false);
    }
    for (QWidget* w : std::initializer_list<QWidget*>{m_ui.paths.Label8, m_ui.status.Label11, m_ui.status.Label4[1],
                                                      m_ui.goTo.Image1})
        place(w, 1, false, false);
}
