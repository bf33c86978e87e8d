// SPDX-License-Identifier: GPL-3.0-or-later

#include "ClickableLabel.h"

#include <QMouseEvent>

void ClickableLabel::mouseReleaseEvent(QMouseEvent* event)
{
    // Accepted here, so a label inside a clickable frame does not click the frame as well.
    event->accept();
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        emit clicked();
}

void ClickableLabel::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
}
