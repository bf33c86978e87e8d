// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueResultModel.h"

#include "CatalogueResults.h"
#include "common/NativeText.h"

#include <QApplication>
#include <QDateTime>
#include <QLocale>
#include <QStyle>
#include <climits>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

using namespace CatalogueRecords;

namespace {

// A search's batches and a sort's buffers are freed on other threads, in heaps of their own that the C library
// keeps for reuse; given back, they leave the window's memory what its rows hold.
void releaseFreedMemory()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace

CatalogueResultModel::CatalogueResultModel(QObject* parent)
    : QAbstractTableModel(parent), m_results(std::make_shared<CatalogueResults>())
{
    if (QApplication::style()) {
        m_folderIcon = QApplication::style()->standardIcon(QStyle::SP_DirIcon);
        m_fileIcon = QApplication::style()->standardIcon(QStyle::SP_FileIcon);
    }
    connect(&m_sorter, &ResultSorter::sorted, this, &CatalogueResultModel::applyOrder);
}

void CatalogueResultModel::clear()
{
    const bool wasSorting = m_sorter.running();
    m_sorter.stop();
    beginResetModel();
    m_results = std::make_shared<CatalogueResults>();
    m_order.clear();
    m_rows = 0;
    m_streaming = true;
    endResetModel();
    if (wasSorting)
        emit sortingChanged(false);
}

void CatalogueResultModel::append(CatalogueResults&& batch)
{
    if (batch.empty())
        return;
    // Beyond what a view's row numbers can hold, hits are counted by the status line but not listed.
    const std::size_t room = std::size_t(INT_MAX) - m_results->size();
    if (batch.size() > room)
        return;
    beginInsertRows({}, m_rows, int(m_rows + qsizetype(batch.size()) - 1));
    m_results->append(std::move(batch));
    m_rows = int(m_results->size());
    endInsertRows();
}

void CatalogueResultModel::finish()
{
    m_streaming = false;
    m_results->squeeze();
    releaseFreedMemory();
    if (m_sortColumn >= 0)
        startSort();
}

int CatalogueResultModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int CatalogueResultModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString CatalogueResultModel::sizeText(qint64 bytes)
{
    if (bytes == NoSize)
        return {};
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

QString CatalogueResultModel::timeText(qint64 secondsUtc)
{
    if (secondsUtc == NoTime)
        return {};
    return QDateTime::fromSecsSinceEpoch(secondsUtc).toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString CatalogueResultModel::volumeText(const ScanInfo& scan)
{
    if (!scan.volume.label.isEmpty())
        return scan.volume.label;
    return NativeText::toDisplay(scan.volume.mountPoint);
}

QVariant CatalogueResultModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const std::size_t row = storeRow(index.row());
    const CatalogueResults& r = *m_results;
    if (role == Qt::DisplayRole) {
        switch (index.column()) {
        case Name:
            return NativeText::toDisplay(r.name(row));
        case Folder:
            return NativeText::toDisplay(r.folder(row));
        case Size:
            return sizeText(r.bytes(row));
        case Modified:
            return timeText(r.mtime(row));
        case Volume:
            return volumeText(r.scan(row));
        case Scanned:
            return QDateTime::fromMSecsSinceEpoch(r.scan(row).scannedAtMs)
                .toLocalTime()
                .toString(QStringLiteral("yyyy-MM-dd HH:mm"));
        default:
            return {};
        }
    }
    if (role == Qt::ToolTipRole && (index.column() == Name || index.column() == Folder))
        return NativeText::toDisplay(r.path(row));
    if (role == Qt::DecorationRole && index.column() == Name)
        return r.isFolder(row) ? m_folderIcon : m_fileIcon;
    if (role == Qt::TextAlignmentRole && index.column() == Size)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant CatalogueResultModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case Name:
        return tr("Name");
    case Folder:
        return tr("Folder");
    case Size:
        return tr("Size");
    case Modified:
        return tr("Modified");
    case Volume:
        return tr("Volume");
    case Scanned:
        return tr("Scanned");
    default:
        return {};
    }
}

void CatalogueResultModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= ColumnCount)
        return;
    m_sortColumn = column;
    m_sortOrder = order;
    if (!m_streaming)
        startSort();
}

void CatalogueResultModel::startSort()
{
    if (m_results->size() < 2)
        return;
    m_sorter.start(m_results, ResultSorter::Key(m_sortColumn), m_sortOrder == Qt::DescendingOrder);
    emit sortingChanged(true);
}

void CatalogueResultModel::applyOrder(const std::shared_ptr<const CatalogueResults>& results,
                                      const std::shared_ptr<std::vector<std::uint32_t>>& order)
{
    if (results != m_results || order->size() != m_results->size())
        return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<std::size_t> stored;
    stored.reserve(std::size_t(before.size()));
    for (const QModelIndex& index : before)
        stored.push_back(storeRow(index.row()));
    m_order = std::move(*order);
    if (!before.isEmpty()) {
        // Selections and the current row follow their items to the new rows.
        std::vector<std::uint32_t> inverse(m_order.size());
        for (std::size_t i = 0; i < m_order.size(); ++i)
            inverse[m_order[i]] = std::uint32_t(i);
        QModelIndexList after;
        after.reserve(before.size());
        for (qsizetype i = 0; i < before.size(); ++i)
            after.append(index(int(inverse[stored[std::size_t(i)]]), before[i].column()));
        changePersistentIndexList(before, after);
    }
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    releaseFreedMemory();
    emit sortingChanged(false);
}
