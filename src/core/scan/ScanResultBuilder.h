// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/ScanResult.h"

#include <memory>

// Builds a scan result from given entries instead of a walk: for benchmarks of the lists and views at sizes
// no test tree reaches, and for tests that need a result of an exact shape.
class ScanResultBuilder
{
public:
    explicit ScanResultBuilder(const QByteArray& startPath, ScanResult::Flavour flavour = ScanResult::Flavour::Long);

    // Folders are given in list order, so a folder comes before its parent: its node number (n for the n-th
    // folder; 0 is the start folder) is returned, and its parent set with setParent once that exists.
    std::uint32_t addFolder(std::string_view name, qint32 kb);
    void setParent(std::uint32_t node, std::uint32_t parent);
    // A file directly in folder node `dir` (0: the start folder), appended to the file lists.
    void addFile(std::uint32_t dir, std::string_view name);

    std::unique_ptr<ScanResult> finish();

private:
    std::unique_ptr<ScanResult> m_result;
    NameArena::Writer m_names;
};
