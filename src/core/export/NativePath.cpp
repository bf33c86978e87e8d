// SPDX-License-Identifier: GPL-3.0-or-later

#include "NativePath.h"

#include "common/RuntimeError.h"

#ifndef _WIN32
#include <cerrno>
#include <sys/stat.h>
#endif

namespace NativePath {

QByteArray parentOf(const QByteArray& path)
{
    const qsizetype cut = path.lastIndexOf(Separator);
    if (cut < 0)
        return QByteArrayLiteral(".");
    return cut == 0 ? path.left(1) : path.left(cut);
}

#ifndef _WIN32
RuntimeError::Number errorFor(int err, const QByteArray& path)
{
    struct stat st;
    const bool parentIsFolder = ::stat(parentOf(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
    return RuntimeError::fromErrno(err, err == ENOENT && !parentIsFolder);
}
#endif

} // namespace NativePath
