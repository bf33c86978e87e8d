// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStyledItemDelegate>

// Draws a grid's cells as the grid control did: a selected cell that has colours of its own (CellForeColor,
// CellBackColor) shows them, with the selection as a frame in the selection colour around it, so that a cell
// marked red stays red while it is the current one. Every other selected cell takes the selection colours.
class CurrentCellDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
