// SPDX-License-Identifier: GPL-3.0-or-later

#include "QtInputService.h"

#include <QApplication>
#include <QInputDialog>

QString QtInputService::inputBox(const QString& prompt, const QString& title, const QString& defaultText)
{
    bool ok = false;
    const QString text = QInputDialog::getText(QApplication::activeWindow(),
                                               title.isEmpty() ? QApplication::applicationDisplayName() : title, prompt,
                                               QLineEdit::Normal, defaultText, &ok);
    return ok ? text : QString();
}
