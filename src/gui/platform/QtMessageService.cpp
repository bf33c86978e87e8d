// SPDX-License-Identifier: GPL-3.0-or-later

#include "QtMessageService.h"

#include "ChoiceRequired.h"

#include <QApplication>
#include <QMessageBox>

Answer QtMessageService::message(const QString& text, MessageStyle style, const QString& title)
{
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(title.isEmpty() ? QApplication::applicationDisplayName() : title);
    // The texts carry CR LF line breaks; a lone CR would show as a box on some styles.
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    box.setText(shown);

    using Icon = MessageStyle::Icon;
    using Buttons = MessageStyle::Buttons;
    switch (style.icon()) {
    case Icon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    case Icon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case Icon::Exclamation:
        box.setIcon(QMessageBox::Warning);
        break;
    case Icon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case Icon::None:
        box.setIcon(QMessageBox::NoIcon);
        break;
    }
    switch (style.buttons()) {
    case Buttons::OkCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case Buttons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    case Buttons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    case Buttons::Ok:
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
