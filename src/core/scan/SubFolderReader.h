// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QList>

// One folder's sub-folders, for the folder tree: read as native bytes, so a name that is not UTF-8 is there like
// any other, and put in the order the walk takes them. Links are not folders here, as in the walk.
namespace SubFolderReader {

// The names of the folders in `folder` (a path as native bytes). `ok` is false when it cannot be listed.
QList<QByteArray> read(const QByteArray& folder, bool* ok = nullptr);

// `parent` and `name` joined with one separator.
QByteArray join(const QByteArray& parent, const QByteArray& name);

} // namespace SubFolderReader
