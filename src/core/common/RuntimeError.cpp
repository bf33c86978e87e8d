// SPDX-License-Identifier: GPL-3.0-or-later

#include "RuntimeError.h"

#include <cerrno>

namespace RuntimeError {

QString description(Number number)
{
    switch (number) {
    case InvalidCall:
        return QStringLiteral("Invalid procedure call or argument");
    case Overflow:
        return QStringLiteral("Overflow");
    case TypeMismatch:
        return QStringLiteral("Type mismatch");
    case BadFileName:
        return QStringLiteral("Bad file name or number");
    case FileNotFound:
        return QStringLiteral("File not found");
    case FileAlreadyOpen:
        return QStringLiteral("File already open");
    case DeviceIO:
        return QStringLiteral("Device I/O error");
    case DiskFull:
        return QStringLiteral("Disk full");
    case DeviceUnavailable:
        return QStringLiteral("Device unavailable");
    case PermissionDenied:
        return QStringLiteral("Permission denied");
    case PathFileAccess:
        return QStringLiteral("Path/File access error");
    case PathNotFound:
        return QStringLiteral("Path not found");
    case InvalidArrayIndex:
        return QStringLiteral("Invalid property array index");
    default:
        return QStringLiteral("Application-defined or object-defined error");
    }
}

QString unhandledText(Number number)
{
    return QStringLiteral("Run-time error '%1':\r\n\r\n%2").arg(int(number)).arg(description(number));
}

Number fromErrno(int err, bool parentMissing)
{
    switch (err) {
    case 0:
        return None;
    case ENOENT:
        return parentMissing ? PathNotFound : FileNotFound;
    case ENOTDIR:
        return PathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
    case EBUSY:
    case EEXIST:
        return PathFileAccess;
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
    case EFBIG:
        return DiskFull;
    case ENAMETOOLONG:
    case EILSEQ:
    case EINVAL:
        return BadFileName;
    default:
        return DeviceIO;
    }
}

} // namespace RuntimeError
