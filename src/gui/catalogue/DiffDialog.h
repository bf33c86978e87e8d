// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"

#include <QDialog>

class DiffModel;

// Two scans of one folder compared: a line of totals above a sortable table of what was added, removed and
// changed. Not modal, so several comparisons and the search stay usable side by side.
class DiffDialog : public QDialog
{
    Q_OBJECT
public:
    DiffDialog(CatalogueDiff diff, QWidget* parent = nullptr);

    DiffModel* model() const { return m_model; }
    static QString summary(const CatalogueDiff& diff);

private:
    DiffModel* m_model;
};
