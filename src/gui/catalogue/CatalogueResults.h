// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"

#include <QByteArray>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The hits of one catalogue search, kept compact enough for ten million of them: each hit is a fixed 24-byte
// row and its name; every distinct folder path is held once, however many hits and scans share it (a search
// over ten scans of one tree finds the same folders ten times). Scans are held once and named by a slot.
//
// Filled batch by batch: a search thread builds a small CatalogueResults from each batch of hits and the
// window's thread adds it to the end of the big one, which copies only the rows and the names; the batch's
// folders are looked up among those already held.
class CatalogueResults
{
public:
    CatalogueResults() = default;
    CatalogueResults(const CatalogueResults&) = delete;
    CatalogueResults& operator=(const CatalogueResults&) = delete;
    CatalogueResults(CatalogueResults&&) = default;
    CatalogueResults& operator=(CatalogueResults&&) = default;

    void add(const FindHit& hit);
    // Adds every row of `batch` at the end and empties it.
    void append(CatalogueResults&& batch);

    // Gives back what only adding needs, once no more hits are coming; adding afterwards still works.
    void squeeze();

    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

    std::string_view name(std::size_t row) const;
    // The containing folder, without a trailing separator unless it is a root.
    std::string_view folder(std::size_t row) const;
    // True when both rows show the same folder, whichever scans they came from: a quick test before comparing.
    bool sameFolder(std::size_t a, std::size_t b) const
    {
        return folderOf(a).path == folderOf(b).path && scan(a).separator == scan(b).separator;
    }
    QByteArray path(std::size_t row) const;
    bool isFolder(std::size_t row) const { return at(row).folder & FolderBit; }
    qint64 bytes(std::size_t row) const { return at(row).bytes; }
    qint64 mtime(std::size_t row) const { return at(row).mtime; }
    const ScanInfo& scan(std::size_t row) const { return *m_scans[folderOf(row).scan]; }

    // Bytes held, for the memory figures.
    std::size_t bytesUsed() const;

private:
    struct Row
    {
        qint64 bytes = CatalogueRecords::NoSize;
        qint64 mtime = CatalogueRecords::NoTime;
        std::uint32_t folder = 0; // index in m_folders, and FolderBit when the hit is a folder itself
        std::uint32_t nameAt = 0; // in the name text of the row's chunk
    };
    static_assert(sizeof(Row) == 24);
    // A folder of one scan: hits in it share it, and scans of one tree share its path.
    struct Folder
    {
        std::uint32_t path = 0; // index in m_pathAt
        std::uint16_t scan = 0;
    };
    // Folders are at most as many as rows, and a view lists at most INT_MAX rows, so 31 bits hold the index.
    static constexpr std::uint32_t FolderBit = 0x80000000u;
    static constexpr std::uint32_t NoFolder = 0xFFFFFFFFu;
    static constexpr unsigned ChunkBits = 16;
    static constexpr std::size_t ChunkRows = std::size_t(1) << ChunkBits;

    const Row& at(std::size_t row) const { return m_rows[row >> ChunkBits][row & (ChunkRows - 1)]; }
    const Folder& folderOf(std::size_t row) const { return m_folders[at(row).folder & ~FolderBit]; }
    std::string_view pathText(std::uint32_t path) const;
    std::uint32_t pathIndex(std::string_view text);
    std::uint32_t folderIndex(std::uint32_t path, std::uint16_t scan);
    void push(qint64 bytes, qint64 mtime, std::uint32_t folder, std::string_view name);
    std::uint16_t slotOf(const std::shared_ptr<const ScanInfo>& scan);

    // Rows in chunks, so growing never moves the millions already held; each chunk's names in a text of its
    // own, each name after its length.
    std::vector<std::vector<Row>> m_rows;
    std::vector<std::string> m_names;
    std::size_t m_size = 0;
    std::vector<Folder> m_folders;
    // Distinct folder paths, each after its length, in texts of up to a megabyte; m_pathAt holds the text's
    // number in the high 32 bits and the offset in it in the low ones.
    std::vector<std::string> m_pathTexts;
    std::vector<std::uint64_t> m_pathAt;
    // Open-addressed lookups of a path by its bytes and of a folder by path and scan: index + 1, 0 is free.
    std::vector<std::uint32_t> m_pathLookup;
    std::vector<std::uint32_t> m_folderLookup;
    std::vector<std::shared_ptr<const ScanInfo>> m_scans;
    // Hits come folder by folder: the folder of the last one is tried first.
    std::uint32_t m_lastFolder = NoFolder;
};
