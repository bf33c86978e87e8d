// SPDX-License-Identifier: GPL-3.0-or-later

#include "CollectionFolder.h"

#include "common/NativeText.h"
#include "export/FileOps.h"

#include <QDir>

namespace {
#ifdef _WIN32
constexpr QChar Separator = u'\\';
#else
constexpr QChar Separator = u'/';
#endif
} // namespace

CollectionFolder::CollectionFolder()
{
#ifdef _WIN32
    m_path = QStringLiteral("C:\\Quillbox");
#else
    QString home = NativeText::toDisplay(qgetenv("HOME"));
    if (home.isEmpty())
        home = QDir::homePath();
    while (home.size() > 1 && home.endsWith(Separator))
        home.chop(1);
    m_path =
        home == QString(Separator) ? home + QStringLiteral("Quillbox") : home + Separator + QStringLiteral("Quillbox");
#endif
}

QString CollectionFolder::pathWithSeparator() const
{
    return m_path + Separator;
}

QString CollectionFolder::filePath(const QString& fileName) const
{
    return pathWithSeparator() + fileName;
}

QString CollectionFolder::inText(QString text) const
{
    text.replace(QStringLiteral("C:\\QUILLBOX"), m_path.toUpper());
    return text.replace(QStringLiteral("C:\\Quillbox"), m_path);
}

QByteArray CollectionFolder::nativePath() const
{
    return native(m_path);
}

QByteArray CollectionFolder::native(const QString& displayPath)
{
    return NativeText::fromDisplay(displayPath);
}

RuntimeError::Number CollectionFolder::ensureExists(FileOps& ops) const
{
    return ops.ensureDirectory(nativePath());
}
