// SPDX-License-Identifier: GPL-3.0-or-later

#include "ResultList.h"

#include <QKeyEvent>

ResultList::ResultList(QWidget* parent) : QListView(parent)
{
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QAbstractItemView::clicked, this, &ResultList::listClicked);
}

int ResultList::listIndex() const
{
    const QModelIndex current = currentIndex();
    return current.isValid() ? current.row() : -1;
}

void ResultList::setListIndex(int row)
{
    if (!model() || !selectionModel())
        return;
    if (row < 0 || row >= model()->rowCount()) {
        selectionModel()->clear();
        return;
    }
    selectionModel()->setCurrentIndex(model()->index(row, 0), QItemSelectionModel::ClearAndSelect);
}

int ResultList::count() const
{
    return model() ? model()->rowCount() : 0;
}

QString ResultList::entry(int row) const
{
    if (!model() || row < 0 || row >= model()->rowCount())
        return {};
    return model()->index(row, 0).data().toString();
}

void ResultList::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex before = currentIndex();
    QListView::keyPressEvent(event);
    if (currentIndex() != before && currentIndex().isValid())
        emit listClicked();
}
