// SPDX-License-Identifier: GPL-3.0-or-later

#include "AppProgramEnd.h"

#include <QApplication>
#include <QWidget>

void AppProgramEnd::end()
{
    m_ended = true;
    // No further events reach the windows: they are hidden here and destroyed when main() returns.
    for (QWidget* w : QApplication::topLevelWidgets())
        w->hide();
    QCoreApplication::exit(0);
}
