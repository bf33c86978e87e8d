// SPDX-License-Identifier: GPL-3.0-or-later

#include "ResultListModel.h"

#include <climits>

ResultListModel::ResultListModel(ScanResult::List list, QObject* parent) : QAbstractListModel(parent), m_list(list) {}

void ResultListModel::setResult(std::shared_ptr<const ScanResult> result)
{
    if (!result && !m_result)
        return;
    beginResetModel();
    m_result = std::move(result);
    m_rows = m_result ? int(qMin<qint64>(m_result->count(m_list), INT_MAX)) : 0;
    endResetModel();
}

int ResultListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

QVariant ResultListModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    return m_result->text(m_list, index.row());
}

Qt::ItemFlags ResultListModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}
