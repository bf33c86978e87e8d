// SPDX-License-Identifier: GPL-3.0-or-later

#include "CollectionFolder.h"

#include "common/NativeText.h"
#include "export/FileOps.h"

#include "common/RuntimeError.h"

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {
#ifdef _WIN32
constexpr QChar Separator = u'\\';
#else
constexpr QChar Separator = u'/';
#endif
} // namespace

CollectionFolder::CollectionFolder() : m_inHome(true)
{
#ifdef _WIN32
    m_path = QStringLiteral("C:\\Quillbox");
#else
    QString home = NativeText::toDisplay(qgetenv("HOME"));
    if (home.isEmpty()) {
        // Without a home folder there is no place that is the user's: the root folder is not, and "~" is only a
        // name to show.
        m_path = QStringLiteral("~/Quillbox");
        m_noHome = true;
        return;
    }
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

QString CollectionFolder::refusal() const
{
#ifndef _WIN32
    if (m_noHome)
        return QStringLiteral("HOME is not set, so there is no home folder to keep Quillbox in");
    // As ssh refuses a key folder that others control: listings and copies written into a folder another user
    // owns, or through a link to anywhere, would be theirs to read or replace.
    struct stat st;
    if (!m_inHome || ::lstat(nativePath().constData(), &st) != 0)
        return {};
    if (S_ISLNK(st.st_mode))
        return QLatin1Char('\'') + m_path + QStringLiteral("' is a symbolic link, not a folder of your own");
    if (S_ISDIR(st.st_mode) && st.st_uid != ::geteuid() && st.st_uid != 0)
        return QLatin1Char('\'') + m_path + QStringLiteral("' belongs to another user");
#endif
    return {};
}

RuntimeError::Number CollectionFolder::check() const
{
    return refusal().isEmpty() ? RuntimeError::None : RuntimeError::PathNotFound;
}

RuntimeError::Number CollectionFolder::ensureExists(FileOps& ops) const
{
    if (const RuntimeError::Number error = check())
        return error;
    return ops.ensureDirectory(nativePath());
}
