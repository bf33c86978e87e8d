// SPDX-License-Identifier: GPL-3.0-or-later

#include "ScanTreeModel.h"

#include "CatalogueResultModel.h"
#include "common/NativeText.h"

#include <QApplication>
#include <QDateTime>
#include <QStyle>
#include <algorithm>

ScanTreeModel::ScanTreeModel(Mounted mounted, QObject* parent)
    : QAbstractItemModel(parent), m_mounted(std::move(mounted))
{
}

QString ScanTreeModel::volumeKey(const VolumeInfo& volume)
{
    if (!volume.uuid.isEmpty())
        return volume.uuid;
    return volume.label + QChar(0x1F) + QString::fromLatin1(volume.mountPoint.toHex());
}

void ScanTreeModel::setScans(std::vector<ScanInfo> scans)
{
    beginResetModel();
    m_scans = std::move(scans);
    std::stable_sort(m_scans.begin(), m_scans.end(),
                     [](const ScanInfo& a, const ScanInfo& b) { return a.scannedAtMs > b.scannedAtMs; });
    m_groups.clear();
    for (int i = 0; i < int(m_scans.size()); ++i) {
        const QString key = volumeKey(m_scans[std::size_t(i)].volume);
        auto group = std::find_if(m_groups.begin(), m_groups.end(), [&](const Group& g) { return g.key == key; });
        if (group == m_groups.end()) {
            m_groups.push_back({key, m_scans[std::size_t(i)].volume, false, {}});
            group = m_groups.end() - 1;
        }
        group->scans.push_back(i);
    }
    for (Group& g : m_groups)
        g.mounted = m_mounted && m_mounted(g.volume);
    endResetModel();
}

void ScanTreeModel::refreshMounted()
{
    for (std::size_t g = 0; g < m_groups.size(); ++g) {
        const bool now = m_mounted && m_mounted(m_groups[g].volume);
        if (now == m_groups[g].mounted)
            continue;
        m_groups[g].mounted = now;
        emit dataChanged(index(int(g), 0), index(int(g), ColumnCount - 1));
    }
}

const ScanInfo* ScanTreeModel::scanAt(const QModelIndex& index) const
{
    if (!index.isValid() || index.internalId() == VolumeRow)
        return nullptr;
    return &m_scans[std::size_t(m_groups[index.internalId()].scans[std::size_t(index.row())])];
}

const ScanInfo* ScanTreeModel::previousScan(const ScanInfo& scan) const
{
    const QString key = volumeKey(scan.volume);
    const ScanInfo* best = nullptr;
    for (const ScanInfo& s : m_scans) {
        if (s.id == scan.id || s.startPath != scan.startPath || volumeKey(s.volume) != key)
            continue;
        const bool older = s.scannedAtMs < scan.scannedAtMs || (s.scannedAtMs == scan.scannedAtMs && s.id < scan.id);
        if (older && (!best || s.scannedAtMs > best->scannedAtMs))
            best = &s;
    }
    return best;
}

QList<std::pair<QString, QString>> ScanTreeModel::volumeLabels() const
{
    QList<std::pair<QString, QString>> out;
    for (const Group& g : m_groups)
        out.append(
            {g.volume.label.isEmpty() ? NativeText::toDisplay(g.volume.mountPoint) : g.volume.label, g.volume.uuid});
    return out;
}

QModelIndex ScanTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (column < 0 || column >= ColumnCount || row < 0)
        return {};
    if (!parent.isValid())
        return row < int(m_groups.size()) ? createIndex(row, column, VolumeRow) : QModelIndex();
    if (parent.internalId() != VolumeRow || parent.row() >= int(m_groups.size()))
        return {};
    if (row >= int(m_groups[std::size_t(parent.row())].scans.size()))
        return {};
    return createIndex(row, column, quintptr(parent.row()));
}

QModelIndex ScanTreeModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalId() == VolumeRow)
        return {};
    return createIndex(int(child.internalId()), 0, VolumeRow);
}

int ScanTreeModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return int(m_groups.size());
    if (parent.internalId() == VolumeRow && parent.column() == 0)
        return int(m_groups[std::size_t(parent.row())].scans.size());
    return 0;
}

int ScanTreeModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QVariant ScanTreeModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (index.internalId() == VolumeRow) {
        const Group& g = m_groups[std::size_t(index.row())];
        if (role == Qt::DisplayRole && index.column() == Name) {
            const QString name = g.volume.label.isEmpty() ? NativeText::toDisplay(g.volume.mountPoint) : g.volume.label;
            return g.volume.uuid.isEmpty() ? name : name + QStringLiteral(" (") + g.volume.uuid + QLatin1Char(')');
        }
        // A volume's row says whether it is connected in the column its scans give their time, where it shows
        // even in a narrow pane.
        if (role == Qt::DisplayRole && index.column() == Scanned)
            return g.mounted ? tr("Connected") : tr("Not connected");
        if (role == Qt::DecorationRole && index.column() == Name && QApplication::style())
            return QApplication::style()->standardIcon(QStyle::SP_DriveHDIcon);
        if (role == Qt::ForegroundRole && !g.mounted)
            return QApplication::palette().brush(QPalette::Disabled, QPalette::Text);
        if (role == Qt::ToolTipRole)
            return tr("Mounted at %1 when last scanned").arg(NativeText::toDisplay(g.volume.mountPoint));
        return {};
    }
    const ScanInfo& s = *scanAt(index);
    if (role == Qt::DisplayRole) {
        switch (index.column()) {
        case Name:
            return NativeText::toDisplay(s.startPath);
        case Scanned:
            return QDateTime::fromMSecsSinceEpoch(s.scannedAtMs)
                .toLocalTime()
                .toString(QStringLiteral("yyyy-MM-dd HH:mm"));
        case Files:
            return QString::number(s.fileCount);
        case Folders:
            return QString::number(s.folderCount);
        case Size:
            return s.imported ? QString() : CatalogueResultModel::sizeText(s.totalBytes);
        case State:
            return s.imported ? tr("Imported") : (s.complete ? tr("Complete") : tr("Incomplete"));
        default:
            return {};
        }
    }
    if (role == Qt::ToolTipRole && index.column() == State)
        return s.imported ? tr("Read from listing files: no file sizes or dates")
                          : (s.complete ? QString() : tr("Stopped at the Short window's file limit"));
    if (role == Qt::TextAlignmentRole && index.column() >= Files && index.column() <= Size)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant ScanTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractItemModel::headerData(section, orientation, role);
    switch (section) {
    case Name:
        return tr("Volume / folder");
    case Scanned:
        return tr("Scanned");
    case Files:
        return tr("Files");
    case Folders:
        return tr("Folders");
    case Size:
        return tr("Size");
    case State:
        return tr("State");
    default:
        return {};
    }
}
