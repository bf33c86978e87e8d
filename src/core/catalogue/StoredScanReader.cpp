// SPDX-License-Identifier: GPL-3.0-or-later

#include "StoredScanReader.h"

#include "catalogue/SqliteStatement.h"

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

bool StoredScanReader::readBlock(qint64 seq, std::string& bytes, QString* error)
{
    SqliteStatement q(m_db, "SELECT data FROM block WHERE scan_id = ? AND seq = ?");
    q.bind(1, m_scan.id);
    q.bind(2, seq);
    if (!q.step()) {
        if (error)
            *error = QStringLiteral("The catalogue is damaged (scan %1, block %2 missing).").arg(m_scan.id).arg(seq);
        return false;
    }
    bytes.assign(q.blob(0));
    return true;
}

bool StoredScanReader::loadFolders(QString* error)
{
    if (m_foldersLoaded)
        return true;
    const qint64 folders = m_scan.folderCount + 1;
    m_parents.assign(size_t(folders), 0);
    m_names.assign(size_t(folders), std::string());
    m_paths.assign(size_t(folders), QByteArray());
    m_pathKnown.assign(size_t(folders), false);
    const bool ok = forEachBlock(
        0, (folders - 1) / EntryBlock::Size,
        [&](qint64 seq, EntryBlock& block) {
            for (int i = 0; i < block.count(); ++i) {
                const qint64 k = seq * EntryBlock::Size + i;
                if (k >= folders)
                    return false;
                const EntryBlock::Entry e = block.entry(i);
                m_parents[size_t(k)] = e.parent < folders ? e.parent : 0;
                m_names[size_t(k)].assign(e.name);
            }
            return true;
        },
        error);
    m_paths[0] = m_scan.startPath;
    m_pathKnown[0] = true;
    m_foldersLoaded = ok;
    return ok;
}

QByteArray StoredScanReader::childPath(std::uint32_t parent, std::string_view name, int* nameOffset)
{
    QByteArray out = folderPath(parent);
    if (!out.endsWith(m_scan.separator))
        out.append(m_scan.separator);
    if (nameOffset)
        *nameOffset = int(out.size());
    out.append(name.data(), qsizetype(name.size()));
    return out;
}

const QByteArray& StoredScanReader::folderPath(std::uint32_t index)
{
    if (index >= m_pathKnown.size())
        index = 0;
    if (m_pathKnown[index])
        return m_paths[index];
    // Up the chain to the nearest folder whose path is known, then down again: no recursion for deep trees.
    std::vector<std::uint32_t> chain;
    std::uint32_t k = index;
    while (!m_pathKnown[k] && chain.size() <= m_parents.size()) {
        chain.push_back(k);
        k = m_parents[k];
    }
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        m_paths[*it] = childPath(m_parents[*it], m_names[*it]);
        m_pathKnown[*it] = true;
    }
    return m_paths[index];
}
