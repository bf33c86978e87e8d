// SPDX-License-Identifier: GPL-3.0-or-later

#include "ScanResultBuilder.h"

ScanResultBuilder::ScanResultBuilder(const QByteArray& startPath, ScanResult::Flavour flavour)
    : m_result(std::make_unique<ScanResult>()), m_names(m_result->m_names)
{
    m_result->m_flavour = flavour;
    m_result->m_startPath = startPath;
    m_result->m_dirs.push_back({0, 0, 0});
    m_result->m_nameBytes = size_t(startPath.size());
}

std::uint32_t ScanResultBuilder::addFolder(std::string_view name, qint32 kb)
{
    m_result->m_dirs.push_back({m_names.add(name), 0, kb});
    m_result->m_nameBytes += name.size() + 1;
    ++m_result->m_folderCount;
    return std::uint32_t(m_result->m_dirs.size() - 1);
}

void ScanResultBuilder::setParent(std::uint32_t node, std::uint32_t parent)
{
    m_result->m_dirs[node].parent = parent;
}

void ScanResultBuilder::addFile(std::uint32_t dir, std::string_view name)
{
    const NameArena::Ref ref = m_names.add(name);
    m_result->m_files.push_back({dir, std::uint32_t(ref), std::uint32_t(ref >> 32)});
    m_result->m_nameBytes += name.size() + 1;
}

std::unique_ptr<ScanResult> ScanResultBuilder::finish()
{
    m_result->markLongPaths();
    return std::move(m_result);
}
