// SPDX-License-Identifier: GPL-3.0-or-later

#include "ScanLines.h"
#include "TreeBuilder.h"
#include "scan/FolderReader.h"
#include "scan/FolderWalk.h"

#include <QTest>
#include <map>
#include <random>

using L = ScanResult::List;

namespace {

QByteArrayList strip(const QByteArrayList& paths, const QByteArray& root)
{
    QByteArrayList out;
    for (const QByteArray& p : paths)
        out.append(p.startsWith(root + '/') ? p.mid(root.size() + 1) : p);
    return out;
}

} // namespace

class TestFolderWalk : public QObject
{
    Q_OBJECT

private slots:
    void ordersOfTheExampleTree()
    {
        // R holds A (which holds A1) and B, each with files: A's files, A1's, R's own, then B's; folders in
        // post-order; the start folder itself is never listed.
        TreeBuilder t;
        t.file("A/a2.txt", 1536);
        t.file("A/a1.txt", 2560);
        t.file("A/A1/deep.txt", 511);
        t.file("B/b.txt");
        t.file("r.txt", 5632);
        const auto r = FolderWalk::run(t.root());
        QCOMPARE(strip(lines(*r, L::FolderPaths), t.root()), QByteArrayList({"A/A1", "A", "B"}));
        QCOMPARE(lines(*r, L::FolderNames), QByteArrayList({"A1 (0kB)", "A (4kB)", "B (0kB)"}));
        QCOMPARE(strip(lines(*r, L::FilePaths), t.root()),
                 QByteArrayList({"A/a1.txt", "A/a2.txt", "A/A1/deep.txt", "r.txt", "B/b.txt"}));
        QCOMPARE(lines(*r, L::FileNames), QByteArrayList({"a1.txt", "a2.txt", "deep.txt", "r.txt", "b.txt"}));
        QCOMPARE(r->folderCount(), 3);
        QVERIFY(!r->limitReached());
        QCOMPARE(r->startPath(), t.root());
    }

    void foldersWithoutFiles()
    {
        // Folders without files are still listed and counted; the start folder's files come at the first leaf.
        TreeBuilder hollow;
        hollow.dir("x/y");
        hollow.dir("z");
        hollow.file("top.txt");
        const auto r = FolderWalk::run(hollow.root());
        QCOMPARE(strip(lines(*r, L::FolderPaths), hollow.root()), QByteArrayList({"x/y", "x", "z"}));
        QCOMPARE(strip(lines(*r, L::FilePaths), hollow.root()), QByteArrayList({"top.txt"}));
    }

    void nameOrder_data()
    {
        QTest::addColumn<QByteArray>("first");
        QTest::addColumn<QByteArray>("second");
        QTest::newRow("by upper case") << QByteArray("apple") << QByteArray("Banana");
        QTest::newRow("same upper case: bytes") << QByteArray("B") << QByteArray("b");
        QTest::newRow("'.' before '1'") << QByteArray("a.txt") << QByteArray("a1.txt");
        QTest::newRow("prefix first") << QByteArray("a") << QByteArray("a_");
        QTest::newRow("z as Z, before '_'") << QByteArray("z") << QByteArray("_");
        QTest::newRow("e-acute after ASCII") << QByteArray("z") << QByteArray("\xc3\xa9");
        QTest::newRow("accented prefix first") << QByteArray("\xc3\xa9t\xc3\xa9") << QByteArray("\xc3\x89t\xc3\xa9s");
        QTest::newRow("accented, same upper case: bytes") << QByteArray("\xc3\x89") << QByteArray("\xc3\xa9");
        QTest::newRow("not UTF-8") << QByteArray("ok") << QByteArray("ok\xff");
        // One unit to one unit: ß and ﬁ have no single upper-case unit, so they stay and sort after ASCII.
        QTest::newRow("sharp s is not SS") << QByteArray("sz") << QByteArray("\xc3\x9f");
        QTest::newRow("fi ligature is not FI") << QByteArray("fz") << QByteArray("\xef\xac\x81");
    }

    void nameOrder()
    {
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        const std::string_view a(first.constData(), size_t(first.size())), b(second.constData(), size_t(second.size()));
        QVERIFY(FolderWalk::lessByName(a, b));
        QVERIFY(!FolderWalk::lessByName(b, a));

        TreeBuilder t;
        t.file("d/" + second);
        t.file("d/" + first);
        const auto r = FolderWalk::run(t.root());
        QCOMPARE(lines(*r, L::FileNames), QByteArrayList({first, second}));
    }

