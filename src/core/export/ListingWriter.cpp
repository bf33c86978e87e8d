// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListingWriter.h"

#include "common/NativeText.h"

#include <QLocale>
#include <algorithm>

QString ListingFile::fileName(Kind kind, const QString& name)
{
    switch (kind) {
    case FoldersWithPaths:
        return QStringLiteral("Folders List WithPath ") + name + QStringLiteral(".txt");
    case Folders:
        return QStringLiteral("Folders List - ") + name + QStringLiteral(".txt");
    case FilesWithPaths:
        return QStringLiteral("Files List WithPath ") + name + QStringLiteral(".txt");
    case Files:
        return QStringLiteral("Files List - ") + name + QStringLiteral(".txt");
    case SingleFolders:
        return QStringLiteral("Folder List WithPath ") + name + QStringLiteral(".txt");
    }
    return {};
}

QString ListingFile::dateLineFor(const QDate& date)
{
    return QStringLiteral("Date: ") + QLocale::system().toString(date, QStringLiteral("dd MMMM yyyy"));
}

bool ListingFile::writeTo(FileOps::Output& out) const
{
    QByteArray buf;
    const auto line = [&](const QString& text) {
        buf.append(NativeText::fromDisplay(text));
        buf.append("\r\n", 2);
    };
    line(dateLine);
    line(sourceLine);
    line(QString());
    line(parentLine);
    line(title);
    line(QString());
    const qint64 available = result ? std::min(result->count(list), rows) : 0;
    constexpr qint64 Batch = 4096;
    buf.reserve(1 << 20);
    for (qint64 row = 0; row < available; row += Batch) {
        result->appendLines(list, row, std::min(row + Batch, available), "\r\n", buf);
        if (buf.size() >= (1 << 20)) {
            if (!out.write(buf.constData(), buf.size()))
                return false;
            buf.clear();
        }
    }
    for (qint64 row = available; row < rows; ++row) // rows the source does not have read as empty
        buf.append("\r\n", 2);
    if (extraEmptyLine)
        buf.append("\r\n", 2);
    buf.append("\r\n", 2);
    return out.write(buf.constData(), buf.size());
}
