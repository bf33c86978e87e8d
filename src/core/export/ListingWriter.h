// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "export/FileOps.h"
#include "scan/ScanResult.h"

#include <QDate>
#include <QString>

// One listing text file: the header block, then one line per entry of a result list. Lines end in CR LF;
// paths keep their bytes as they are on disk; the texts are written as UTF-8.
struct ListingFile
{
    enum Kind { FoldersWithPaths = 1, Folders = 2, FilesWithPaths = 3, Files = 4, SingleFolders = 5 };

    // The file's name in the collection folder for the name the user typed: "Folders List WithPath " + name +
    // ".txt" and so on; the single folders save is "Folder List WithPath " + name + ".txt", the single files
    // save is the set's file 3.
    static QString fileName(Kind kind, const QString& name);

    QString dateLine;                   // "Date: 05 March 2009"
    QString sourceLine;                 // "SOURCE:" + drive caption
    QString parentLine;                 // "Parent Folder: " + scanned folder
    QString title;                      // "LIST OF ALL FILES (12):"
    const ScanResult* result = nullptr; // null: the lists are empty
    ScanResult::List list = ScanResult::List::FilePaths;
    qint64 rows = 0;
    // List boxes are read one past their last item, which gives one more empty line; grids are not.
    bool extraEmptyLine = false;

    bool writeTo(FileOps::Output& out) const;

    static QString dateLineFor(const QDate& date);
};
