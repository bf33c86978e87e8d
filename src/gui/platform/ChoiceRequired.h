// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

class QMessageBox;

// Keeps a Yes/No box up until one of its two buttons is pressed. Such a box has no Cancel, so neither Escape
// nor the title bar's close box stands for an answer; left to itself, QMessageBox would take either as No.
// Boxes with a Cancel or with a single button are left as they are: there Escape means Cancel or that button.
class ChoiceRequired : public QObject
{
    Q_OBJECT
public:
    explicit ChoiceRequired(QMessageBox& box);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