    void linksAreFilesAndNeverFollowed()
    {
        TreeBuilder t;
        t.file("real/f.txt", 4096);
        QCOMPARE(::symlink("..", t.path("real/up").constData()), 0); // a loop if followed
        QCOMPARE(::symlink("real", t.path("alias").constData()), 0);
        QCOMPARE(::symlink("/nonexistent/target", t.path("dangling").constData()), 0);
        QCOMPARE(::mkfifo(t.path("real/pipe").constData(), 0644), 0);
        const auto r = FolderWalk::run(t.root());
        QCOMPARE(strip(lines(*r, L::FolderPaths), t.root()), QByteArrayList({"real"}));
        QCOMPARE(strip(lines(*r, L::FilePaths), t.root()),
                 QByteArrayList({"real/f.txt", "real/pipe", "real/up", "alias", "dangling"}));
        QCOMPARE(lines(*r, L::FolderNames), QByteArrayList({"real (4kB)"})); // 4096 + 0 + 2 bytes
        // A start folder reached through a link is walked; the link inside it is still not followed.
        const auto viaLink = FolderWalk::run(t.path("alias"));
        QCOMPARE(strip(lines(*viaLink, L::FilePaths), t.path("alias")), QByteArrayList({"f.txt", "pipe", "up"}));
    }

    void startFolderNamedAsRealpathNamesIt()
    {
        // Named one name at a time, a start folder still gets realpath's name: links resolved, "." and ".."
        // taken as the system takes them, after a link too. What realpath refuses, or finds no folder, is refused.
        TreeBuilder t;
        t.file("a/b/c/f.txt");
        QCOMPARE(::symlink("..", t.path("a/up").constData()), 0);
        QCOMPARE(::symlink(t.path("a/b").constData(), t.path("abs").constData()), 0);
        QCOMPARE(::symlink("hop2", t.path("hop1").constData()), 0);
        QCOMPARE(::symlink("a/b/c", t.path("hop2").constData()), 0);
        QCOMPARE(::symlink("loop", t.path("loop").constData()), 0);
        const QString back = QDir::currentPath();
        QVERIFY(QDir::setCurrent(QFile::decodeName(t.path("a/b"))));
        const QByteArrayList paths = {
            "c/../c/./",   "../up/a/b/c", t.root() + "/abs/c", t.root() + "//hop1/..", ".",         "..", "/", "//",
            "../../../..", "c/f.txt",     "missing",           t.root() + "/loop/x",   "c/f.txt/.."};
        for (const QByteArray& p : paths) {
            char* real = ::realpath(p.constData(), nullptr);
            struct stat st;
            const QByteArray expected = real && ::stat(real, &st) == 0 && S_ISDIR(st.st_mode) ? real : "";
            std::free(real);
            QCOMPARE(FolderReader::absoluteFolder(p), expected);
        }
        QVERIFY(QDir::setCurrent(back));
    }

    void shortLimit()
    {
        // Exactly 32,767 files are listed whole; one more stops the walk. Where it stops, and what it lists then,
        // is the open chain's case below and the hostile trees' busy folder; the Long flavour lists all there.
        TreeBuilder t;
        for (int i = 0; i < 32767; ++i)
            t.file("d/f" + QByteArray::number(i));
        WalkOptions shortOpts;
        shortOpts.flavour = ScanResult::Flavour::Short;
        auto r = FolderWalk::run(t.root(), shortOpts);
        QCOMPARE(r->fileCount(), 32767);
        QVERIFY(!r->limitReached());
        QCOMPARE(r->folderCount(), 1);
        t.file("e/one-more");
        QVERIFY(FolderWalk::run(t.root(), shortOpts)->limitReached());
    }

    void shortLimitKeepsTheOpenChain()
    {
        // The limit strikes deep inside a/b/c: the folders that were open (c, b, a) are still listed, each
        // with the size of everything below it, files never reached included.
        TreeBuilder t;
        for (int i = 0; i < 32760; ++i)
            t.file("a/f" + QByteArray::number(i));
        t.file("a/b/g1", 2048);
        for (int i = 0; i < 10; ++i)
            t.file("a/b/c/h" + QByteArray::number(i), 1024);
        t.file("a/b/c/z/late", 4096);
        t.file("z/never");
        WalkOptions o;
        o.flavour = ScanResult::Flavour::Short;
        const auto r = FolderWalk::run(t.root(), o);
        QVERIFY(r->limitReached());
        QCOMPARE(strip(lines(*r, L::FolderPaths), t.root()), QByteArrayList({"a/b", "a"}));
        QCOMPARE(lines(*r, L::FolderNames), QByteArrayList({"b (16kB)", "a (16kB)"}));
        QCOMPARE(r->entry(L::FilePaths, 32766), t.path("a/b/c/h5"));
    }

