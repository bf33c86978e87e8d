// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTableView>

// A grid of results: one column 10000 twips wide, no header row, rows of one fixed height so that millions of
// them cost nothing to lay out. Like the grid control it stands in for it keeps a current row, shows it
// highlighted whether or not it has the focus, and reports a click anywhere in it, not only on a cell.
class ResultGrid : public QTableView
{
    Q_OBJECT
public:
    explicit ResultGrid(QWidget* parent = nullptr);

    int rows() const;
    // The current row (Row); -1 when the grid has no rows.
    int row() const;
    // Makes `row` current and selects it alone; out of range does nothing.
    void setRow(int row);
    // The current cell's text.
    QString text() const;
    // BackColorSel and ForeColorSel.
    void setSelectionColours(const QColor& back, const QColor& fore);

signals:
    void gridClicked();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
};
