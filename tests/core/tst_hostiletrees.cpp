// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListerRun.h"
#include "TreeBuilder.h"
#include "scan/FolderWalk.h"

#include <QSet>
#include <QTest>
#include <atomic>
#include <linux/magic.h>
#include <sys/socket.h>
#include <sys/statfs.h>
#include <sys/un.h>
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
