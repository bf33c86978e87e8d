// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListerRun.h"
#include "ScanLines.h"
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
#include <thread>

using L = ScanResult::List;

namespace {

// The walk of `start` with `threads` threads in a child process whose descriptors are limited to `limit`:
// "folders files unreadable" and, on a line of its own, the start folder's absolute path as named there.
QByteArray walkUnderLimit(rlim_t limit, int threads, const QByteArray& start)
{
    return TreeBuilder::inChild([&] {
        const struct rlimit low = {limit, limit};
        if (::setrlimit(RLIMIT_NOFILE, &low) != 0)
            return QByteArray("no limit");
        WalkOptions o;
        o.threads = threads;
        const auto r = FolderWalk::run(start, o);
        return QByteArray::number(r->folderCount()) + ' ' + QByteArray::number(r->fileCount()) + ' ' +
               QByteArray::number(r->unreadableFolders().size()) + '\n' + FolderReader::absoluteFolder(start);
    });
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
        const QByteArrayList names = lines(*r, L::FileNames);
        QCOMPARE(names.mid(0, 6) + names.mid(200002),
                 QByteArrayList({".keep", "a-pipe", "b-socket", "file 0", "file 1", "file 10", "file 99999"}));

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

    void aGeneratedOddTreeThroughTheLister()
    {
        // Names that are not UTF-8, hold line breaks, start with dashes or fill 255 bytes: the walk finds every one
        // and the lister writes them byte for byte.
        TreeBuilder t, home;
        const QString root = QFile::decodeName(t.hostileTree(300, 3000, 7));
        const auto r = FolderWalk::run(QFile::encodeName(root));
        QCOMPARE(r->folderCount(), 300);
        QCOMPARE(r->fileCount(), 3000);
        for (qint64 i = 0; i < r->fileCount(); ++i) {
            struct stat st;
            const QByteArray p = r->entry(L::FilePaths, i);
            QVERIFY2(::lstat(p.constData(), &st) == 0 && !S_ISDIR(st.st_mode), p.constData());
            QCOMPARE(r->entry(L::FileNames, i), p.mid(p.lastIndexOf('/') + 1));
        }
        QCOMPARE(
            ListerRun(QFile::decodeName(home.root()), {QStringLiteral("--name"), QStringLiteral("gen"), root}).code, 0);
        for (const auto& [file, list, count] : {std::tuple{"Files List WithPath gen.txt", L::FilePaths, "(3000)"},
                                                std::tuple{"Folders List - gen.txt", L::FolderNames, "(300)"}}) {
            QFile listing(QFile::decodeName(home.root()) + QStringLiteral("/Quillbox/") + QLatin1String(file));
            QVERIFY(listing.open(QIODevice::ReadOnly));
            QVERIFY2(listing.readAll().contains(count + (":\r\n\r\n" + lines(*r, list).join("\r\n")) + "\r\n\r\n"),
                     file);
        }
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

        QCOMPARE(walkUnderLimit(64, 16, t.root()),
                 QByteArray::number(wide + combFolders) + ' ' + QByteArray::number(400 + 60) + " 0\n" + t.root());
    }

    void aStartFolderPastPathMaxUnderALowDescriptorLimit()
    {
        // A start folder whose path is longer than the system takes, named through a link on the way, is opened a
        // name at a time; under a limit of 32 its folders are opened again through that path, and the link to
        // ".." inside it is still not followed.
        TreeBuilder t;
        const QByteArrayList names = TreeBuilder::longNames(36);
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

        QCOMPARE(walkUnderLimit(32, 4, start), "100 101 0\n" + t.root() + '/' + names.join('/'));
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
        // In a mount namespace of its own, so no mount outlives the test whatever happens.
        const QByteArray counts = TreeBuilder::inChild([&] {
            if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
                return QByteArray();
            for (const QByteArray& at : {QByteArray("near/bound"), deep + "/bound"})
                if (::mount(t.path("foreign").constData(), t.path(at).constData(), nullptr, MS_BIND, nullptr) != 0)
                    return QByteArray();
            const auto r = FolderWalk::run(t.root());
            return QByteArray::number(r->folderCount()) + ' ' + QByteArray::number(r->fileCount());
        });
        if (counts.isEmpty())
            QSKIP("no mount namespace or bind mount here");
        // The deep chain and its bound folder, foreign, near and its own; foreign's own file, once.
        QCOMPARE(counts, QByteArray::number(30 + 1 + 1 + 2) + " 1");
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
};

QTEST_GUILESS_MAIN(TestHostileTrees)
#include "tst_hostiletrees.moc"
