// SPDX-License-Identifier: GPL-3.0-or-later

#include "StoredScanReader.h"

#include "catalogue/SqliteStatement.h"

#include <algorithm>
#include <cstring>
#include <sqlite3.h>

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
                *error =
                    QStringLiteral("The catalogue is damaged (scan %1, block %2).").arg(m_scan.id).arg(q.integer(0));
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
    std::vector<std::uint32_t> parents(folders, 0);
    std::string names;
    std::vector<std::size_t> nameStart(folders, 0);
    std::vector<std::uint32_t> nameLength(folders, 0);
    const bool ok = forEachBlock(
        0, qint64(folders - 1) / EntryBlock::Size,
        [&](qint64 seq, EntryBlock& block) {
            for (int i = 0; i < block.count(); ++i) {
                const std::size_t k = std::size_t(seq) * EntryBlock::Size + std::size_t(i);
                if (k >= folders)
                    return false;
                const EntryBlock::Entry e = block.entry(i);
                parents[k] = e.parent < folders ? e.parent : 0;
                nameStart[k] = names.size();
                nameLength[k] = std::uint32_t(e.name.size());
                names.append(e.name);
            }
            return true;
        },
        error);
    if (!ok)
        return false;

    // Each path is its parent's plus the name, so a parent's path must be there first. Parents come before
    // their children in a recorded scan; walking up the chain copes with any order all the same. The first
    // pass settles the order and every length, so the paths go into one string of the right size at once.
    m_pathStart.assign(folders, 0);
    m_pathLength.assign(folders, 0);
    std::vector<std::uint32_t> order, chain;
    order.reserve(folders);
    std::vector<bool> built(folders, false), separator(folders, false);
    std::vector<char> lastByte(folders, 0);
    const std::size_t startLength = size_t(m_scan.startPath.size());
    m_pathLength[0] = std::uint32_t(startLength);
    lastByte[0] = startLength ? m_scan.startPath.back() : 0;
    built[0] = true;
    std::size_t total = startLength;
    for (std::size_t k = 1; k < folders; ++k) {
        chain.clear();
        for (std::uint32_t j = std::uint32_t(k); !built[j] && chain.size() <= folders; j = parents[j])
            chain.push_back(j);
        for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
            if (!built[parents[*it]])
                parents[*it] = 0; // a damaged chain that loops hangs from the start folder
            const std::uint32_t parent = parents[*it];
            separator[*it] = m_pathLength[parent] == 0 || lastByte[parent] != m_scan.separator;
            m_pathLength[*it] = m_pathLength[parent] + (separator[*it] ? 1 : 0) + nameLength[*it];
            lastByte[*it] = nameLength[*it]  ? names[nameStart[*it] + nameLength[*it] - 1]
                            : separator[*it] ? m_scan.separator
                                             : lastByte[parent];
            total += m_pathLength[*it];
            built[*it] = true;
            order.push_back(*it);
        }
    }
    m_paths.clear();
    m_paths.reserve(total);
    m_paths.append(m_scan.startPath.constData(), startLength);
    for (const std::uint32_t k : order) {
        const std::uint32_t parent = parents[k];
        m_pathStart[k] = m_paths.size();
        m_paths.append(m_paths.data() + m_pathStart[parent], m_pathLength[parent]); // the room is there
        if (separator[k])
            m_paths.push_back(m_scan.separator);
        m_paths.append(names, nameStart[k], nameLength[k]);
    }
    m_foldersLoaded.store(true, std::memory_order_release);
    return true;
}

std::string_view StoredScanReader::folderPath(std::uint32_t index) const
{
    if (m_pathStart.empty())
        return {};
    if (index >= m_pathStart.size())
        index = 0;
    return std::string_view(m_paths).substr(m_pathStart[index], m_pathLength[index]);
}

QByteArray StoredScanReader::childPath(std::uint32_t parent, std::string_view name, int* nameOffset) const
{
    const std::string_view folder = folderPath(parent);
    const bool separator = folder.empty() || folder.back() != m_scan.separator;
    const std::size_t offset = folder.size() + (separator ? 1 : 0);
    QByteArray out(qsizetype(offset + name.size()), Qt::Uninitialized);
    char* d = out.data();
    if (!folder.empty())
        std::memcpy(d, folder.data(), folder.size());
    if (separator)
        d[folder.size()] = m_scan.separator;
    if (!name.empty())
        std::memcpy(d + offset, name.data(), name.size());
    if (nameOffset)
        *nameOffset = int(offset);
    return out;
}
