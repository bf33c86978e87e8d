// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueFixture.h"
#include "catalogue/NameMatcher.h"
#include "catalogue/SqliteCatalogue.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>
#include <sqlite3.h>
#include <thread>

using namespace CatalogueRecords;

// The search table writes its queries with designated initializers, every other field left at its default.
#ifdef __GNUC__
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#endif

namespace {

constexpr qint64 Day = 86400;

// /data with folders Photos/2010, Straße, an odd name, and files of every kind of name.
FixtureScan sampleTree()
{
    FixtureScan t;
    const auto photos = t.folder(0, "Photos", 4100, 10 * Day);
    const auto y2010 = t.folder(photos, "2010", 100, 11 * Day);
    const auto strasse = t.folder(0, "Stra\u00dfe", 30, 12 * Day);
    const auto odd = t.folder(0, "\xff\xfe odd", 7, 13 * Day);
    t.file(y2010, "a.jpg", 100, 20 * Day);
    t.file(photos, "readme", 4000, 21 * Day);
    t.file(0, "PHOTOGRAPHS.txt", 5000, 22 * Day);
    t.file(strasse, "ma\xc3\x9f.txt", 30, 23 * Day);
    t.file(odd, "x\xe9y.bin", 7, 24 * Day);
    t.file(0, "caf\xc3\xa9", 1, 25 * Day);
    t.file(0, "a*b.txt", 2, 26 * Day);
    return t;
}

// What a search finds; a search that fails fails the test.
std::vector<FindHit> hits(Catalogue& c, const FindQuery& q)
{
    std::vector<FindHit> out;
    QString error;
    const bool ok = c.find(
        q,
        [&](std::vector<FindHit>& batch) {
            std::move(batch.begin(), batch.end(), std::back_inserter(out));
            return true;
        },
        &error);
    QTest::qVerify(ok, "find", qPrintable(error), __FILE__, __LINE__);
    return out;
}

// The names a search finds, sorted.
QByteArrayList names(Catalogue& c, const FindQuery& q)
{
    QByteArrayList out;
    for (const FindHit& h : hits(c, q))
        out.append(h.name());
    std::sort(out.begin(), out.end());
    return out;
}

} // namespace

