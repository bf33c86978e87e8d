// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>

class VolumeService;
struct ScanInfo;
struct VolumeInfo;

// Whether the volume a scan was taken from is connected now, and where. A volume with a file-system UUID is
// found by it wherever it is mounted today (a stick gets another mount point on another day); otherwise a volume
// with its label mounted at its old mount point is taken for it.
class VolumePresence
{
public:
    // Where the volume with file-system UUID `uuid` is mounted now, or an empty text.
    using UuidMount = std::function<QString(const QString& uuid)>;

    explicit VolumePresence(const VolumeService* volumes, UuidMount uuidMount = systemUuidMount);

    // The mount point today, or nothing when the volume is not connected.
    std::optional<QString> mountPoint(const VolumeInfo& volume) const;
    // `path` of `scan` as it is reached today, or nothing when its volume is not connected.
    std::optional<QByteArray> currentPath(const ScanInfo& scan, const QByteArray& path) const;

    // Linux: /dev/disk/by-uuid names the device, the mount table says where that device is mounted.
    static QString systemUuidMount(const QString& uuid);

private:
    const VolumeService* m_volumes;
    UuidMount m_uuidMount;
};
