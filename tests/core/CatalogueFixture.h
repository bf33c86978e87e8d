// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"
#include "catalogue/ScanSource.h"

#include <QByteArray>
#include <string>
#include <vector>

// A scan written out by hand: folder 0 is the start folder, every entry names its parent by index.
class FixtureScan : public ScanSource
{
public:
    struct Item
    {
        std::uint32_t parent;
        QByteArray name;
        qint64 bytes;
        qint64 mtime;
    };

    FixtureScan() { m_folders.push_back({0, QByteArray(), CatalogueRecords::NoSize, CatalogueRecords::NoTime}); }

    std::uint32_t folder(std::uint32_t parent, const QByteArray& name, qint64 bytes = 0, qint64 mtime = 1000)
    {
        m_folders.push_back({parent, name, bytes, mtime});
        return std::uint32_t(m_folders.size() - 1);
    }
    void file(std::uint32_t parent, const QByteArray& name, qint64 bytes = 0, qint64 mtime = 1000)
    {
        m_files.push_back({parent, name, bytes, mtime});
    }

    qint64 folderCount() const override { return qint64(m_folders.size()); }
    qint64 fileCount() const override { return qint64(m_files.size()); }
    Entry folder(qint64 i) const override { return entry(m_folders[size_t(i)]); }
    Entry file(qint64 i) const override { return entry(m_files[size_t(i)]); }

private:
    static Entry entry(const Item& it)
    {
        return {it.parent, std::string_view(it.name.constData(), size_t(it.name.size())), it.bytes, it.mtime};
    }

    std::vector<Item> m_folders;
    std::vector<Item> m_files;
};

inline ScanInfo fixtureInfo(const QByteArray& start, qint64 atMs, const QString& label = QStringLiteral("DATA"),
                            const QString& uuid = QStringLiteral("1111-2222"))
{
    ScanInfo info;
    info.startPath = start;
    info.scannedAtMs = atMs;
    info.volume.label = label;
    info.volume.uuid = uuid;
    info.volume.mountPoint = "/";
    info.volume.fsType = QStringLiteral("ext4");
    info.volume.typeCode = 2;
    return info;
}