class TestCatalogue : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(m_dir.emplace().isValid()); // a folder of its own for each case's catalogue
        m_path = m_dir->filePath(QStringLiteral("catalogue.sqlite"));
    }

    void recordsAndReadsBackExactBytes()
    {
        QString error;
        auto c = SqliteCatalogue::open(m_path, &error);
        QVERIFY2(c, qPrintable(error));
        ScanInfo info = fixtureInfo("/data", 1700000000000);
        info.durationMs = 1234;
        info.listingName = QStringLiteral("backup");
        info.volume.capacity = 1000000;
        info.volume.freeBytes = 5000;
        info.shortFlavour = true; // a Short walk stopped at its limit
        info.complete = false;
        const auto id = c->record(info, sampleTree(), &error);
        QVERIFY2(id, qPrintable(error));

        const auto scans = c->scans();
        QVERIFY(scans && scans->size() == 1);
        const ScanInfo& s = scans->front();
        QCOMPARE(
            (QVariantList{s.id, s.startPath, s.scannedAtMs, s.durationMs, s.folderCount, s.fileCount, s.listingName,
                          s.volume.uuid, s.volume.capacity, s.volume.freeBytes, s.shortFlavour, s.complete}),
            (QVariantList{*id, QByteArray("/data"), 1700000000000LL, 1234, 4, 7, QStringLiteral("backup"),
                          QStringLiteral("1111-2222"), 1000000, 5000, true, false}));

        std::map<QByteArray, FindHit> byPath;
        for (FindHit& h : hits(*c, {}))
            byPath[h.path] = h;
        QCOMPARE(byPath.size(), size_t(11));
        const auto hit = [&](const QByteArray& path) {
            const FindHit& h = byPath.at(path);
            return QVariantList{h.name(), h.bytes, h.mtime, h.folder, h.scan->volume.label};
        };
        QCOMPARE(hit("/data/\xff\xfe odd/x\xe9y.bin"),
                 (QVariantList{QByteArray("x\xe9y.bin"), 7, 24 * Day, false, QStringLiteral("DATA")}));
        QCOMPARE(hit("/data/Photos/2010"),
                 (QVariantList{QByteArray("2010"), 100, 11 * Day, true, QStringLiteral("DATA")}));
    }

    // Every kind of search and filter on the sample tree; a search is for a substring of the name in any case.
    void search_data()
    {
        QTest::addColumn<FindQuery>("query");
        QTest::addColumn<QByteArrayList>("expected");
        const auto row = [](const char* tag, const FindQuery& q, QByteArrayList expected) {
            std::sort(expected.begin(), expected.end());
            QTest::newRow(tag) << q << expected;
        };
        const auto text = [](const char* t) { return QString::fromUtf8(t); };
        row("substring any case", {.text = text("photo")}, {"Photos", "PHOTOGRAPHS.txt"});
        row("two characters, no index", {.text = text("jP")}, {"a.jpg"});
        row("one character", {.text = text("\u00df")}, {"Stra\u00dfe", "ma\xc3\x9f.txt"});
        row("sharp s stays itself", {.text = text("SS")}, {});
        row("accent upper-cased", {.text = text("CAF\u00c9")}, {"caf\xc3\xa9"});
        row("odd byte matches itself", {.text = QString(QChar(0xDCE9))}, {"x\xe9y.bin"});
        row("ASCII text in an accented name", {.text = text("aF")}, {"caf\xc3\xa9"});
        row("ASCII text beside an odd byte", {.text = text("Y.B")}, {"x\xe9y.bin"});
        row("star is literal", {.text = text("a*b")}, {"a*b.txt"});
        row("no match", {.text = text("zzz")}, {});
        row("glob whole name", {.text = text("*.JPG")}, {});
        row("glob", {.text = text("*.JPG"), .glob = true}, {"a.jpg"});
        row("glob question mark", {.text = text("a.jp?"), .glob = true}, {"a.jpg"});
        row("glob star", {.text = text("a*b*"), .glob = true}, {"a*b.txt"});
        row("glob long literal", {.text = text("*graph*"), .glob = true}, {"PHOTOGRAPHS.txt"});
        row("path across folders", {.text = text("photos/20"), .matchPath = true}, {"2010", "a.jpg"});
        row("path glob", {.text = text("/data/*/readme"), .glob = true, .matchPath = true}, {"readme"});
        row("name does not see the folder", {.text = text("photos/20")}, {});
        using K = FindQuery::Kinds;
        row("folders", {.kinds = K::Folders}, {"2010", "Photos", "Stra\u00dfe", "\xff\xfe odd"});
        row("files", {.text = text("photo"), .kinds = K::Files}, {"PHOTOGRAPHS.txt"});
        row("min size", {.minSize = 4000}, {"Photos", "readme", "PHOTOGRAPHS.txt"});
        row("max size", {.kinds = K::Files, .maxSize = 2}, {"caf\xc3\xa9", "a*b.txt"});
        row("newer", {.newerThan = 24 * Day}, {"x\xe9y.bin", "caf\xc3\xa9", "a*b.txt"});
        row("older", {.olderThan = 11 * Day}, {"Photos"});
        row("volume label", {.text = text("readme"), .volume = text("data")}, {"readme"});
        row("volume uuid", {.text = text("readme"), .volume = text("1111-2222")}, {"readme"});
        row("other volume", {.text = text("readme"), .volume = text("other")}, {});
        row("limit", {.kinds = K::Folders, .limit = 2}, {"Photos", "2010"});
    }

    void search()
    {
        QFETCH(FindQuery, query);
        QFETCH(QByteArrayList, expected);
        auto c = SqliteCatalogue::open(m_path);
        QVERIFY(c->record(fixtureInfo("/data", 1000), sampleTree()));
        QCOMPARE(names(*c, query), expected);
    }

    // Dotless i and long s are the only letters beyond ASCII that upper-case into it: a name holding them is
    // found by I and S, whatever else the needle is made of. Names are passed over by their bytes where that is
    // safe; these cases hold the shortcuts to the same answers as decoding every name.
    void lettersThatBecomeAscii()
    {
        for (const char* needle : {"MIST", "mist", "ist", "T"}) {
            const NameMatcher m(QString::fromLatin1(needle), false);
            QVERIFY2(m.matches("m\xc4\xb1\xc5\xbft"), needle); // "mıſt"
        }
        // Other letters stay apart from the ASCII around them.
        QVERIFY(!NameMatcher(QStringLiteral("MT"), false).matches("m\xc3\xa9t"));
        QVERIFY(!NameMatcher(QStringLiteral("MIT"), false).matches("m\xc3\xadt"));
        // A letter beyond ASCII is found in either case, beside bytes that are not UTF-8, and not as a base
        // letter with a combining mark.
        const NameMatcher umlaut(QStringLiteral("\u00fcBER"), false);
        QVERIFY(umlaut.matches("\u00dcber"));
        QVERIFY(umlaut.matches("\xff\u00fcber.txt"));
        QVERIFY(!umlaut.matches("u\u0308ber"));
        QVERIFY(!umlaut.matches("\u00e4ber"));
    }

    void newestScanOfEachFolderUnlessAllScans()
    {
        auto c = SqliteCatalogue::open(m_path);
        FixtureScan old;
        old.file(0, "report-old.txt");
        FixtureScan now;
        now.file(0, "report-new.txt");
        FixtureScan elsewhere;
        elsewhere.file(0, "report-other.txt");
        QVERIFY(c->record(fixtureInfo("/data", 1000), old));
        QVERIFY(c->record(fixtureInfo("/data", 2000), now));
        // The same folder on another volume is not history of the first.
        QVERIFY(c->record(fixtureInfo("/data", 500, QStringLiteral("USB"), QStringLiteral("9999")), elsewhere));
        FindQuery q;
        q.text = QStringLiteral("report");
        QCOMPARE(names(*c, q), QByteArrayList({"report-new.txt", "report-other.txt"}));
        q.allScans = true;
        QCOMPARE(names(*c, q), QByteArrayList({"report-new.txt", "report-old.txt", "report-other.txt"}));
    }

    // A big scan's blocks are searched on two threads: the hits are still those of one pass over the entries,
    // in entry order, and a limit keeps the first of them. Past some thousands of hits the folders' paths are
    // laid out once instead of walked for each hit: the paths stay the same.
    void manyBlocksGiveHitsInEntryOrder()
    {
        FixtureScan t;
        QByteArrayList paths(301); // by entry number: the folders, then the files
        paths[0] = "/data";
        // Chains of folders 30 deep, each numbered before its parent.
        const auto parent = [](int i) { return std::uint32_t(i > 290 ? 0 : i + 10); };
        const auto name = [](int i) { return "dir" + QByteArray::number(i) + (i % 7 ? "" : "_Mp"); };
        for (int i = 1; i <= 300; ++i)
            t.folder(parent(i), name(i));
        for (int i = 300; i >= 1; --i)
            paths[i] = paths[parent(i)] + '/' + name(i);
        for (int i = 0; i < 30000; ++i) {
            const QByteArray file = "f" + QByteArray::number(i * 7919 % 10007) + (i % 3 ? ".txt" : ".mpg");
            t.file(std::uint32_t(i % 301), file);
            paths.append(paths[i % 301] + '/' + file);
        }
        auto c = SqliteCatalogue::open(m_path);
        QVERIFY(c->record(fixtureInfo("/data", 1000), t));
        using K = FindQuery::Kinds;
        for (const FindQuery& q :
             {FindQuery{}, FindQuery{.text = QStringLiteral("1")}, FindQuery{.text = QStringLiteral("mP")},
              FindQuery{.text = QStringLiteral(".TXT")}, FindQuery{.text = QStringLiteral("dir2")},
              FindQuery{.text = QStringLiteral("r1/"), .matchPath = true},
              FindQuery{.text = QStringLiteral("1"), .kinds = K::Files, .limit = 700}}) {
            QByteArrayList expected, found;
            for (qsizetype k = 1; k < paths.size(); ++k) {
                const QByteArray last = paths[k].mid(paths[k].lastIndexOf('/') + 1);
                if ((q.kinds != K::Files || k > 300) &&
                    (q.matchPath ? paths[k] : last).toUpper().contains(q.text.toLatin1().toUpper()))
                    expected.append(paths[k] + '|' + last);
            }
            for (const FindHit& h : hits(*c, q))
                found.append(h.path + '|' + h.name());
            QCOMPARE(found, q.limit < 0 ? expected : expected.mid(0, q.limit));
        }
    }

    void searchStopsWhenTheSinkSaysSo()
    {
        auto c = SqliteCatalogue::open(m_path);
        FixtureScan big;
        for (int i = 0; i < 2000; ++i)
            big.file(0, "file" + QByteArray::number(i));
        QVERIFY(c->record(fixtureInfo("/data", 1000), big));
        int batches = 0;
        QVERIFY(c->find({}, [&](std::vector<FindHit>&) { return ++batches < 2; }));
        QCOMPARE(batches, 2);
        std::atomic_bool cancel{true};
        FindQuery q;
        q.cancel = &cancel;
        QCOMPARE(hits(*c, q).size(), size_t(0));
    }

    void diffOfTwoScans()
    {
        auto c = SqliteCatalogue::open(m_path);
        FixtureScan before;
        auto docs = before.folder(0, "docs", 300, Day);
        before.file(docs, "same.txt", 100, Day);
        before.file(docs, "grows.txt", 100, Day);
        before.file(docs, "touched.txt", 100, Day);
        before.file(0, "gone.txt", 5, Day);
        FixtureScan after;
        docs = after.folder(0, "docs", 450, Day);
        after.file(docs, "same.txt", 100, Day);
        after.file(docs, "grows.txt", 150, Day);
        after.file(docs, "touched.txt", 100, 2 * Day);
        after.file(docs, "new.txt", 100, 2 * Day);
        ScanInfo a = fixtureInfo("/data", 1000);
        a.totalBytes = 305;
        ScanInfo b = fixtureInfo("/data", 2000);
        b.totalBytes = 450;
        const auto older = c->record(a, before);
        const auto newer = c->record(b, after);
        QVERIFY(older && newer);
        QCOMPARE(c->lastTwoScans("/data"), std::make_optional(std::make_pair(*older, *newer)));

        const auto d = c->diff(*older, *newer);
        QVERIFY(d);
        QCOMPARE((QVariantList{d->filesAdded, d->filesRemoved, d->filesChanged, d->foldersChanged, d->bytesDelta}),
                 (QVariantList{1, 1, 2, 1, 145}));
        QStringList seen;
        for (const DiffItem& i : d->items)
            seen.append(QStringLiteral("%1 %2 %3->%4")
                            .arg(int(i.change))
                            .arg(QString::fromUtf8(i.path))
                            .arg(i.oldBytes)
                            .arg(i.newBytes));
        QCOMPARE(seen,
                 QStringList({QStringLiteral("0 /data/docs/new.txt -1->100"), QStringLiteral("1 /data/gone.txt 5->-1"),
                              QStringLiteral("2 /data/docs/grows.txt 100->150"),
                              QStringLiteral("2 /data/docs/touched.txt 100->100"),
                              QStringLiteral("2 /data/docs 300->450")}));
        QVERIFY(!c->diff(*older, 999));
    }

    void removeDeletesOnlyWholeKnownScans()
    {
        auto c = SqliteCatalogue::open(m_path);
        const auto a = c->record(fixtureInfo("/a", 1000), sampleTree());
        const auto b = c->record(fixtureInfo("/b", 2000), sampleTree());
        QString error;
        QVERIFY(!c->remove({*a, 12345}, &error));
        QVERIFY(error.contains(QLatin1String("12345")));
        QCOMPARE(c->scans()->size(), size_t(2));
        QVERIFY(c->remove({*a}));
        QCOMPARE(c->scans()->size(), size_t(1));
        FindQuery q;
        q.text = QStringLiteral("readme");
        const auto left = hits(*c, q);
        QCOMPARE(left.size(), size_t(1));
        QCOMPARE(left.front().scan->id, *b);
    }

    void importsAWindowsListingSet()
    {
        // Written on Windows: C:\ paths, CR LF, Windows-1252 (0xE9 is é, 0x80 the euro sign).
        const QByteArray header = "Date: 05 March 2009\r\nSOURCE: C: HD DRIVE \r\n\r\nParent Folder: C:\\DATA\r\n";
        const auto write = [&](const char* name, const QByteArray& title, const QByteArrayList& lines) {
            QFile f(m_dir->filePath(QString::fromLatin1(name)));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(header + title + "\r\n\r\n" + lines.join("\r\n") + "\r\n\r\n\r\n");
        };
        write("Folders List WithPath old.txt",
              "LIST OF FOLDERS WITH THEIR PATHS (2):", {"C:\\DATA\\Caf\xe9\\Sub", "C:\\DATA\\Caf\xe9"});
        write("Folders List - old.txt", "LIST OF ALL FOLDERS & SUB FOLDERS (2):", {"Sub (3kB)", "Caf\xe9 (5kB)"});
        write("Files List WithPath old.txt",
              "LIST OF ALL FILES (2):", {"C:\\DATA\\Caf\xe9\\Sub\\price \x80.txt", "C:\\DATA\\top.doc"});
        write("Files List - old.txt", "LIST OF ALL FILES (2):", {"price \x80.txt", "top.doc"});

        auto c = SqliteCatalogue::open(m_path);
        QString error;
        const auto id = c->importListing({m_dir->filePath(QStringLiteral("Files List - old.txt"))}, {}, &error);
        QVERIFY2(id, qPrintable(error));
        const ScanInfo s = c->scans()->front();
        QCOMPARE((QVariantList{s.imported, s.separator, s.startPath, s.listingName, s.folderCount, s.fileCount,
                               QDateTime::fromMSecsSinceEpoch(s.scannedAtMs, Qt::UTC).date()}),
                 (QVariantList{true, '\\', QByteArray("C:\\DATA"), QStringLiteral("old"), 2, 2, QDate(2009, 3, 5)}));

        FindQuery q;
        q.text = QStringLiteral("\u20ac");
        const auto found = hits(*c, q);
        QCOMPARE(found.size(), size_t(1));
        QCOMPARE((QVariantList{found.front().path, found.front().bytes, found.front().mtime}),
                 (QVariantList{QByteArray("C:\\DATA\\Caf\xc3\xa9\\Sub\\price \xe2\x82\xac.txt"), NoSize, NoTime}));
        q.text = QStringLiteral("CAF\u00c9");
        q.kinds = FindQuery::Kinds::Folders;
        const auto folder = hits(*c, q);
        QCOMPARE(folder.size(), size_t(1));
        QCOMPARE(folder.front().bytes, 5 * 1024);

        // The encoding may be named; as UTF-8 these bytes are not text and stay as they are.
        c->remove({*id});
        QVERIFY(c->importListing({m_dir->filePath(QStringLiteral("Folders List WithPath old.txt"))},
                                 {QStringLiteral("UTF-8"), 0}));
        q.text = QString(QChar(0xDCE9));
        QCOMPARE(hits(*c, q).size(), size_t(1));
    }

    void opensAVersionOneCatalogue()
    {
        {
            auto v1 = SqliteCatalogue::open(m_path, nullptr, 1);
            QCOMPARE(v1->schemaVersion(), 1);
            QVERIFY(v1->record(fixtureInfo("/data", 1000), sampleTree()));
            FindQuery q;
            q.text = QStringLiteral("photo");
            QCOMPARE(names(*v1, q), QByteArrayList({"PHOTOGRAPHS.txt", "Photos"}));
        }
        auto c = SqliteCatalogue::open(m_path);
        QCOMPARE(c->schemaVersion(), SqliteCatalogue::SchemaVersion);
        FindQuery q;
        q.text = QStringLiteral("photo");
        // Answered through the index the migration built for the old scan: without it nothing would be found.
        QCOMPARE(names(*c, q), QByteArrayList({"PHOTOGRAPHS.txt", "Photos"}));
    }

    void killedWhileRecordingLeavesTheCatalogueAsItWas()
    {
        {
            auto c = SqliteCatalogue::open(m_path);
            QVERIFY(c->record(fixtureInfo("/kept", 1000), sampleTree()));
        }
        const QString marker = m_dir->filePath(QStringLiteral("recording"));
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--record-forever"), m_path, marker});
        QVERIFY(child.waitForStarted());
        for (int i = 0; i < 6000 && !QFile::exists(marker); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        QVERIFY(QFile::exists(marker));
        child.kill(); // SIGKILL: no handler, no rollback of its own
        QVERIFY(child.waitForFinished());

        auto c = SqliteCatalogue::open(m_path);
        QVERIFY(c);
        const auto scans = c->scans();
        QCOMPARE(scans->size(), size_t(1));
        QCOMPARE(scans->front().startPath, QByteArray("/kept"));
        QCOMPARE(names(*c, {}).size(), 11);
        sqlite3* db = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(m_path).constData(), &db), SQLITE_OK);
        sqlite3_stmt* st = nullptr;
        sqlite3_prepare_v2(
            db,
            "SELECT (SELECT count(*) FROM block), (SELECT group_concat(integrity_check) FROM pragma_integrity_check)",
            -1, &st, nullptr);
        QCOMPARE(sqlite3_step(st), SQLITE_ROW);
        QCOMPARE(sqlite3_column_int(st, 0), 1); // the kept scan's one block, nothing of the killed one
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(st, 1))), QByteArray("ok"));
        sqlite3_finalize(st);
        sqlite3_close(db);
    }

