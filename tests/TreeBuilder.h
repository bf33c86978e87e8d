// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// Builds folder trees for tests inside a temporary folder, with names as raw bytes.
class TreeBuilder
{
public:
    // The tree is made in a new folder under `under`.
    explicit TreeBuilder(const QString& under = QDir::tempPath()) : m_dir(under + QStringLiteral("/quillary-XXXXXX"))
    {
        QVERIFY(m_dir.isValid());
    }
    // QTemporaryDir cannot remove names that are not UTF-8 nor paths past PATH_MAX; rm can.
    ~TreeBuilder() { QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-rf"), m_dir.path()}); }

    QByteArray root() const { return QFile::encodeName(m_dir.path()); }
    QByteArray path(const QByteArray& rel) const { return rel.isEmpty() ? root() : root() + '/' + rel; }

    void dir(const QByteArray& rel) const
    {
        QByteArray p = root();
        for (const QByteArray& part : rel.split('/')) {
            p += '/' + part;
            ::mkdir(p.constData(), 0755);
        }
    }

    // A file of `size` bytes (sparse), making its folders as needed.
    void file(const QByteArray& rel, qint64 size = 0) const
    {
        const qsizetype cut = rel.lastIndexOf('/');
        if (cut > 0)
            dir(rel.left(cut));
        const int fd = ::open(path(rel).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        QVERIFY2(fd >= 0, path(rel).constData());
        if (size > 0)
            QCOMPARE(::ftruncate(fd, size), 0);
        ::close(fd);
    }

private:
    QTemporaryDir m_dir;
};
