// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "search/ListSearch.h"

#include <QAbstractListModel>

// The result lines of a search as the rows of the result list. Lines are made when the view asks for them, so
// ten million matches cost the list no more than their row numbers.
class SearchResultModel : public QAbstractListModel
{
    Q_OBJECT
public:
    explicit SearchResultModel(QObject* parent = nullptr);

    void setResult(SearchResult result);
    void clear();
    const SearchResult& result() const { return m_result; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    SearchResult m_result;
    int m_rows = 0;
};
