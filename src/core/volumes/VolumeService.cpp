// SPDX-License-Identifier: GPL-3.0-or-later

#include "VolumeService.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QStorageInfo>
#include <algorithm>
#include <climits>

QString Volume::driveText() const
{
    return label.isEmpty() ? root : root + QStringLiteral(" [") + label + QLatin1Char(']');
}

Volume VolumeService::find(const QString& driveTextOrRoot, bool* ok) const
{
    for (const Volume& v : volumes()) {
        if (v.driveText() == driveTextOrRoot || v.root == driveTextOrRoot) {
            if (ok)
                *ok = true;
            return v;
        }
    }
    if (ok)
        *ok = false;
    return {};
}

namespace {

bool isPseudo(const QByteArray& fs, const QString& root)
{
    static const QSet<QByteArray> pseudo = {
        "proc",        "sysfs",    "cgroup",  "cgroup2",    "devtmpfs",  "devpts",   "securityfs", "pstore",
        "bpf",         "tracefs",  "debugfs", "mqueue",     "hugetlbfs", "configfs", "fusectl",    "autofs",
        "binfmt_misc", "efivarfs", "nsfs",    "rpc_pipefs", "overlay",   "squashfs", "selinuxfs",  "ramfs_internal",
    };
    if (pseudo.contains(fs))
        return true;
    // Kernel and run-time tmpfs mounts hold no user files; a tmpfs elsewhere (a RAM disk) is shown.
    return root.startsWith(QLatin1String("/proc")) || root.startsWith(QLatin1String("/sys")) ||
           root == QLatin1String("/dev") || root.startsWith(QLatin1String("/dev/")) || root == QLatin1String("/run") ||
           root.startsWith(QLatin1String("/run/lock")) || root.startsWith(QLatin1String("/run/user")) ||
           root.startsWith(QLatin1String("/run/credentials")) || root.startsWith(QLatin1String("/snap/"));
}

// The block device name under /sys/block that `device` lives on ("/dev/sdb1" -> "sdb").
QString blockName(const QByteArray& device)
{
    QString dev = QFileInfo(QString::fromLocal8Bit(device)).canonicalFilePath();
    if (!dev.startsWith(QLatin1String("/dev/")))
        return {};
    dev = dev.mid(5);
    if (QFile::exists(QStringLiteral("/sys/block/") + dev))
        return dev;
    const QString part = QStringLiteral("/sys/class/block/") + dev;
    const QString real = QFileInfo(part).canonicalFilePath(); // .../block/sdb/sdb1
    if (real.isEmpty())
        return {};
    return QFileInfo(QFileInfo(real).path()).fileName();
}

DriveType driveType(const QStorageInfo& info)
{
    const QByteArray fs = info.fileSystemType();
    if (fs == "tmpfs" || fs == "ramfs")
        return DriveType::RamDisk;
    if (fs == "nfs" || fs == "nfs4" || fs == "cifs" || fs == "smb3" || fs == "smbfs" || fs == "9p" || fs == "afs" ||
        fs == "fuse.sshfs" || fs == "fuse.rclone" || fs == "fuse.gvfsd-fuse" || fs == "ceph")
        return DriveType::Network;
    if (fs == "iso9660" || fs == "udf" || info.device().startsWith("/dev/sr"))
        return DriveType::CdDvd;
    const QString block = blockName(info.device());
    if (!block.isEmpty()) {
        QFile removable(QStringLiteral("/sys/block/") + block + QStringLiteral("/removable"));
        if (removable.open(QIODevice::ReadOnly) && removable.readAll().trimmed() == "1")
            return DriveType::Removable;
        return DriveType::Fixed;
    }
    if (info.device().startsWith("/dev/"))
        return DriveType::Fixed;
    return DriveType::Unknown;
}

Volume toVolume(const QStorageInfo& info)
{
    Volume v;
    v.root = info.rootPath();
    v.ready = info.isValid() && info.isReady();
    v.label = v.ready ? info.name() : QString();
    v.type = driveType(info);
    return v;
}

} // namespace

QList<Volume> SystemVolumeService::volumes() const
{
    QList<Volume> out;
    for (const QStorageInfo& info : QStorageInfo::mountedVolumes()) {
        if (!shown(info.fileSystemType(), info.rootPath()))
            continue;
        out.append(toVolume(info));
    }
    return out;
}

bool SystemVolumeService::shown(const QByteArray& fileSystemType, const QString& root)
{
    return !isPseudo(fileSystemType, root) && QFileInfo(root).isDir();
}

Volume SystemVolumeService::volumeOf(const QString& path) const
{
    return toVolume(QStorageInfo(reachableAncestor(path)));
}

QString SystemVolumeService::reachableAncestor(const QString& path)
{
    // QStorageInfo resolves the path it is given whole and knows nothing past PATH_MAX. The ancestor is on the
    // same volume unless a file system is mounted between the two, deeper than any path the system could name.
#ifdef PATH_MAX
    const QByteArray bytes = QFile::encodeName(path);
    if (bytes.size() >= PATH_MAX) {
        const qsizetype cut = bytes.lastIndexOf('/', PATH_MAX - 1);
        return QFile::decodeName(bytes.left(std::max<qsizetype>(cut, 1)));
    }
#endif
    return path;
}
