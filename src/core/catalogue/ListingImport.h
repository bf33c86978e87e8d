// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"
#include "catalogue/ScanSource.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// A set of four listing files read back as a scan: the folders from "Folders List WithPath", their sizes from
// "Folders List -" (kB, so to the nearest 1024 bytes), the files from "Files List WithPath". Sets written on
// Windows (C:\DATA\... paths in the Windows code page) are read as well: their text is taken as UTF-8 when it
// is valid UTF-8, else as Windows-1252, unless an encoding is named. Files have no sizes or dates.
class ListingImport : public ScanSource
{
public:
    // `files`: any file of the set (the others are found beside it by name) or several. `encoding`: empty for
    // the rule above, else a name such as "windows-1252" or "UTF-8".
    static std::unique_ptr<ListingImport> load(const QStringList& files, const QString& encoding,
                                               QString* error = nullptr);

    const ScanInfo& info() const { return m_info; }

    qint64 folderCount() const override { return qint64(m_folders.size()); }
    qint64 fileCount() const override { return qint64(m_files.size()); }
    Entry folder(qint64 index) const override;
    Entry file(qint64 index) const override;

    // Windows-1252 bytes as UTF-8.
    static QByteArray fromWindows1252(const QByteArray& bytes);

private:
    struct Item
    {
        std::uint32_t parent;
        std::string name;
        qint64 bytes;
    };

    bool build(const QList<QByteArray>& folderPaths, const QList<QByteArray>& folderNames,
               const QList<QByteArray>& filePaths, QString* error);
    std::uint32_t folderFor(std::string_view relative);

    ScanInfo m_info;
    std::vector<Item> m_folders;
    std::vector<Item> m_files;
    std::vector<std::pair<std::string, std::uint32_t>> m_index; // relative folder path -> folder, sorted
};
