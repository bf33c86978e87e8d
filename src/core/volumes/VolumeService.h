// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QString>

// What kind of drive a volume is on, with the classic drive-type codes as values.
enum class DriveType { Unknown = 0, Removable = 1, Fixed = 2, Network = 3, CdDvd = 4, RamDisk = 5 };

// One mounted volume as the drive selector shows it.
struct Volume
{
    QString root;  // mount point ("/", "/media/stick"); a drive root on Windows ("c:\")
    QString label; // the volume's own name; empty when it has none
    DriveType type = DriveType::Unknown;
    bool ready = true; // false when the medium cannot be read

    // The drive selector's text: the root, then " [label]" when the volume has a label.
    QString driveText() const;
};

// The machine's volumes. An interface so windows and tests can be given a fixed set.
class VolumeService
{
public:
    virtual ~VolumeService() = default;

    // Volumes that hold user files, in the selector's order.
    virtual QList<Volume> volumes() const = 0;

    // The volume whose drive text or root is `driveTextOrRoot`; `ok` is false when there is none.
    Volume find(const QString& driveTextOrRoot, bool* ok = nullptr) const;

    // The volume that holds `path` (the deepest mount point above it).
    virtual Volume volumeOf(const QString& path) const = 0;
};

// The real volumes, read through QStorageInfo and, on Linux, /sys for removable media.
class SystemVolumeService : public VolumeService
{
public:
    QList<Volume> volumes() const override;
    Volume volumeOf(const QString& path) const override;

    // Whether a mount of `fileSystemType` at `root` is offered as a drive: not a pseudo or kernel file system,
    // and a folder (containers bind-mount single files such as /etc/hosts).
    static bool shown(const QByteArray& fileSystemType, const QString& root);
    // What to ask the system about the volume of `path`: the path itself, or past the length the system takes in
    // one call, its longest ancestor within it.
    static QString reachableAncestor(const QString& path);
};
