// SPDX-License-Identifier: GPL-3.0-or-later

#include "ResultGrid.h"

#include "CurrentCellDelegate.h"
#include "platform/Twips.h"

#include <QHeaderView>
#include <QMouseEvent>

ResultGrid::ResultGrid(QWidget* parent) : QTableView(parent)
{
    horizontalHeader()->hide();
    horizontalHeader()->setStretchLastSection(false);
    horizontalHeader()->setDefaultSectionSize(Twips::toPx(10000));
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(qMax(Twips::toPx(240), fontMetrics().height() + 2));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setWordWrap(false);
    // Scrolling by columns would never reveal the end of the one wide column.
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setCornerButtonEnabled(false);
    setItemDelegate(new CurrentCellDelegate(this));

    QPalette pal = palette();
    pal.setColor(QPalette::Inactive, QPalette::Highlight, pal.color(QPalette::Active, QPalette::Highlight));
    pal.setColor(QPalette::Inactive, QPalette::HighlightedText, pal.color(QPalette::Active, QPalette::HighlightedText));
    setPalette(pal);
}

int ResultGrid::rows() const
{
    return model() ? model()->rowCount() : 0;
}

int ResultGrid::row() const
{
    if (rows() == 0)
        return -1;
    const QModelIndex current = currentIndex();
    return current.isValid() ? current.row() : 0;
}

void ResultGrid::setRow(int row)
{
    if (!selectionModel() || row < 0 || row >= rows())
        return;
    selectionModel()->setCurrentIndex(model()->index(row, 0),
                                      QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

QString ResultGrid::text() const
{
    const int r = row();
    return r < 0 ? QString() : model()->index(r, 0).data().toString();
}

void ResultGrid::setSelectionColours(const QColor& back, const QColor& fore)
{
    QPalette pal = palette();
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        pal.setColor(group, QPalette::Highlight, back);
        pal.setColor(group, QPalette::HighlightedText, fore);
    }
    setPalette(pal);
}

void ResultGrid::mousePressEvent(QMouseEvent* event)
{
    // Below the last row there is no cell to go to: the current row stays, and so does its highlight.
    if (!indexAt(event->position().toPoint()).isValid()) {
        event->accept();
        return;
    }
    QTableView::mousePressEvent(event);
}

void ResultGrid::mouseReleaseEvent(QMouseEvent* event)
{
    QTableView::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && viewport()->rect().contains(event->position().toPoint()))
        emit gridClicked();
}
