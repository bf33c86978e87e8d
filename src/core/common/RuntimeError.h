// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

// The numbered run-time errors the program reports, with their standard texts.
namespace RuntimeError {

enum Number : int {
    None = 0,
    InvalidCall = 5,
    Overflow = 6,
    TypeMismatch = 13,
    BadFileName = 52,
    FileNotFound = 53,
    FileAlreadyOpen = 55,
    DeviceIO = 57,
    DiskFull = 61,
    DeviceUnavailable = 68,
    PermissionDenied = 70,
    PathFileAccess = 75,
    PathNotFound = 76,
    InvalidArrayIndex = 381,
};

QString description(Number number);

// "Run-time error '76':" + two line breaks + the description: the text of the box shown before the program ends.
QString unhandledText(Number number);

// Maps an errno value from a file operation to the nearest error number. `parentMissing` tells a missing
// folder on the way (76) from a missing file (53), which POSIX both report as ENOENT.
Number fromErrno(int err, bool parentMissing = false);

} // namespace RuntimeError
