// SPDX-License-Identifier: GPL-3.0-or-later

#include "SubFolderReader.h"

#include "scan/FolderReader.h"
#include "scan/FolderWalk.h"

#include <algorithm>

namespace SubFolderReader {

namespace {

struct FolderNames : FolderReader::Sink
{
    QList<QByteArray> names;
    void add(std::string_view name, std::uint64_t, std::int64_t, bool dir, bool) override
    {
        if (dir)
            names.append(QByteArray(name.data(), qsizetype(name.size())));
    }
};

} // namespace

QList<QByteArray> read(const QByteArray& folder, bool* ok)
{
    // The walk's own reader, without the mount table: a tree node lists what is in it, mounts included.
    FolderReader::Start start;
    FolderReader reader(start);
    FolderNames sink;
    DirState state = DirState::Read;
    int error = 0;
    const bool listed =
        reader.list(FolderPlace{-1, folder.toStdString(), {}}, true, state, error, sink) && state == DirState::Read;
    reader.close();
    std::sort(sink.names.begin(), sink.names.end(), [](const QByteArray& a, const QByteArray& b) {
        return FolderWalk::lessByName(std::string_view(a.constData(), size_t(a.size())),
                                      std::string_view(b.constData(), size_t(b.size())));
    });
    if (ok)
        *ok = listed;
    return sink.names;
}

QByteArray join(const QByteArray& parent, const QByteArray& name)
{
    if (parent.endsWith(FolderReader::Separator))
        return parent + name;
    return parent + FolderReader::Separator + name;
}

} // namespace SubFolderReader
