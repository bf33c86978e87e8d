// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/RuntimeError.h"

#include <QByteArray>

// Small helpers on native path bytes shared by the listing writer and the item copies.
namespace NativePath {

#ifdef _WIN32
constexpr char Separator = '\\';
#else
constexpr char Separator = '/';
#endif

// The folder part of `path` ("." when it has none; the root keeps its separator).
QByteArray parentOf(const QByteArray& path);

#ifndef _WIN32
// The run-time error number for a failed file operation on `path`: a missing folder on the way (76) is told
// from a missing file (53), which POSIX both report as ENOENT.
RuntimeError::Number errorFor(int err, const QByteArray& path);
#endif

} // namespace NativePath
