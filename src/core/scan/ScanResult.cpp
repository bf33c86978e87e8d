// SPDX-License-Identifier: GPL-3.0-or-later

#include "ScanResult.h"

#include "common/NativeText.h"

#include <algorithm>
#include <charconv>

QString ScanResult::limitMessage()
{
    return QStringLiteral("Number of Files is crossing the limit. You can display only 32767 Files\r\n"
                          "at a time. The program will terminate at this juncture.");
}

qint64 ScanResult::count(List list) const
{
    switch (list) {
    case List::FolderPaths:
    case List::FolderNames:
        return noFolderFound() ? 1 : folderCount();
    case List::FilePaths:
    case List::FileNames:
        return fileCount();
    }
    return 0;
}

void ScanResult::appendDirPath(std::uint32_t dir, QByteArray& out) const
{
    // Iterative, so a chain of 10,000 folders costs no stack.
    std::uint32_t chain[64];
    std::vector<std::uint32_t> longChain;
    std::size_t depth = 0;
    for (std::uint32_t d = dir; d != 0; d = m_dirs[d].parent) {
        if (depth < std::size(chain))
            chain[depth] = d;
        else
            longChain.push_back(d);
        ++depth;
    }
    out.append(m_startPath);
    for (std::size_t k = depth; k-- > 0;) {
        const std::uint32_t d = k < std::size(chain) ? chain[k] : longChain[k - std::size(chain)];
        if (!out.endsWith(m_separator)) // a root keeps its own trailing separator
            out.append(m_separator);
        const std::string_view name = m_names.get(m_dirs[d].name);
        out.append(name.data(), qsizetype(name.size()));
    }
}

QByteArray ScanResult::dirPath(std::uint32_t dir) const
{
    QByteArray out;
    appendDirPath(dir, out);
    return out;
}

QByteArray ScanResult::filePath(qint64 file) const
{
    QByteArray out;
    appendEntry(List::FilePaths, file, out);
    return out;
}

std::string_view ScanResult::shownName(std::uint64_t seq) const
{
    if (!m_staleNames.empty()) {
        const auto it =
            std::lower_bound(m_staleNames.begin(), m_staleNames.end(), std::make_pair(seq, std::uint64_t(0)));
        if (it != m_staleNames.end() && it->first == seq) {
            if (it->second == UINT64_MAX)
                return {m_carriedName.constData(), size_t(m_carriedName.size())};
            seq = it->second;
        }
    }
    const std::uint64_t folders = std::uint64_t(folderCount());
    return seq < folders ? folderName(qint64(seq)) : fileName(qint64(seq - folders));
}

void ScanResult::appendEntry(List list, qint64 row, QByteArray& out) const
{
    if ((list == List::FolderPaths || list == List::FolderNames) && noFolderFound()) {
        out.append(NoFolderFound.data(), qsizetype(NoFolderFound.size()));
        return;
    }
    switch (list) {
    case List::FolderPaths:
        appendDirPath(std::uint32_t(row + 1), out);
        return;
    case List::FolderNames: {
        const std::string_view name = shownName(std::uint64_t(row));
        out.append(name.data(), qsizetype(name.size()));
        char digits[16];
        const auto end = std::to_chars(digits, digits + sizeof digits, folderKb(row)).ptr;
        out.append(" (", 2);
        out.append(digits, end - digits);
        out.append("kB)", 3);
        return;
    }
    case List::FilePaths: {
        const FileEntry& f = m_files[size_t(row)];
        appendDirPath(f.dir, out);
        if (!out.endsWith(m_separator))
            out.append(m_separator);
        const std::string_view name = m_names.get(f.name());
        out.append(name.data(), qsizetype(name.size()));
        return;
    }
    case List::FileNames: {
        const std::string_view name = shownName(std::uint64_t(folderCount() + row));
        out.append(name.data(), qsizetype(name.size()));
        return;
    }
    }
}

