// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QString>

class QWidget;
struct BrowserFlavour;

// What a screen reader says for each control of a window, found by its design name (its objectName). A control
// that shows no caption of its own (a list, a grid, a box, a picture, a frame) gets its purpose as its accessible
// name; one whose caption speaks for it (a label, a button with text) keeps the caption as its name and gets the
// purpose as its description, where the caption alone does not tell it apart (the two "Quillary" options).
namespace ControlPurposes {

struct Purpose
{
    QString control; // the design name
    QString purpose;
};

void apply(QWidget* window, const QList<Purpose>& purposes);

void nameOptionsControls(QWidget* options);
void nameBrowserControls(QWidget* browser, const BrowserFlavour& flavour);

} // namespace ControlPurposes
