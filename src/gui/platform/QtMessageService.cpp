// SPDX-License-Identifier: GPL-3.0-or-later

#include "QtMessageService.h"

#include "ChoiceRequired.h"

#include <QApplication>
#include <QMessageBox>

Answer QtMessageService::message(const QString& text, int style, const QString& title)
{
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(title.isEmpty() ? QApplication::applicationDisplayName() : title);
    // The texts carry CR LF line breaks; a lone CR would show as a box on some styles.
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    box.setText(shown);

    switch (style & 0x70) {
    case 16:
        box.setIcon(QMessageBox::Critical);
        break;
    case 32:
        box.setIcon(QMessageBox::Question);
        break;
    case 48:
        box.setIcon(QMessageBox::Warning);
        break;
    case 64:
        box.setIcon(QMessageBox::Information);
        break;
    default:
        box.setIcon(QMessageBox::NoIcon);
        break;
    }
    switch (style & 7) {
    case 1:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case 3:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    case 4:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    default:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    }
    new ChoiceRequired(box);
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        // Escape on an OK box closes it like its only button.
        return Answer::Ok;
    }
}
