// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueResults.h"

#include "catalogue/EntryBlock.h"

#include <algorithm>
#include <functional>

namespace {

// No file system we know allows names past a few hundred bytes; the cap keeps a chunk's name text, 65,536
// names with their lengths, within 32-bit offsets.
constexpr std::size_t MaxName = 65000;
constexpr std::size_t PathTextBytes = std::size_t(1) << 20;

// A text after its length, in the catalogue's own varint.
void putText(std::string& out, std::string_view text)
{
    EntryBlock::putVarint(out, text.size());
    out.append(text);
}

std::size_t textSize(std::string_view text)
{
    std::size_t size = text.size() + 1;
    for (std::size_t n = text.size(); n >= 0x80; n >>= 7)
        ++size;
    return size;
}

std::string_view textAt(const std::string& in, std::size_t at)
{
    const char* p = in.data() + at;
    std::uint64_t n = 0;
    EntryBlock::getVarint(p, in.data() + in.size(), n); // written by putText, so never short
    return {p, std::size_t(n)};
}

std::size_t mix(std::uint64_t x)
{
    x *= 0x9E3779B97F4A7C15ull;
    return std::size_t(x ^ (x >> 29));
}

// The slot of the entry `matches` accepts in an open-addressed table of index + 1, or the free slot it would
// take.
template <typename Matches>
std::uint32_t& slotIn(std::vector<std::uint32_t>& table, std::size_t hash, const Matches& matches)
{
    const std::size_t mask = table.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask)
        if (table[i] == 0 || matches(table[i] - 1))
            return table[i];
}

// Keeps a table at most half full, so a lookup stays a probe or two; an emptied table is built again.
template <typename HashOf> void makeRoom(std::vector<std::uint32_t>& table, std::size_t count, const HashOf& hashOf)
{
    if (!table.empty() && (count + 1) * 2 <= table.size())
        return;
    std::size_t size = 64;
    while (size < (count + 1) * 2)
        size *= 2;
    std::vector<std::uint32_t> bigger(size);
    for (std::size_t i = 0; i < count; ++i)
        slotIn(bigger, hashOf(std::uint32_t(i)), [](std::uint32_t) { return false; }) = std::uint32_t(i + 1);
    table.swap(bigger);
}

} // namespace

void CatalogueResults::add(const FindHit& hit)
{
    const std::string_view path(hit.path.constData(), std::size_t(hit.path.size()));
    const std::size_t nameAt = std::min(std::size_t(std::max(hit.nameOffset, 0)), path.size());
    const std::string_view folder = path.substr(0, nameAt);
    const std::uint16_t slot = slotOf(hit.scan);
    if (m_lastFolder == NoFolder || m_folders[m_lastFolder].scan != slot ||
        pathText(m_folders[m_lastFolder].path) != folder)
        m_lastFolder = folderIndex(pathIndex(folder), slot);
    push(hit.bytes, hit.mtime, m_lastFolder | (hit.folder ? FolderBit : 0), path.substr(nameAt, MaxName));
}

void CatalogueResults::append(CatalogueResults&& batch)
{
    std::vector<std::uint16_t> slotFor;
    slotFor.reserve(batch.m_scans.size());
    for (const auto& scan : batch.m_scans)
        slotFor.push_back(slotOf(scan));
    std::vector<std::uint32_t> folderFor;
    folderFor.reserve(batch.m_folders.size());
    for (const Folder& folder : batch.m_folders)
        folderFor.push_back(folderIndex(pathIndex(batch.pathText(folder.path)), slotFor[folder.scan]));
    for (std::size_t i = 0; i < batch.m_size; ++i) {
        const Row& row = batch.at(i);
        push(row.bytes, row.mtime, folderFor[row.folder & ~FolderBit] | (row.folder & FolderBit), batch.name(i));
    }
    batch = CatalogueResults();
}

void CatalogueResults::squeeze()
{
    m_pathLookup = {};
    m_folderLookup = {};
    m_folders.shrink_to_fit();
    m_pathAt.shrink_to_fit();
    if (!m_rows.empty())
        m_rows.back().shrink_to_fit();
    if (!m_names.empty())
        m_names.back().shrink_to_fit();
    if (!m_pathTexts.empty())
        m_pathTexts.back().shrink_to_fit();
}