private:
    std::optional<QTemporaryDir> m_dir;
    QString m_path;
};

namespace {

// A recording that never ends: it signals once half a million entries are written, then waits to be killed.
class EndlessScan : public ScanSource
{
public:
    explicit EndlessScan(QString marker) : m_marker(std::move(marker)) {}
    qint64 folderCount() const override { return 1; }
    qint64 fileCount() const override { return 1000000; }
    Entry folder(qint64) const override { return {}; }
    Entry file(qint64 i) const override
    {
        if (i == 500000) {
            QFile f(m_marker);
            f.open(QIODevice::WriteOnly);
            f.close();
            for (;;)
                std::this_thread::sleep_for(std::chrono::seconds(1));
        }
        m_name = "file" + std::to_string(i);
        return {0, m_name, i, i};
    }

private:
    QString m_marker;
    mutable std::string m_name;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 4 && QByteArray(argv[1]) == "--record-forever") {
        auto c = SqliteCatalogue::open(QString::fromLocal8Bit(argv[2]));
        EndlessScan scan(QString::fromLocal8Bit(argv[3]));
        return c && c->record(fixtureInfo("/killed", 5000), scan) ? 0 : 1;
    }
    TestCatalogue t;
    return QTest::qExec(&t, argc, argv);
}

#include "tst_catalogue.moc"