    void randomTreesWhateverTheThreads()
    {
        // Every folder and file of a random tree is listed once, each folder with the size of all below it, and
        // however many threads read the folders, the lists come out entry for entry as one thread gives them.
        std::mt19937 rng(20261121);
        for (int round = 0; round < 6; ++round) {
            TreeBuilder t;
            QByteArrayList dirs{""};
            std::map<QByteArray, qint64> files;
            static const char* stems[] = {"a", "B", "b", "Photos", "photos2", "x.y", "Z", "\xc3\xa9t\xc3\xa9"};
            for (int i = 0, n = 5 + int(rng() % 60); i < n; ++i) {
                const QByteArray parent = dirs[int(rng() % dirs.size())];
                const QByteArray rel =
                    (parent.isEmpty() ? "" : parent + '/') + stems[rng() % 8] + QByteArray::number(i % 7);
                if (!dirs.contains(rel)) {
                    t.dir(rel);
                    dirs.append(rel);
                }
            }
            for (int i = 0, n = int(rng() % 200); i < n; ++i) {
                const QByteArray parent = dirs[int(rng() % dirs.size())];
                const QByteArray rel = (parent.isEmpty() ? "" : parent + '/') + "f" +
                                       QByteArray::number(int(rng() % 50)) + (rng() % 2 ? ".TXT" : ".txt");
                if (!dirs.contains(rel))
                    t.file(rel, files[rel] = 1024 * qint64(rng() % 5)); // whole kB: no rounding
            }
            std::map<QByteArray, QByteArray> names; // each folder's line in the names list
            for (const QByteArray& d : dirs.mid(1)) {
                quint64 bytes = 0;
                for (const auto& [rel, size] : files)
                    bytes += rel.startsWith(d + '/') ? quint64(size) : 0;
                names[t.path(d)] = d.mid(d.lastIndexOf('/') + 1) + " (" + QByteArray::number(bytes / 1024) + "kB)";
            }
            for (const auto flavour : {ScanResult::Flavour::Long, ScanResult::Flavour::Short}) {
                WalkOptions o;
                o.flavour = flavour;
                o.threads = 1;
                const auto one = FolderWalk::run(t.root(), o);
                QCOMPARE(one->fileCount(), qint64(files.size()));
                QCOMPARE(one->folderCount(), dirs.size() - 1);
                for (qint64 i = 0; i < one->folderCount(); ++i)
                    QCOMPARE(one->entry(L::FolderNames, i), names[one->entry(L::FolderPaths, i)]);
                o.threads = 2 + round % 3;
                const auto more = FolderWalk::run(t.root(), o);
                for (const L l : {L::FolderPaths, L::FolderNames, L::FilePaths, L::FileNames})
                    QCOMPARE(lines(*more, l), lines(*one, l));
            }
        }
    }

    void deepChain()
    {
        // 10,000 folders deep: paths far beyond PATH_MAX, no recursion anywhere.
        TreeBuilder t;
        const int depth = 10000;
        const int bottom = t.chain(QByteArrayList(depth, "d"));
        QVERIFY(bottom >= 0);
        TreeBuilder::fileAt(bottom, "bottom.txt", 2048);
        ::close(bottom);
        const auto r = FolderWalk::run(t.root());
        QCOMPARE(r->folderCount(), depth);
        QCOMPARE(r->fileCount(), 1);
        QCOMPARE(r->entry(L::FolderNames, 0), QByteArray("d (2kB)"));
        QCOMPARE(r->entry(L::FolderNames, depth - 1), QByteArray("d (2kB)"));
        QCOMPARE(r->entry(L::FilePaths, 0).size(), t.root().size() + depth * 2 + qsizetype(strlen("/bottom.txt")));
        QCOMPARE(r->entry(L::FileNames, 0), QByteArray("bottom.txt"));
    }

