// SPDX-License-Identifier: GPL-3.0-or-later

#include "DiffModel.h"

#include "CatalogueResultModel.h"
#include "common/NativeText.h"

#include <algorithm>
#include <numeric>

using namespace CatalogueRecords;

namespace {

// A size difference, or nothing when either side's size is not known.
qint64 delta(const DiffItem& item)
{
    if (item.change == DiffItem::Change::Added)
        return item.newBytes == NoSize ? 0 : item.newBytes;
    if (item.change == DiffItem::Change::Removed)
        return item.oldBytes == NoSize ? 0 : -item.oldBytes;
    if (item.oldBytes == NoSize || item.newBytes == NoSize)
        return 0;
    return item.newBytes - item.oldBytes;
}

} // namespace

DiffModel::DiffModel(QObject* parent) : QAbstractTableModel(parent) {}

void DiffModel::setDiff(CatalogueDiff diff)
{
    beginResetModel();
    m_diff = std::move(diff);
    m_order.resize(m_diff.items.size());
    std::iota(m_order.begin(), m_order.end(), std::size_t(0));
    endResetModel();
}

int DiffModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_order.size());
}

int DiffModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString DiffModel::changeText(const DiffItem& item)
{
    switch (item.change) {
    case DiffItem::Change::Added:
        return item.folder ? tr("Folder added") : tr("Added");
    case DiffItem::Change::Removed:
        return item.folder ? tr("Folder removed") : tr("Removed");
    case DiffItem::Change::Changed:
        return item.folder ? tr("Folder size changed") : tr("Changed");
    }
    return {};
}

QVariant DiffModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const DiffItem& it = item(index.row());
    if (role == Qt::DisplayRole) {
        switch (index.column()) {
        case Change:
            return changeText(it);
        case Path:
            return NativeText::toDisplay(it.path);
        case OldSize:
            return CatalogueResultModel::sizeText(it.oldBytes);
        case NewSize:
            return CatalogueResultModel::sizeText(it.newBytes);
        case SizeChange: {
            const qint64 d = delta(it);
            return d == 0 ? QString()
                          : (d > 0 ? QStringLiteral("+") : QStringLiteral("-")) +
                                CatalogueResultModel::sizeText(d < 0 ? -d : d);
        }
        case OldModified:
            return CatalogueResultModel::timeText(it.oldMtime);
        case NewModified:
            return CatalogueResultModel::timeText(it.newMtime);
        default:
            return {};
        }
    }
    if (role == Qt::TextAlignmentRole && index.column() >= OldSize && index.column() <= SizeChange)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant DiffModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case Change:
        return tr("Change");
    case Path:
        return tr("Path");
    case OldSize:
        return tr("Size before");
    case NewSize:
        return tr("Size after");
    case SizeChange:
        return tr("Difference");
    case OldModified:
        return tr("Modified before");
    case NewModified:
        return tr("Modified after");
    default:
        return {};
    }
}

void DiffModel::sort(int column, Qt::SortOrder order)
{
    const auto key = [&](const DiffItem& a, const DiffItem& b) -> int {
        const auto cmp = [](auto x, auto y) { return x < y ? -1 : (y < x ? 1 : 0); };
        switch (column) {
        case Change:
            return cmp(std::pair(int(a.change), a.folder), std::pair(int(b.change), b.folder));
        case Path:
            return cmp(a.path, b.path);
        case OldSize:
            return cmp(a.oldBytes, b.oldBytes);
        case NewSize:
            return cmp(a.newBytes, b.newBytes);
        case SizeChange:
            return cmp(delta(a), delta(b));
        case OldModified:
            return cmp(a.oldMtime, b.oldMtime);
        case NewModified:
            return cmp(a.newMtime, b.newMtime);
        default:
            return 0;
        }
    };
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<std::size_t> items;
    for (const QModelIndex& i : before)
        items.push_back(m_order[std::size_t(i.row())]);
    std::stable_sort(m_order.begin(), m_order.end(), [&](std::size_t a, std::size_t b) {
        const int c = key(m_diff.items[a], m_diff.items[b]);
        return order == Qt::AscendingOrder ? c < 0 : c > 0;
    });
    if (!before.isEmpty()) {
        std::vector<std::size_t> inverse(m_order.size());
        for (std::size_t i = 0; i < m_order.size(); ++i)
            inverse[m_order[i]] = i;
        QModelIndexList after;
        for (qsizetype i = 0; i < before.size(); ++i)
            after.append(index(int(inverse[items[std::size_t(i)]]), before[i].column()));
        changePersistentIndexList(before, after);
    }
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}
