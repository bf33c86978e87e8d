// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"

#include <QAbstractTableModel>
#include <vector>

// The differences between two scans as a sortable table: what changed, the path, and the sizes and dates on
// either side. Sorting reorders a row index, never the items.
class DiffModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { Change, Path, OldSize, NewSize, SizeChange, OldModified, NewModified, ColumnCount };

    explicit DiffModel(QObject* parent = nullptr);

    void setDiff(CatalogueDiff diff);
    const CatalogueDiff& diff() const { return m_diff; }
    const DiffItem& item(int row) const { return m_diff.items[m_order[std::size_t(row)]]; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    static QString changeText(const DiffItem& item);

private:
    CatalogueDiff m_diff;
    std::vector<std::size_t> m_order;
};
