// SPDX-License-Identifier: GPL-3.0-or-later

#include "SearchResultModel.h"

#include <climits>

SearchResultModel::SearchResultModel(QObject* parent) : QAbstractListModel(parent) {}

void SearchResultModel::setResult(SearchResult result)
{
    beginResetModel();
    m_result = std::move(result);
    m_rows = int(qMin<qint64>(m_result.count(), INT_MAX));
    endResetModel();
}

void SearchResultModel::clear()
{
    if (m_rows == 0 && !m_result.source)
        return;
    setResult({});
}

int SearchResultModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

QVariant SearchResultModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole ||
        !checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    return m_result.line(index.row());
}

Qt::ItemFlags SearchResultModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}
