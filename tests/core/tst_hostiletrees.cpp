// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListerRun.h"
#include "TreeBuilder.h"
#include "scan/FolderReader.h"
#include "scan/FolderWalk.h"

#include <QSet>
#include <QTest>
#include <atomic>
#include <linux/magic.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/statfs.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>

using L = ScanResult::List;

namespace {

QByteArrayList lines(const ScanResult& r, L list)
{
    QByteArrayList out;
    for (qint64 i = 0; i < r.count(list); ++i)
        out.append(r.entry(list, i));
    return out;
}

} // namespace

// Trees that try to break the walk: busy folders, things that change under it, entries that are not files.
class TestHostileTrees : public QObject
{
    Q_OBJECT

private slots:
    void changesWhileWalking()
    {
        // Files are deleted and made again and folders renamed while the walk runs; it must finish, and
        // whatever it lists must hang together: every file's folder is listed (or is the start folder).
        TreeBuilder t;
        for (int d = 0; d < 40; ++d)
            for (int f = 0; f < 50; ++f)
                t.file("d" + QByteArray::number(d) + "/sub/f" + QByteArray::number(f), 100);
        std::atomic_bool stop{false};
        std::thread vandal([&] {
            for (int round = 0; !stop; ++round) {
                const QByteArray d = t.path("d" + QByteArray::number(round % 40));
                const QByteArray moved = d + "-moved";
                ::rename(d.constData(), moved.constData());
                for (int f = 0; f < 50; f += 7)
                    ::unlink((moved + "/sub/f" + QByteArray::number(f)).constData());
                ::rename(moved.constData(), d.constData());
                for (int f = 0; f < 50; f += 7) {
                    const int fd = ::open((d + "/sub/f" + QByteArray::number(f)).constData(), O_CREAT | O_WRONLY, 0644);
                    if (fd >= 0)
                        ::close(fd);
                }
            }
        });
        for (int run = 0; run < 10; ++run) {
            const auto r = FolderWalk::run(t.root());
            QSet<QByteArray> folders{t.root()};
            for (qint64 i = 0; i < r->count(L::FolderPaths); ++i)
                folders.insert(r->entry(L::FolderPaths, i));
            QVERIFY(r->folderCount() <= 80);
            QVERIFY(r->fileCount() <= 2000);
            for (qint64 i = 0; i < r->fileCount(); ++i) {
                const QByteArray p = r->entry(L::FilePaths, i);
                QVERIFY2(folders.contains(p.left(p.lastIndexOf('/'))), p.constData());
                QCOMPARE(r->entry(L::FileNames, i), p.mid(p.lastIndexOf('/') + 1));
            }
        }
        stop = true;
        vandal.join();
    }