void CatalogueResults::push(qint64 bytes, qint64 mtime, std::uint32_t folder, std::string_view name)
{
    if (m_rows.empty() || m_rows.back().size() == ChunkRows) {
        // A full chunk's names are final: their text gives back what growing it left spare.
        if (!m_names.empty())
            m_names.back().shrink_to_fit();
        m_rows.emplace_back();
        // Past the first chunk the result is a big one: its chunks are taken whole instead of grown.
        if (m_rows.size() > 1)
            m_rows.back().reserve(ChunkRows);
        m_names.emplace_back();
    }
    std::string& names = m_names.back();
    m_rows.back().push_back(Row{bytes, mtime, folder, std::uint32_t(names.size())});
    putText(names, name);
    ++m_size;
}

std::string_view CatalogueResults::pathText(std::uint32_t path) const
{
    const std::uint64_t where = m_pathAt[path];
    return textAt(m_pathTexts[std::size_t(where >> 32)], std::size_t(where & 0xFFFFFFFFu));
}

std::uint32_t CatalogueResults::pathIndex(std::string_view text)
{
    const std::hash<std::string_view> hash;
    makeRoom(m_pathLookup, m_pathAt.size(), [&](std::uint32_t i) { return hash(pathText(i)); });
    std::uint32_t& slot = slotIn(m_pathLookup, hash(text), [&](std::uint32_t i) { return pathText(i) == text; });
    if (slot != 0)
        return slot - 1;
    const std::size_t size = textSize(text);
    if (m_pathTexts.empty() || (!m_pathTexts.back().empty() && m_pathTexts.back().size() + size > PathTextBytes))
        m_pathTexts.emplace_back();
    std::string& last = m_pathTexts.back();
    m_pathAt.push_back((std::uint64_t(m_pathTexts.size() - 1) << 32) | last.size());
    putText(last, text);
    slot = std::uint32_t(m_pathAt.size());
    return slot - 1;
}

std::uint32_t CatalogueResults::folderIndex(std::uint32_t path, std::uint16_t scan)
{
    const auto hashOf = [](std::uint32_t p, std::uint16_t s) { return mix((std::uint64_t(p) << 16) | s); };
    makeRoom(m_folderLookup, m_folders.size(),
             [&](std::uint32_t i) { return hashOf(m_folders[i].path, m_folders[i].scan); });
    std::uint32_t& slot = slotIn(m_folderLookup, hashOf(path, scan), [&](std::uint32_t i) {
        return m_folders[i].path == path && m_folders[i].scan == scan;
    });
    if (slot == 0) {
        m_folders.push_back(Folder{path, scan});
        slot = std::uint32_t(m_folders.size());
    }
    return slot - 1;
}

std::uint16_t CatalogueResults::slotOf(const std::shared_ptr<const ScanInfo>& scan)
{
    for (std::size_t i = m_scans.size(); i-- > 0;)
        if (m_scans[i] == scan || m_scans[i]->id == scan->id)
            return std::uint16_t(i);
    m_scans.push_back(scan);
    return std::uint16_t(m_scans.size() - 1);
}

std::string_view CatalogueResults::name(std::size_t row) const
{
    return textAt(m_names[row >> ChunkBits], at(row).nameAt);
}

std::string_view CatalogueResults::folder(std::size_t row) const
{
    std::string_view dir = pathText(folderOf(row).path);
    const bool root = dir.size() == 1 || (dir.size() == 3 && dir[1] == ':');
    if (!root && !dir.empty() && dir.back() == scan(row).separator)
        dir.remove_suffix(1);
    return dir;
}

QByteArray CatalogueResults::path(std::size_t row) const
{
    const std::string_view dir = pathText(folderOf(row).path);
    const std::string_view leaf = name(row);
    QByteArray out;
    out.reserve(qsizetype(dir.size() + leaf.size()));
    out.append(dir.data(), qsizetype(dir.size()));
    out.append(leaf.data(), qsizetype(leaf.size()));
    return out;
}

std::size_t CatalogueResults::bytesUsed() const
{
    std::size_t total = m_folders.capacity() * sizeof(Folder) + m_pathAt.capacity() * sizeof(std::uint64_t) +
                        (m_pathLookup.capacity() + m_folderLookup.capacity()) * sizeof(std::uint32_t);
    for (const std::vector<Row>& chunk : m_rows)
        total += chunk.capacity() * sizeof(Row);
    for (const std::string& text : m_names)
        total += text.capacity();
    for (const std::string& text : m_pathTexts)
        total += text.capacity();
    return total;
}
