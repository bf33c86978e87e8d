// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"

#include <QAbstractItemModel>
#include <functional>
#include <vector>

// The catalogue's volumes, each with its scans below it, newest first. Scans are few (one per saved listing),
// so they are held as records; the tree is two levels deep.
class ScanTreeModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Column { Name, Scanned, Files, Folders, Size, State, ColumnCount };
    // Whether a volume is connected now.
    using Mounted = std::function<bool(const VolumeInfo&)>;

    explicit ScanTreeModel(Mounted mounted, QObject* parent = nullptr);

    void setScans(std::vector<ScanInfo> scans);
    const std::vector<ScanInfo>& scans() const { return m_scans; }
    // The scan a row stands for, or null for a volume row.
    const ScanInfo* scanAt(const QModelIndex& index) const;
    // The scan of the same start folder on the same volume taken just before `scan`, or null.
    const ScanInfo* previousScan(const ScanInfo& scan) const;
    // Each volume's label (or mount point) and UUID, in the tree's order.
    QList<std::pair<QString, QString>> volumeLabels() const;
    // Reads again whether each volume is connected.
    void refreshMounted();

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    static QString volumeKey(const VolumeInfo& volume);

private:
    struct Group
    {
        QString key;
        VolumeInfo volume; // as the newest scan saw it
        bool mounted = false;
        std::vector<int> scans; // indices into m_scans, newest first
    };
    static constexpr quintptr VolumeRow = ~quintptr(0);

    Mounted m_mounted;
    std::vector<ScanInfo> m_scans;
    std::vector<Group> m_groups;
};