    void pipesSocketsAndBusyFolders()
    {
        // Pipes and sockets are listed as files and never opened (opening a pipe would block the walk).
        TreeBuilder t;
        t.file("big/.keep");
        QCOMPARE(::mkfifo(t.path("big/a-pipe").constData(), 0644), 0);
        const int s = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un addr{};
        addr.sun_family = AF_UNIX;
        const QByteArray sock = t.path("big/b-socket");
        if (size_t(sock.size()) < sizeof addr.sun_path) {
            std::memcpy(addr.sun_path, sock.constData(), size_t(sock.size()));
            QCOMPARE(::bind(s, reinterpret_cast<sockaddr*>(&addr), sizeof addr), 0);
        }
        // One folder of 200,000 files.
        const int dfd = ::open(t.path("big").constData(), O_RDONLY | O_DIRECTORY);
        for (int i = 0; i < 200000; ++i) {
            const int fd = ::openat(dfd, ("file " + QByteArray::number(i)).constData(), O_CREAT | O_WRONLY, 0644);
            QVERIFY(fd >= 0);
            ::close(fd);
        }
        ::close(dfd);
        const auto r = FolderWalk::run(t.root());
        ::close(s);
        QCOMPARE(r->fileCount(), 200003);
        QCOMPARE(r->entry(L::FileNames, 0), QByteArray(".keep"));
        QCOMPARE(r->entry(L::FileNames, 1), QByteArray("a-pipe"));
        QCOMPARE(r->entry(L::FileNames, 2), QByteArray("b-socket"));
        QCOMPARE(r->entry(L::FileNames, 3), QByteArray("file 0"));
        QCOMPARE(r->entry(L::FileNames, 4), QByteArray("file 1"));
        QCOMPARE(r->entry(L::FileNames, 5), QByteArray("file 10"));
        QCOMPARE(r->entry(L::FileNames, 200002), QByteArray("file 99999"));

        // The Short flavour stops at its limit within the one folder.
        WalkOptions o;
        o.flavour = ScanResult::Flavour::Short;
        const auto s2 = FolderWalk::run(t.root(), o);
        QVERIFY(s2->limitReached());
        QCOMPARE(s2->fileCount(), 32767);
        QVERIFY(s2->noFolderFound()); // the limit struck before the folder was complete

        // The lister says so on stderr and lists what it had.
        TreeBuilder home;
        const ListerRun p(QFile::decodeName(home.root()), {QStringLiteral("--short"), QFile::decodeName(t.root())});
        QCOMPARE(p.code, 0);
        QVERIFY(p.err.contains("Number of Files is crossing the limit. You can display only 32767 Files\n"
                               "at a time. The program will terminate at this juncture."));
        QVERIFY(p.out.startsWith("NO FOLDER FOUND\nTotal Files: 32767\n"));
    }

    void aGeneratedOddTree()
    {
        TreeBuilder t, home;
        const QString root = QFile::decodeName(t.hostileTree(300, 3000, 7));
        const auto r = FolderWalk::run(QFile::encodeName(root));
        QCOMPARE(r->folderCount(), 300);
        QCOMPARE(r->fileCount(), 3000);
        for (qint64 i = 0; i < r->fileCount(); ++i) {
            struct stat st;
            QVERIFY2(::lstat(r->entry(L::FilePaths, i).constData(), &st) == 0 && !S_ISDIR(st.st_mode),
                     r->entry(L::FilePaths, i).constData());
        }
        QCOMPARE(
            ListerRun(QFile::decodeName(home.root()), {QStringLiteral("--name"), QStringLiteral("gen"), root}).code, 0);
        QFile listing(QFile::decodeName(home.root()) + QStringLiteral("/Quillbox/Files List WithPath gen.txt"));
        QVERIFY(listing.open(QIODevice::ReadOnly));
        QByteArray expected;
        for (qint64 i = 0; i < r->fileCount(); ++i)
            expected += r->entry(L::FilePaths, i) + "\r\n";
        QVERIFY(listing.readAll().contains("(3000):\r\n\r\n" + expected + "\r\n"));
    }

    void everyEntryUnderALowDescriptorLimit()
    {
        // Folders deeper than a path can reach wait for their turn holding a descriptor each, while the walk can
        // spare one; under a limit of 64 the others are opened again through their parents and none is lost.
        TreeBuilder t;
        QByteArray deep;
        for (int level = 0; level < 30; ++level) // 30 * 111 bytes: past the length where paths give way
            deep += (level ? "/" : "") + QByteArray(110, char('a' + level % 26));
        for (int k = 0; k < 400; ++k) // a wide folder
            t.file(deep + "/wide/w" + QByteArray::number(k) + "/f", 1);
        QByteArray comb = deep + "/comb"; // a deep chain with a leaf beside every link
        for (int level = 0; level < 60; ++level) {
            t.file(comb + "/leaf/f", 1);
            comb += "/c";
        }
        t.dir(comb);
        const int wide = 30 + 1 + 400, combFolders = 1 + 60 * 2;

        int out[2];
        QCOMPARE(::pipe(out), 0);
        const pid_t pid = ::fork();
        if (pid == 0) {
            const struct rlimit low
            {
                64, 64
            };
            std::int64_t counts[3] = {-1, -1, -1};
            if (::setrlimit(RLIMIT_NOFILE, &low) == 0) {
                WalkOptions o;
                o.threads = 16;
                const auto r = FolderWalk::run(t.root(), o);
                counts[0] = r->folderCount();
                counts[1] = r->fileCount();
                counts[2] = std::int64_t(r->unreadableFolders().size());
            }
            ::_exit(::write(out[1], counts, sizeof counts) == sizeof counts ? 0 : 1);
        }
        ::close(out[1]);
        std::int64_t counts[3] = {};
        QCOMPARE(::read(out[0], counts, sizeof counts), qint64(sizeof counts));
        ::close(out[0]);
        int status = 0;
        ::waitpid(pid, &status, 0);
        QCOMPARE(counts[0], wide + combFolders);
        QCOMPARE(counts[1], 400 + 60);
        QCOMPARE(counts[2], 0);
    }

