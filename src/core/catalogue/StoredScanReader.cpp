// SPDX-License-Identifier: GPL-3.0-or-later

#include "StoredScanReader.h"

#include "catalogue/SqliteStatement.h"

#include <algorithm>
#include <cstring>
#include <sqlite3.h>

QString StoredScanReader::damaged(qint64 scan, qint64 seq)
{
    return QStringLiteral("The catalogue is damaged (scan %1, block %2).").arg(scan).arg(seq);
}

bool StoredScanReader::forEachBlock(qint64 first, qint64 last,
                                    const std::function<bool(qint64 seq, EntryBlock&)>& visit, QString* error)
{
    SqliteStatement q(m_db, "SELECT seq, data FROM block WHERE scan_id = ? AND seq BETWEEN ? AND ? ORDER BY seq");
    q.bind(1, m_scan.id);
    q.bind(2, first);
    q.bind(3, last);
    EntryBlock block;
    while (q.step()) {
        if (!block.parse(q.blob(1), baseTime())) {
            if (error)
                *error = damaged(m_scan.id, q.integer(0));
            return false;
        }
        if (!visit(q.integer(0), block))
            return true;
    }
    if (!q.done()) {
        if (error)
            *error = QString::fromUtf8(sqlite3_errmsg(m_db));
        return false;
    }
    return true;
}

bool StoredScanReader::loadFolders(QString* error)
{
    if (foldersLoaded())
        return true;
    const std::size_t folders = std::size_t(m_scan.folderCount + 1);
    m_folders.assign(folders, Folder());
    m_names.clear();
    const bool ok = forEachBlock(
        0, qint64(folders - 1) / EntryBlock::Size,
        [&](qint64 seq, EntryBlock& block) {
            for (int i = 0; i < block.count(); ++i) {
                const std::size_t k = std::size_t(seq) * EntryBlock::Size + std::size_t(i);
                if (k >= folders)
                    return false;
                Folder& f = m_folders[k];
                const std::uint32_t parent = block.parent(i);
                f.parent = parent < folders ? parent : 0;
                f.nameStart = m_names.size();
                f.nameLength = std::uint32_t(block.name(i).size());
                m_names.append(block.name(i));
            }
            return true;
        },
        error);
    if (!ok)
        return false;

    // A path's length is its parent's and more, so a parent's must be known first; folders are not numbered
    // parents first, so each one's chain is walked up to a folder already known.
    std::vector<bool> known(folders, false);
    Folder& start = m_folders[0];
    start.nameLength = 0;
    start.pathLength = std::uint32_t(m_scan.startPath.size());
    start.lastByte = m_scan.startPath.isEmpty() ? 0 : m_scan.startPath.back();
    known[0] = true;
    std::vector<std::uint32_t> chain;
    m_order.clear();
    m_order.reserve(folders);
    for (std::size_t k = 1; k < folders; ++k) {
        chain.clear();
        for (std::uint32_t j = std::uint32_t(k); !known[j] && chain.size() <= folders; j = m_folders[j].parent)
            chain.push_back(j);
        for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
            Folder& f = m_folders[*it];
            if (!known[f.parent])
                f.parent = 0; // a damaged chain that loops hangs from the start folder
            const Folder& parent = m_folders[f.parent];
            f.separatorBefore = parent.pathLength == 0 || parent.lastByte != m_scan.separator;
            f.pathLength = parent.pathLength + (f.separatorBefore ? 1 : 0) + f.nameLength;
            f.lastByte = f.nameLength        ? m_names[f.nameStart + f.nameLength - 1]
                         : f.separatorBefore ? m_scan.separator
                                             : parent.lastByte;
            known[*it] = true;
            m_order.push_back(*it);
        }
    }
    m_foldersLoaded.store(true, std::memory_order_release);
    return true;
}

void StoredScanReader::layOutPaths()
{
    if (!foldersLoaded() || m_laidOut.load(std::memory_order_relaxed))
        return;
    const std::size_t folders = m_folders.size();
    std::size_t total = 0;
    m_pathStart.resize(folders);
    for (std::size_t k = 0; k < folders; ++k) {
        m_pathStart[k] = total;
        total += m_folders[k].pathLength;
    }
    m_paths.resize(total);
    walkPath(0, m_paths.data());
    for (const std::uint32_t k : m_order) {
        const Folder& f = m_folders[k];
        char* out = m_paths.data() + m_pathStart[k];
        const Folder& parent = m_folders[f.parent];
        std::memcpy(out, m_paths.data() + m_pathStart[f.parent], parent.pathLength);
        if (f.separatorBefore)
            out[parent.pathLength] = m_scan.separator;
        if (f.nameLength)
            std::memcpy(out + f.pathLength - f.nameLength, m_names.data() + f.nameStart, f.nameLength);
    }
    m_laidOut.store(true, std::memory_order_release);
}

void StoredScanReader::writePath(std::uint32_t index, char* out) const
{
    if (m_laidOut.load(std::memory_order_acquire)) {
        std::memcpy(out, m_paths.data() + m_pathStart[index], m_folders[index].pathLength);
        return;
    }
    walkPath(index, out);
}

void StoredScanReader::walkPath(std::uint32_t index, char* out) const
{
    for (std::uint32_t k = index; k != 0;) {
        const Folder& f = m_folders[k];
        char* name = out + (f.pathLength - f.nameLength);
        if (f.nameLength)
            std::memcpy(name, m_names.data() + f.nameStart, f.nameLength);
        if (f.separatorBefore)
            name[-1] = m_scan.separator;
        k = f.parent;
    }
    if (!m_scan.startPath.isEmpty())
        std::memcpy(out, m_scan.startPath.constData(), size_t(m_scan.startPath.size()));
}

QByteArray StoredScanReader::folderPath(std::uint32_t index) const
{
    if (m_folders.empty())
        return {};
    if (index >= m_folders.size())
        index = 0;
    QByteArray out(qsizetype(m_folders[index].pathLength), Qt::Uninitialized);
    writePath(index, out.data());
    return out;
}

QByteArray StoredScanReader::childPath(std::uint32_t parent, std::string_view name, int* nameOffset) const
{
    if (m_folders.empty())
        return {};
    if (parent >= m_folders.size())
        parent = 0;
    const Folder& folder = m_folders[parent];
    const bool separator = folder.pathLength == 0 || folder.lastByte != m_scan.separator;
    const std::size_t offset = folder.pathLength + (separator ? 1 : 0);
    QByteArray out(qsizetype(offset + name.size()), Qt::Uninitialized);
    char* d = out.data();
    writePath(parent, d);
    if (separator)
        d[folder.pathLength] = m_scan.separator;
    if (!name.empty())
        std::memcpy(d + offset, name.data(), name.size());
    if (nameOffset)
        *nameOffset = int(offset);
    return out;
}
