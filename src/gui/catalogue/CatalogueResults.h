// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"

#include <QByteArray>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The hits of one catalogue search, kept compact enough for ten million of them: each hit is a fixed 32-byte
// row; names and folder paths are bytes in the text of the batch they came in, a folder written once for a run
// of hits in it (the store hands hits over folder by folder). Scans are held once and named by a slot.
//
// Filled batch by batch: a search thread builds a small CatalogueResults from each batch of hits and the
// window's thread moves it onto the end of the big one, so no row is ever copied twice.
class CatalogueResults
{
public:
    CatalogueResults() = default;
    CatalogueResults(const CatalogueResults&) = delete;
    CatalogueResults& operator=(const CatalogueResults&) = delete;
    CatalogueResults(CatalogueResults&&) = default;
    CatalogueResults& operator=(CatalogueResults&&) = default;

    void add(const FindHit& hit);
    // Moves every row of `batch` onto the end.
    void append(CatalogueResults&& batch);

    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

    std::string_view name(std::size_t row) const;
    // The containing folder, without a trailing separator unless it is a root.
    std::string_view folder(std::size_t row) const;
    QByteArray path(std::size_t row) const;
    bool isFolder(std::size_t row) const { return at(row).scan & FolderBit; }
    qint64 bytes(std::size_t row) const { return at(row).bytes; }
    qint64 mtime(std::size_t row) const { return at(row).mtime; }
    const ScanInfo& scan(std::size_t row) const { return *m_scans[at(row).scan & ~FolderBit]; }

    // Bytes held, for the memory figures.
    std::size_t bytesUsed() const;

private:
    // 32 bytes. A folder path is written once per run of hits in it, its length (4 bytes) before its bytes.
    struct Row
    {
        std::uint32_t text = 0;     // which batch's text
        std::uint32_t folderAt = 0; // the path up to the name, separator included
        std::uint32_t nameAt = 0;
        std::uint16_t nameLength = 0;
        std::uint16_t scan = 0; // the scan's slot, and FolderBit for a folder
        qint64 bytes = CatalogueRecords::NoSize;
        qint64 mtime = CatalogueRecords::NoTime;
    };
    static_assert(sizeof(Row) == 32);
    // A slot has 15 bits: one search's hits come from at most 32,767 scans, far more than a catalogue holds.
    static constexpr std::uint16_t FolderBit = 0x8000;
    static constexpr unsigned ChunkBits = 16;
    static constexpr std::size_t ChunkRows = std::size_t(1) << ChunkBits;

    const Row& at(std::size_t row) const { return m_rows[row >> ChunkBits][row & (ChunkRows - 1)]; }
    std::string_view prefix(std::size_t row) const;
    static std::string_view prefixAt(std::string_view text, std::uint32_t at);
    void push(const Row& row);
    std::uint16_t slotOf(const std::shared_ptr<const ScanInfo>& scan);

    // Rows in chunks, so growing never moves the millions already held.
    std::vector<std::vector<Row>> m_rows;
    std::size_t m_size = 0;
    std::vector<std::string> m_texts;
    std::vector<std::shared_ptr<const ScanInfo>> m_scans;
    // While filling a batch: where the last folder was written.
    std::uint32_t m_lastFolderAt = 0;
    bool m_haveLastFolder = false;
};
