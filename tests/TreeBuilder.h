// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <functional>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
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

    // `folders` folders and `files` sparse files in a new folder "tree", with names meant to trip up whatever
    // handles them: bytes that are not UTF-8, line breaks, leading dashes, wildcards, quotes, 255-byte names.
    // The same seed makes the same tree. Returns the tree's path.
    QByteArray hostileTree(int folders, int files, unsigned seed) const
    {
        static const QByteArrayList pieces = {"bad\xff\xfe", "-rf",         "--help",       "line\nbreak", "tab\there",
                                              "cr\rx",       "quote'\"x",   "star*?[x]",    " lead",       "trail ",
                                              ".hidden",     "stra\u00dfe", "\ufb01le",     "back\\slash", "$HOME",
                                              "%s%n",        "\u202ertl",   "\u00e9t\u00e9"};
        std::mt19937 rng(seed);
        QByteArrayList dirs{"tree"};
        dir("tree");
        const auto name = [&](int i) {
            QByteArray n = pieces[rng() % pieces.size()] + ' ' + QByteArray::number(i);
            return i % 40 == 7 ? (n + QByteArray(255, 'L')).left(255) : n;
        };
        for (int i = 0; i < folders; ++i) {
            QByteArray parent;
            do // paths stay well below PATH_MAX, which this builder's calls need
                parent = dirs[qsizetype(rng() % dirs.size())];
            while (parent.size() > 2500);
            dirs.append(parent + '/' + name(i));
            dir(dirs.back());
        }
        for (int i = 0; i < files; ++i)
            file(dirs[qsizetype(rng() % dirs.size())] + '/' + name(folders + i), qint64(rng() % 100000));
        return path("tree");
    }

    // Names of 120 bytes for `levels` folders, one in another: 35 or more of them make a path past PATH_MAX.
    static QByteArrayList longNames(int levels)
    {
        QByteArrayList names;
        for (int level = 0; level < levels; ++level)
            names.append(QByteArray(120, char('a' + level % 26)));
        return names;
    }

    // Folders `names`, each inside the one before, below the root, made one name at a time so the chain may reach
    // past PATH_MAX. Returns a descriptor of the deepest (the caller closes it), or -1.
    int chain(const QByteArrayList& names) const
    {
        int at = ::open(root().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        for (const QByteArray& name : names) {
            ::mkdirat(at, name.constData(), 0755);
            const int next = ::openat(at, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            ::close(at);
            if (next < 0)
                return -1;
            at = next;
        }
        return at;
    }

    // A file of `size` bytes named `name` in the folder open as `dirFd`.
    static void fileAt(int dirFd, const char* name, qint64 size = 0)
    {
        const int fd = ::openat(dirFd, name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        QVERIFY2(fd >= 0, name);
        if (size > 0)
            QCOMPARE(::ftruncate(fd, size), 0);
        ::close(fd);
    }

    // Sets the modification (and access) time of `path`, a link itself when it is one.
    static bool setTime(const QByteArray& path, qint64 seconds)
    {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        return ::utimensat(AT_FDCWD, path.constData(), times, AT_SYMLINK_NOFOLLOW) == 0;
    }

    // Runs `work` in a child process (to lower a limit or drop privileges there alone) and gives what it returned;
    // nothing when the child did not get that far.
    static QByteArray inChild(const std::function<QByteArray()>& work)
    {
        int fds[2];
        if (::pipe(fds) != 0)
            return {};
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::close(fds[0]);
            const QByteArray out = work();
            ::_exit(::write(fds[1], out.constData(), size_t(out.size())) == out.size() ? 0 : 1);
        }
        ::close(fds[1]);
        QByteArray out;
        char buf[4096];
        for (ssize_t n; (n = ::read(fds[0], buf, sizeof buf)) > 0;)
            out.append(buf, n);
        ::close(fds[0]);
        ::waitpid(pid, nullptr, 0);
        return out;
    }

private:
    QTemporaryDir m_dir;
};
