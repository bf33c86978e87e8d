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

// The maximised window: the left column (drive, tree, buttons, totals) keeps its design size and place, and what
// lies to the right of it takes the rest of the width in the proportions of the wide design (all four panes in
// view), so the margin between the column and the panes stays as designed. Likewise the panes keep their design
// top and reach down to the path frame, which keeps its height along the bottom edge and stretches its boxes and
// the go-to frame's buttons and boxes with the width. A control's children share out its new size as they shared
// its design size; the folder and file pictures beside the path labels go down with the path frame and keep their
// place by the labels.
void ResizeRule::stretchToWindow()
{
    const BrowserLayout& layout = m_flavour.layout;
    const QRect panes = Twips::toPx(layout.rect(m_flavour.behaviour.paneName(2)));
    const int designHeight = Twips::toPx(layout.clientTwips.height());
    const int bandTop = Twips::toPx(layout.rect(QStringLiteral("pathFrame")).top());
    const int newBandTop = qMax(bandTop, m_window.height() - (designHeight - bandTop));
    const double sx = (m_window.width() - panes.left()) / double(Twips::toPx(layout.wideWidth - 120) - panes.left());
    const double sy = (newBandTop - panes.top()) / double(bandTop - panes.top());
    // Window coordinates: what lies left of or above the panes stays, what lies beyond them is stretched.
    auto mapX = [&](int x) { return x <= panes.left() ? x : panes.left() + qRound((x - panes.left()) * sx); };
    auto mapY = [&](int y) { return y <= panes.top() ? y : panes.top() + qRound((y - panes.top()) * sy); };

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
    // A control of the window, or of the path frame, which spans the window's width and keeps its height.
    auto place = [&](QWidget* w, bool stretchHeight, bool stretchWidth = true) {
        const QRect px = designPlace(w);
        if (px.isNull())
            return;
        const bool inPathFrame = w->parentWidget() == m_ui.paths.pathFrame;
        const int left = mapX(px.left()), top = inPathFrame ? px.top() : mapY(px.top());
        const int width = stretchWidth ? mapX(px.left() + px.width()) - left : w->width();
        const int height = stretchHeight ? mapY(px.top() + px.height()) - top : w->height();
        w->setGeometry(left, top, width, height);
    };
    // The children of a control placed above, in the proportions of their parent.
    auto placeChildren = [&](QWidget* parent, QWidget* stretchedHeight) {
        const QRect design = parent ? Twips::toPx(layout.rect(parent->objectName())) : QRect();
        if (design.isEmpty())
            return;
        const double kx = parent->width() / double(design.width()), ky = parent->height() / double(design.height());
        for (QWidget* w : parent->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            const QRect px = designPlace(w);
            if (px.isNull())
                continue;
            w->setGeometry(qRound(px.x() * kx), qRound(px.y() * ky), qRound(px.width() * kx),
                           w == stretchedHeight ? qRound(px.height() * ky) : w->height());
        }
    };
    for (int n = 1; n <= 4; ++n)
        place(m_window.findChild<QWidget*>(m_flavour.behaviour.paneName(n)), true);
    for (QWidget* w : std::initializer_list<QWidget*>{m_ui.status.Frame4, m_ui.status.Label5, m_ui.status.Label1[1],
                                                      m_ui.mode.Label10})
        place(w, false);
    place(m_ui.search.Frame1, true);
    placeChildren(m_ui.search.Frame1, m_ui.search.List5);
    place(m_ui.player.playerFrame, false, false);
    place(m_ui.mode.modeFrame, false, false);
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
        place(w, false);
    placeChildren(m_ui.goTo.Frame5, nullptr);
    for (QWidget* w : std::initializer_list<QWidget*>{m_ui.paths.Label8, m_ui.status.Label11, m_ui.status.Label4[1],
                                                      m_ui.goTo.Image1})
        place(w, false, false);
}
