// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueResults.h"

#include <algorithm>
#include <cstring>
#include <limits>

void CatalogueResults::add(const FindHit& hit)
{
    if (m_texts.empty())
        m_texts.emplace_back();
    std::string& text = m_texts.back();
    const std::string_view path(hit.path.constData(), std::size_t(hit.path.size()));
    const std::size_t nameAt = std::min(std::size_t(std::max(hit.nameOffset, 0)), path.size());
    const std::string_view folder = path.substr(0, nameAt);
    std::string_view name = path.substr(nameAt);
    name = name.substr(0, std::numeric_limits<std::uint16_t>::max());

    if (!m_haveLastFolder || prefixAt(text, m_lastFolderAt) != folder) {
        m_lastFolderAt = std::uint32_t(text.size());
        m_haveLastFolder = true;
        const auto length = std::uint32_t(folder.size());
        text.append(reinterpret_cast<const char*>(&length), sizeof length);
        text.append(folder);
    }
    Row row;
    row.text = std::uint32_t(m_texts.size() - 1);
    row.folderAt = m_lastFolderAt;
    row.nameAt = std::uint32_t(text.size());
    row.nameLength = std::uint16_t(name.size());
    text.append(name);
    row.scan = std::uint16_t(slotOf(hit.scan) | (hit.folder ? FolderBit : 0));
    row.bytes = hit.bytes;
    row.mtime = hit.mtime;
    push(row);
}

void CatalogueResults::append(CatalogueResults&& batch)
{
    const auto textBase = std::uint32_t(m_texts.size());
    for (std::string& text : batch.m_texts)
        m_texts.push_back(std::move(text));
    std::vector<std::uint16_t> slotFor;
    slotFor.reserve(batch.m_scans.size());
    for (const auto& scan : batch.m_scans)
        slotFor.push_back(slotOf(scan));
    for (std::size_t i = 0; i < batch.m_size; ++i) {
        Row row = batch.at(i);
        row.text += textBase;
        row.scan = std::uint16_t(slotFor[row.scan & ~FolderBit] | (row.scan & FolderBit));
        push(row);
    }
    batch = CatalogueResults();
}

void CatalogueResults::push(const Row& row)
{
    if (m_rows.empty() || m_rows.back().size() == ChunkRows)
        m_rows.emplace_back();
    m_rows.back().push_back(row);
    ++m_size;
}

std::uint16_t CatalogueResults::slotOf(const std::shared_ptr<const ScanInfo>& scan)
{
    for (std::size_t i = m_scans.size(); i-- > 0;)
        if (m_scans[i] == scan || m_scans[i]->id == scan->id)
            return std::uint16_t(i);
    m_scans.push_back(scan);
    return std::uint16_t((m_scans.size() - 1) & ~FolderBit);
}

std::string_view CatalogueResults::name(std::size_t row) const
{
    const Row& r = at(row);
    return std::string_view(m_texts[r.text]).substr(r.nameAt, r.nameLength);
}

std::string_view CatalogueResults::prefixAt(std::string_view text, std::uint32_t at)
{
    std::uint32_t length = 0;
    std::memcpy(&length, text.data() + at, sizeof length);
    return text.substr(at + sizeof length, length);
}

std::string_view CatalogueResults::prefix(std::size_t row) const
{
    const Row& r = at(row);
    return prefixAt(m_texts[r.text], r.folderAt);
}

std::string_view CatalogueResults::folder(std::size_t row) const
{
    std::string_view dir = prefix(row);
    const bool root = dir.size() == 1 || (dir.size() == 3 && dir[1] == ':');
    if (!root && !dir.empty() && dir.back() == scan(row).separator)
        dir.remove_suffix(1);
    return dir;
}

QByteArray CatalogueResults::path(std::size_t row) const
{
    const std::string_view dir = prefix(row);
    const std::string_view leaf = name(row);
    QByteArray out;
    out.reserve(qsizetype(dir.size() + leaf.size()));
    out.append(dir.data(), qsizetype(dir.size()));
    out.append(leaf.data(), qsizetype(leaf.size()));
    return out;
}

std::size_t CatalogueResults::bytesUsed() const
{
    std::size_t total = 0;
    for (const std::vector<Row>& chunk : m_rows)
        total += chunk.capacity() * sizeof(Row);
    for (const std::string& text : m_texts)
        total += text.capacity();
    return total;
}