    void aStartFolderPastPathMaxUnderALowDescriptorLimit()
    {
        // A start folder whose path is longer than the system takes, named through a link on the way, is opened a
        // name at a time; under a limit of 32 its folders are opened again through that path, and the link to
        // ".." inside it is still not followed.
        TreeBuilder t;
        QByteArrayList names;
        for (int level = 0; level < 36; ++level)
            names.append(QByteArray(120, char('a' + level % 26)));
        const int bottom = t.chain(names);
        QVERIFY(bottom >= 0);
        QCOMPARE(::symlinkat("..", bottom, "up"), 0);
        for (int k = 0; k < 100; ++k) {
            const QByteArray w = "w" + QByteArray::number(k);
            QCOMPARE(::mkdirat(bottom, w.constData(), 0755), 0);
            const int fd = ::openat(bottom, w.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            TreeBuilder::fileAt(fd, "f", 1);
            ::close(fd);
        }
        ::close(bottom);
        QCOMPARE(::symlink(names[0].constData(), t.path("hop").constData()), 0);
        const QByteArray start = t.root() + "/hop/" + names.mid(1).join('/');
        QVERIFY(start.size() > PATH_MAX);

        int out[2];
        QCOMPARE(::pipe(out), 0);
        const pid_t pid = ::fork();
        if (pid == 0) {
            const struct rlimit low
            {
                32, 32
            };
            std::int64_t counts[4] = {-1, -1, -1, -1};
            if (::setrlimit(RLIMIT_NOFILE, &low) == 0) {
                WalkOptions o;
                o.threads = 4;
                const auto r = FolderWalk::run(start, o);
                counts[0] = r->folderCount();
                counts[1] = r->fileCount();
                counts[2] = std::int64_t(r->unreadableFolders().size());
                counts[3] = FolderReader::absoluteFolder(start) == t.root() + '/' + names.join('/');
            }
            ::_exit(::write(out[1], counts, sizeof counts) == sizeof counts ? 0 : 1);
        }
        ::close(out[1]);
        std::int64_t counts[4] = {};
        QCOMPARE(::read(out[0], counts, sizeof counts), qint64(sizeof counts));
        ::close(out[0]);
        int status = 0;
        ::waitpid(pid, &status, 0);
        QCOMPARE(counts[0], 100);
        QCOMPARE(counts[1], 100 + 1);
        QCOMPARE(counts[2], 0);
        QCOMPARE(counts[3], 1);
    }

    void mountPointsAreNotEnteredAtAnyDepth()
    {
        // A folder bound below the start folder, near the top and past the length where paths give way, is
        // listed as a folder and not entered, though it is on the same device.
        if (::geteuid() != 0)
            QSKIP("binding a folder needs root");
        TreeBuilder t;
        QByteArray deep;
        for (int level = 0; level < 30; ++level)
            deep += (level ? "/" : "") + QByteArray(110, 'd');
        t.file("foreign/inside.txt");
        t.dir("near/bound");
        t.dir(deep + "/bound");
        int out[2];
        QCOMPARE(::pipe(out), 0);
        const pid_t pid = ::fork();
        if (pid == 0) {
            // In a mount namespace of its own, so no mount outlives the test whatever happens.
            std::int64_t counts[3] = {-1, -1, -1};
            if (::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                ::mount(t.path("foreign").constData(), t.path("near/bound").constData(), nullptr, MS_BIND, nullptr) ==
                    0 &&
                ::mount(t.path("foreign").constData(), t.path(deep + "/bound").constData(), nullptr, MS_BIND,
                        nullptr) == 0) {
                const auto r = FolderWalk::run(t.root());
                counts[0] = r->folderCount();
                counts[1] = r->fileCount();
                counts[2] = 0;
                ::umount2(t.path(deep + "/bound").constData(), MNT_DETACH);
                ::umount2(t.path("near/bound").constData(), MNT_DETACH);
            }
            ::_exit(::write(out[1], counts, sizeof counts) == sizeof counts ? 0 : 1);
        }
        ::close(out[1]);
        std::int64_t counts[3] = {};
        QCOMPARE(::read(out[0], counts, sizeof counts), qint64(sizeof counts));
        ::close(out[0]);
        int status = 0;
        ::waitpid(pid, &status, 0);
        if (counts[0] < 0)
            QSKIP("no mount namespace or bind mount here");
        QCOMPARE(counts[0], 30 + 1 + 1 + 2); // the deep chain and its bound folder, foreign, near and its own
        QCOMPARE(counts[1], 1);              // foreign's own file, once
    }

    void sizesNeverWrap()
    {
        // Sparse files of 2^63 - 1 bytes sum past 2^64; wrapped, these folders would show 5kB. Past the largest
        // size they show the size computed before, as every oversized folder does.
        struct statfs fs;
        if (::statfs("/dev/shm", &fs) != 0 || fs.f_type != TMPFS_MAGIC)
            QSKIP("needs a tmpfs at /dev/shm, the usual file system that takes files of 2^63 bytes");
        TreeBuilder t(QStringLiteral("/dev/shm"));
        const qint64 huge = std::numeric_limits<qint64>::max();
        t.file("a/small", 2048);
        t.file("b/huge1", huge);
        t.file("b/huge2", huge);
        t.file("b/rest", 5000);
        t.file("c/x/huge", huge);
        t.file("c/y/huge", huge);
        t.file("c/rest", 5000);
        const auto r = FolderWalk::run(t.root());
        QCOMPARE(lines(*r, L::FolderNames), QByteArrayList({"a (2kB)", "b (2kB)", "x (2kB)", "y (2kB)", "c (2kB)"}));
    }

    void oddNamesThroughTheLister()
    {
        // Names that are not UTF-8, hold line breaks or start with dashes reach the listing byte for byte.
        TreeBuilder t, home;
        const QList<QByteArray> names = {"bad\xff\xfe", "-rf",       "--help",    "line\nbreak",
                                         "tab\there",   "quote'\"x", "star*?[x]", QByteArray(255, 'L')};
        for (const QByteArray& n : names)
            t.file("odd \xe9/" + n, 1);
        QCOMPARE(ListerRun(QFile::decodeName(home.root()), {QStringLiteral("--name"), QStringLiteral("odd"),
                                                            QStringLiteral("--"), QFile::decodeName(t.root())})
                     .code,
                 0);
        QFile files(QFile::decodeName(home.root()) + QStringLiteral("/Quillbox/Files List WithPath odd.txt"));
        QVERIFY(files.open(QIODevice::ReadOnly));
        const QByteArray text = files.readAll();
        for (const QByteArray& n : names)
            QVERIFY2(text.contains("\r\n" + t.root() + "/odd \xe9/" + n + "\r\n"), n.constData());
        QFile folders(QFile::decodeName(home.root()) + QStringLiteral("/Quillbox/Folders List - odd.txt"));
        QVERIFY(folders.open(QIODevice::ReadOnly));
        QVERIFY(folders.readAll().contains("\r\nodd \xe9 (0kB)\r\n"));
    }
};

QTEST_GUILESS_MAIN(TestHostileTrees)
#include "tst_hostiletrees.moc"
