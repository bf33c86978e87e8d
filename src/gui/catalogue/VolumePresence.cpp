// SPDX-License-Identifier: GPL-3.0-or-later

#include "VolumePresence.h"

#include "catalogue/CatalogueRecords.h"
#include "common/NativeText.h"
#include "volumes/VolumeService.h"

#include <QFileInfo>
#include <QStorageInfo>

VolumePresence::VolumePresence(const VolumeService* volumes, UuidMount uuidMount)
    : m_volumes(volumes), m_uuidMount(std::move(uuidMount))
{
}

QString VolumePresence::systemUuidMount(const QString& uuid)
{
    if (uuid.isEmpty() || uuid.contains(QLatin1Char('/')))
        return {};
    const QFileInfo link(QStringLiteral("/dev/disk/by-uuid/") + uuid);
    if (!link.exists())
        return {};
    const QString device = link.canonicalFilePath();
    for (const QStorageInfo& storage : QStorageInfo::mountedVolumes()) {
        const QString mounted = QFileInfo(QString::fromLocal8Bit(storage.device())).canonicalFilePath();
        if (!mounted.isEmpty() && mounted == device && storage.isReady())
            return storage.rootPath();
    }
    return {};
}

std::optional<QString> VolumePresence::mountPoint(const VolumeInfo& volume) const
{
    if (!volume.uuid.isEmpty() && m_uuidMount) {
        const QString root = m_uuidMount(volume.uuid);
        if (!root.isEmpty())
            return root;
    }
    if (!m_volumes)
        return std::nullopt;
    const QString oldRoot = NativeText::toDisplay(volume.mountPoint);
    for (const Volume& v : m_volumes->volumes()) {
        if (v.ready && v.root == oldRoot && v.label == volume.label)
            return v.root;
    }
    return std::nullopt;
}

std::optional<QByteArray> VolumePresence::currentPath(const ScanInfo& scan, const QByteArray& path) const
{
    const std::optional<QString> root = mountPoint(scan.volume);
    if (!root)
        return std::nullopt;
    const QByteArray newRoot = NativeText::fromDisplay(*root);
    const QByteArray& oldRoot = scan.volume.mountPoint;
    if (newRoot == oldRoot || !path.startsWith(oldRoot))
        return path;
    QByteArray rest = path.mid(oldRoot.size());
    QByteArray out = newRoot;
    if (!out.endsWith(scan.separator) && !rest.startsWith(scan.separator) && !rest.isEmpty())
        out.append(scan.separator);
    if (out.endsWith(scan.separator) && rest.startsWith(scan.separator))
        rest.remove(0, 1);
    return out + rest;
}
