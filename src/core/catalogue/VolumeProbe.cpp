// SPDX-License-Identifier: GPL-3.0-or-later

#include "VolumeProbe.h"

#include "scan/FolderReader.h"
#include "volumes/VolumeService.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

namespace {

QString uuidOfDevice(const QByteArray& device)
{
#ifdef Q_OS_LINUX
    const QString real = QFileInfo(QFile::decodeName(device)).canonicalFilePath();
    if (real.isEmpty())
        return {};
    const QDir byUuid(QStringLiteral("/dev/disk/by-uuid"));
    for (const QFileInfo& link : byUuid.entryInfoList(QDir::System | QDir::Files | QDir::NoDotAndDotDot))
        if (link.canonicalFilePath() == real)
            return link.fileName();
#else
    Q_UNUSED(device);
#endif
    return {};
}

} // namespace

VolumeInfo VolumeProbe::describe(const QByteArray& path)
{
    const QString display = QFile::decodeName(path);
    const QStorageInfo storage(SystemVolumeService::reachableAncestor(display));
    VolumeInfo v;
    v.mountPoint = QFile::encodeName(storage.rootPath());
    v.label = storage.name();
    v.fsType = QString::fromUtf8(storage.fileSystemType());
    v.uuid = uuidOfDevice(storage.device());
    v.typeCode = int(SystemVolumeService().volumeOf(display).type);
    if (storage.isValid() && storage.isReady()) {
        v.capacity = storage.bytesTotal();
        v.freeBytes = storage.bytesAvailable();
    }
    return v;
}

bool VolumeProbe::isMounted(const ScanInfo& scan)
{
    if (scan.separator != QDir::separator().toLatin1() && scan.separator != '/')
        return false; // a listing written on another platform
    if (FolderReader::absoluteFolder(scan.startPath).isEmpty())
        return false; // no folder there now, at whatever length
    const QString start = SystemVolumeService::reachableAncestor(QFile::decodeName(scan.startPath));
    return scan.volume.uuid.isEmpty() || uuidOfDevice(QStorageInfo(start).device()) == scan.volume.uuid;
}