    void namesOfPathsTooLongToTakeApart_data()
    {
        QTest::addColumn<ScanResult::Flavour>("flavour");
        QTest::addColumn<QByteArray>("firstFolderName");
        // The deepest folders come first in post-order and their paths are too long: the Short walk shows the
        // name carried in from the previous scan; the Long window's size pass runs after its walk has taken
        // every folder apart once, so it shows the name of the last folder of that walk.
        QTest::newRow("Short") << ScanResult::Flavour::Short << QByteArray("from-before");
        QTest::newRow("Long") << ScanResult::Flavour::Long << QByteArray(200, 's');
    }

    void namesOfPathsTooLongToTakeApart()
    {
        // A path over 32,767 characters cannot be taken apart: its name entry repeats the name shown before.
        QFETCH(ScanResult::Flavour, flavour);
        QFETCH(QByteArray, firstFolderName);
        TreeBuilder t;
        const QByteArray seg(200, 's');
        t.file("first.txt");
        const int bottom = t.chain(QByteArrayList(170, seg)); // 170 * 201 bytes: past 32,767 from about level 163 on
        QVERIFY(bottom >= 0);
        TreeBuilder::fileAt(bottom, "leaf.txt");
        ::close(bottom);
        WalkOptions o;
        o.flavour = flavour;
        o.carry.lastName = "from-before";
        const auto r = FolderWalk::run(t.root(), o);
        QCOMPARE(r->fileCount(), 2);
        QCOMPARE(r->entry(L::FolderNames, 0), firstFolderName + " (0kB)");
        QCOMPARE(r->entry(L::FolderNames, 169), seg + " (0kB)");
        // leaf.txt comes first (its folder's files are listed before the start folder's); its path is too long,
        // so it shows the name shown last before it, the outermost folder's.
        QVERIFY(r->entry(L::FilePaths, 0).endsWith("/leaf.txt"));
        QCOMPARE(r->entry(L::FileNames, 0), seg);
        QCOMPARE(r->entry(L::FileNames, 1), QByteArray("first.txt"));
        QCOMPARE(r->carryOut().lastName, QByteArray("first.txt"));
    }

    void unreadableFolder()
    {
        // Listed by its parent, contributing nothing, and reported; the walk goes on. Needs a user that
        // permissions bind.
        TreeBuilder t;
        t.file("a/locked/secret.txt", 4096);
        t.file("a/open.txt", 1024);
        t.file("b/b.txt");
        ::chmod(t.root().constData(), 0755);
        ::chmod(t.path("a/locked").constData(), 0);
        const QByteArray got = TreeBuilder::inChild([&] {
            if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
                return QByteArray("no other user");
            const auto r = FolderWalk::run(t.root());
            QByteArray text;
            for (const L l : {L::FolderPaths, L::FolderNames, L::FilePaths})
                text += lines(*r, l).join('|') + '\n';
            for (const auto& u : r->unreadableFolders())
                text += u.path + ' ' + QByteArray::number(u.error) + '|';
            return text;
        });
        ::chmod(t.path("a/locked").constData(), 0755);
        if (got == "no other user")
            QSKIP("cannot drop privileges here");
        const QByteArray r = t.root();
        QCOMPARE(got, r + "/a/locked|" + r + "/a|" + r + "/b\nlocked (0kB)|a (1kB)|b (0kB)\n" + r + "/a/open.txt|" + r +
                          "/b/b.txt\n" + r + "/a/locked " + QByteArray::number(EACCES) + '|');
    }

    void cancelAndProgress()
    {
        TreeBuilder t;
        for (int i = 0; i < 50; ++i)
            t.file("d" + QByteArray::number(i % 5) + "/f" + QByteArray::number(i));
        WalkProgress progress;
        WalkOptions o;
        o.progress = &progress;
        QVERIFY(FolderWalk::run(t.root(), o));
        QCOMPARE(progress.folders.load(), 5);
        QCOMPARE(progress.files.load(), 50);
        std::atomic_bool cancel{true};
        o.cancel = &cancel;
        QVERIFY(!FolderWalk::run(t.root(), o));
    }

    void compactEntries()
    {
        TreeBuilder t;
        for (int i = 0; i < 2000; ++i)
            t.file("d" + QByteArray::number(i % 40) + "/file-" + QByteArray::number(i));
        const auto r = FolderWalk::run(t.root());
        const qint64 entries = r->fileCount() + r->folderCount();
        const double perEntry = double(r->indexBytes()) / double(entries);
        QVERIFY2(perEntry <= 48, QByteArray::number(perEntry).constData());
    }
};

QTEST_GUILESS_MAIN(TestFolderWalk)
#include "tst_folderwalk.moc"
