// SPDX-License-Identifier: GPL-3.0-or-later

#include "ChoiceRequired.h"

#include <QKeyEvent>
#include <QMessageBox>

ChoiceRequired::ChoiceRequired(QMessageBox& box) : QObject(&box)
{
    if (box.button(QMessageBox::Yes) && box.button(QMessageBox::No) && !box.button(QMessageBox::Cancel))
        box.installEventFilter(this);
}

bool ChoiceRequired::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Close ||
        (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel))) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}
