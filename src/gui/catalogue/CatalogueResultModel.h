// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ResultSorter.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <memory>
#include <vector>

class CatalogueResults;
struct ScanInfo;

// The hits of the current search as table rows, read from the compact store when the view asks for them.
// Batches arrive as one insertion each. A sort is done on a thread and shown as one layout change once the
// search has finished; until then rows stay in the order they were found.
class CatalogueResultModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { Name, Folder, Size, Modified, Volume, Scanned, ColumnCount };

    explicit CatalogueResultModel(QObject* parent = nullptr);

    // Forgets every row; the rows of the next search follow.
    void clear();
    void append(CatalogueResults&& batch);
    // No more rows will come: a chosen sort is applied now.
    void finish();
    bool sorting() const { return m_sorter.running(); }

    const CatalogueResults& results() const { return *m_results; }
    // The store's row behind a view row.
    std::size_t storeRow(int row) const { return m_order.empty() ? std::size_t(row) : m_order[std::size_t(row)]; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    static QString sizeText(qint64 bytes);
    static QString timeText(qint64 secondsUtc);
    static QString volumeText(const ScanInfo& scan);

signals:
    void sortingChanged(bool sorting);

private:
    void startSort();
    void applyOrder(const std::shared_ptr<const CatalogueResults>& results,
                    const std::shared_ptr<std::vector<std::uint32_t>>& order);

    std::shared_ptr<CatalogueResults> m_results;
    std::vector<std::uint32_t> m_order; // empty: the order found
    int m_rows = 0;
    bool m_streaming = false;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    ResultSorter m_sorter;
    QIcon m_folderIcon;
    QIcon m_fileIcon;
};
