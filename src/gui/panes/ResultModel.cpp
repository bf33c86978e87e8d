// SPDX-License-Identifier: GPL-3.0-or-later

#include "ResultModel.h"

#include <climits>

ResultModel::ResultModel(ScanResult::List list, QObject* parent) : QAbstractTableModel(parent), m_list(list) {}

void ResultModel::setResult(std::shared_ptr<const ScanResult> result)
{
    if (!result && !m_result)
        return;
    beginResetModel();
    m_result = std::move(result);
    m_rows = m_result ? int(qMin<qint64>(m_result->count(m_list), INT_MAX)) : 0;
    m_colours.clear();
    endResetModel();
}

void ResultModel::setCellColours(int row, const QColor& back, const QColor& fore)
{
    if (row < 0 || row >= m_rows)
        return;
    if (back.isValid() || fore.isValid())
        m_colours[row] = {back, fore};
    else
        m_colours.erase(row);
    const QModelIndex cell = index(row, 0);
    emit dataChanged(cell, cell, {Qt::BackgroundRole, Qt::ForegroundRole});
}

void ResultModel::clearCellColours()
{
    if (m_colours.empty())
        return;
    m_colours.clear();
    emit dataChanged(index(0, 0), index(m_rows - 1, 0), {Qt::BackgroundRole, Qt::ForegroundRole});
}

int ResultModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int ResultModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 1;
}

QVariant ResultModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return m_result->text(m_list, index.row());
    case Qt::BackgroundRole:
    case Qt::ForegroundRole: {
        const auto it = m_colours.find(index.row());
        if (it == m_colours.end())
            return {};
        const QColor& c = role == Qt::BackgroundRole ? it->second.back : it->second.fore;
        return c.isValid() ? QVariant(c) : QVariant();
    }
    default:
        return {};
    }
}

Qt::ItemFlags ResultModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}
