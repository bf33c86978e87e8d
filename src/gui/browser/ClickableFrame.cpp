// SPDX-License-Identifier: GPL-3.0-or-later

#include "ClickableFrame.h"

#include <QMouseEvent>

void ClickableFrame::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        emit clicked();
    QFrame::mouseReleaseEvent(event);
}