void ScanResult::appendLines(List list, qint64 from, qint64 to, std::string_view eol, QByteArray& out) const
{
    if (list != List::FilePaths) {
        for (qint64 row = from; row < to; ++row) {
            appendEntry(list, row, out);
            out.append(eol.data(), qsizetype(eol.size()));
        }
        return;
    }
    std::uint32_t cachedDir = UINT32_MAX;
    QByteArray dirPrefix;
    for (qint64 row = from; row < to; ++row) {
        const FileEntry& f = m_files[size_t(row)];
        if (f.dir != cachedDir) {
            dirPrefix.clear();
            appendDirPath(f.dir, dirPrefix);
            if (!dirPrefix.endsWith(m_separator))
                dirPrefix.append(m_separator);
            cachedDir = f.dir;
        }
        const std::string_view name = m_names.get(f.name());
        out.append(dirPrefix);
        out.append(name.data(), qsizetype(name.size()));
        out.append(eol.data(), qsizetype(eol.size()));
    }
}

QByteArray ScanResult::entry(List list, qint64 row) const
{
    QByteArray out;
    appendEntry(list, row, out);
    return out;
}

QString ScanResult::text(List list, qint64 row) const
{
    return NativeText::toDisplay(entry(list, row));
}

std::size_t ScanResult::indexBytes() const
{
    return m_dirs.capacity() * sizeof(DirNode) + m_files.capacity() * sizeof(FileEntry) +
           (m_dirStats.capacity() + m_fileStats.capacity()) * sizeof(Stat) +
           m_staleNames.capacity() * sizeof(m_staleNames[0]) + size_t(m_startPath.capacity());
}

std::size_t ScanResult::memoryUsage() const
{
    return m_names.bytesReserved() + indexBytes();
}

void ScanResult::markLongPaths()
{
    m_staleNames.clear();
    const std::size_t nodes = m_dirs.size();
    const std::size_t folders = std::size_t(m_folderCount);
    // Byte length of every node's path; a listed folder's parent comes after it, an extra node's before it.
    std::vector<std::size_t> len(nodes, 0);
    len[0] = std::size_t(m_startPath.size());
    const bool rootEndsWithSep = m_startPath.endsWith(m_separator);
    const auto childLen = [&](std::size_t parentNode, std::size_t nameLen) {
        return len[parentNode] + ((parentNode == 0 && rootEndsWithSep) ? 0 : 1) + nameLen;
    };
    for (std::size_t k = folders; k >= 1; --k)
        len[k] = childLen(m_dirs[k].parent, m_names.get(m_dirs[k].name).size());
    for (std::size_t k = folders + 1; k < nodes; ++k)
        len[k] = childLen(m_dirs[k].parent, m_names.get(m_dirs[k].name).size());

    // UTF-16 length never exceeds the byte length, so only long byte strings need a closer look.
    const auto tooLong = [&](std::size_t bytes, auto&& path) {
        return bytes > std::size_t(MaxSplitPathLength) && NativeText::displayLength(path()) > MaxSplitPathLength;
    };
    std::vector<bool> folderTooLong(folders);
    for (std::size_t k = 0; k < folders; ++k)
        folderTooLong[k] = tooLong(len[k + 1], [&] {
            const QByteArray p = dirPath(std::uint32_t(k + 1));
            return std::string(p.constData(), size_t(p.size()));
        });
    std::uint64_t lastGood = UINT64_MAX;
    const auto mark = [&](std::uint64_t seq, bool stale) {
        if (stale)
            m_staleNames.emplace_back(seq, lastGood);
        else
            lastGood = seq;
    };
    // The Long window's walk takes every folder's path apart once before its size pass does so again, so that
    // pass starts from the name of the last folder the walk could take apart, not from the previous scan's.
    if (m_flavour == Flavour::Long)
        for (std::size_t k = 0; k < folders; ++k)
            if (!folderTooLong[k])
                lastGood = k;
    for (std::size_t k = 0; k < folders; ++k)
        mark(k, folderTooLong[k]);
    for (std::size_t k = 0; k < m_files.size(); ++k) {
        const FileEntry& f = m_files[k];
        mark(folders + k, tooLong(childLen(f.dir, m_names.get(f.name()).size()), [&] {
                 const QByteArray p = filePath(qint64(k));
                 return std::string(p.constData(), size_t(p.size()));
             }));
    }
    m_carryOut.lastName = m_carriedName;
    const std::uint64_t total = folders + m_files.size();
    if (total > 0) {
        const std::string_view last = shownName(total - 1);
        m_carryOut.lastName = QByteArray(last.data(), qsizetype(last.size()));
    }
}
