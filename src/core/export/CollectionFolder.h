// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/RuntimeError.h"

#include <QByteArray>
#include <QString>

class FileOps;

// The one folder all output goes to: C:\Quillbox on Windows, Quillbox in the home folder elsewhere.
// Every text that names it is built from `path()`, so on Windows the texts read exactly as they always did.
class CollectionFolder
{
public:
    // From the environment: HOME (tests point it at a temporary folder).
    CollectionFolder();
    explicit CollectionFolder(const QString& path) : m_path(path) {}

    QString path() const { return m_path; }          // "C:\Quillbox", "/home/ann/Quillbox"
    QString pathWithSeparator() const;               // "C:\Quillbox\"
    QString filePath(const QString& fileName) const; // "C:\Quillbox\" + fileName
    QByteArray nativePath() const;
    // A text written for "C:\Quillbox" with this folder's path put in its place, in capitals where the text has
    // "C:\QUILLBOX".
    QString inText(QString text) const;
    static QByteArray native(const QString& displayPath);

    // Why nothing may be written into the folder, or the empty text: no home folder, or a ~/Quillbox that is a
    // symbolic link or another user's folder. A folder given to the constructor is never refused.
    QString refusal() const;
    // 76 (Path not found) when refused, else 0.
    RuntimeError::Number check() const;

    // Creates the folder when nothing is there yet; the run-time error number, or 0.
    RuntimeError::Number ensureExists(FileOps& ops) const;

private:
    QString m_path;
    bool m_inHome = false; // the default folder, which must be the user's; a folder given explicitly is taken as is
    bool m_noHome = false;
};
