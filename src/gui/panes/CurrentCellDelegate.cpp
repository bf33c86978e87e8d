// SPDX-License-Identifier: GPL-3.0-or-later

#include "CurrentCellDelegate.h"

#include <QPainter>

void CurrentCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const bool ownColours = index.data(Qt::ForegroundRole).isValid() || index.data(Qt::BackgroundRole).isValid();
    if (!ownColours || !(option.state & QStyle::State_Selected)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem own = option;
    own.state &= ~QStyle::State_Selected;
    // The view has already laid the selection colour under the row; a cell without a back colour of its own
    // shows the grid's ordinary background instead.
    if (!index.data(Qt::BackgroundRole).isValid())
        painter->fillRect(option.rect, option.palette.brush(QPalette::Base));
    QStyledItemDelegate::paint(painter, own, index);
    painter->save();
    painter->setPen(QPen(option.palette.color(QPalette::Highlight), 2));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(QRectF(option.rect).adjusted(1, 1, -1, -1));
    painter->restore();
}
