// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/ScanSource.h"
#include "scan/ScanResult.h"

// A walk's result as the catalogue records it: its folder tree node by node, its files in list order.
class ScanResultSource : public ScanSource
{
public:
    explicit ScanResultSource(const ScanResult& result) : m_result(result) {}

    qint64 folderCount() const override { return m_result.nodeCount(); }
    qint64 fileCount() const override { return m_result.fileCount(); }
    Entry folder(qint64 i) const override
    {
        return {m_result.nodeParent(i), m_result.nodeName(i), m_result.nodeBytes(i), m_result.nodeMtime(i)};
    }
    Entry file(qint64 i) const override
    {
        return {m_result.fileNode(i), m_result.fileName(i), m_result.fileBytes(i), m_result.fileMtime(i)};
    }
    bool readsConcurrently() const override { return true; }

private:
    const ScanResult& m_result;
};
