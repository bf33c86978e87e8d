// SPDX-License-Identifier: GPL-3.0-or-later

#include "ClickableFrame.h"

#include <QMouseEvent>

void ClickableFrame::mouseReleaseEvent(QMouseEvent* event)
{
    // Only the frame's own surface counts: a click a child passes on (the video picture, which takes no clicks
    // of its own) is not a click on the frame.
    const QPoint pos = event->position().toPoint();
    if (event->button() == Qt::LeftButton && rect().contains(pos) && !childAt(pos))
        emit clicked();
    QFrame::mouseReleaseEvent(event);
}
