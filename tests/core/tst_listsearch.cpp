// SPDX-License-Identifier: GPL-3.0-or-later

#include "scan/ScanResultBuilder.h"
#include "search/ListSearch.h"

#include <QTest>

namespace {

std::shared_ptr<const ScanResult> scanOf(const QList<QByteArray>& folders, const QList<QByteArray>& files)
{
    ScanResultBuilder b("/data");
    for (const QByteArray& f : folders)
        b.setParent(b.addFolder({f.constData(), size_t(f.size())}, 12), 0);
    for (const QByteArray& f : files)
        b.addFile(0, {f.constData(), size_t(f.size())});
    return b.finish();
}

QStringList lines(const SearchResult& r)
{
    QStringList out;
    for (qint64 i = 0; i < r.count(); ++i)
        out.append(r.line(i));
    return out;
}

} // namespace

class TestListSearch : public QObject
{
    Q_OBJECT

private slots:
    void matching_data()
    {
        QTest::addColumn<QByteArray>("item");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("found");
        const auto row = [](const char* name, const char* item, const QString& text, bool found) {
            QTest::newRow(name) << QByteArray(item) << text << found;
        };
        row("path", "C:\\My Photos", QStringLiteral("photo"), true);
        row("upper case item", "PHOTOGRAPHS", QStringLiteral("photo"), true);
        row("longer than item", "phot", QStringLiteral("photo"), false);
        row("one letter", "A", QStringLiteral("a"), true);
        row("lower-case item, a to z", "jazz band", QStringLiteral("AZZ BA"), true);
        row("no wildcards", "Abc", QStringLiteral("a*"), false);
        row("star as itself", "xA*y", QStringLiteral("a*"), true);
        row("accented item", "caf\xc3\xa9", QStringLiteral("CAFÉ"), true);
        row("accented text", "CAF\xc3\x89", QStringLiteral("café"), true);
        row("dotless i is I", "d\xc4\xb1nner", QStringLiteral("DINN"), true);
        row("not UTF-8", "bad\xff name", QStringLiteral("NAME"), true);
        row("empty text", "anything", QString(), false);
        // Upper case unit by unit: no character turns into two.
        row("SS does not find sharp s", "stra\u00dfe", QStringLiteral("STRASSE"), false);
        row("sharp s finds itself", "STRA\u00dfE", QStringLiteral("straße"), true);
        row("FI does not find the ligature", "\xef\xac\x81le", QStringLiteral("FILE"), false);
        row("the ligature finds itself", "\xef\xac\x81LE", QStringLiteral("ﬁle"), true);
    }

    void matching()
    {
        QFETCH(QByteArray, item);
        QFETCH(QString, text);
        QFETCH(bool, found);
        QCOMPARE(ListSearch::matches({item.constData(), size_t(item.size())}, text), found);
    }

    void searchesTheNameLists()
    {
        auto scan = scanOf({"Photos", "music", "PHOTOGRAPHS"}, {"a.jpg", "photo.png", "b.txt", "Photo2.PNG"});
        // Folders are searched in their list text, size included.
        SearchResult r = ListSearch::run(scan, SearchResult::Kind::Folders, QStringLiteral("photo"));
        QCOMPARE(lines(r), QStringList({QStringLiteral("# 00001. Photos (12kB)"),
                                        QStringLiteral("# 00003. PHOTOGRAPHS (12kB)")}));
        QCOMPARE(r.countCaption(), QStringLiteral(" Folders Found: 2 "));
        QCOMPARE(ListSearch::run(scan, SearchResult::Kind::Folders, QStringLiteral("kb)")).count(), 3);

        r = ListSearch::run(scan, SearchResult::Kind::Files, QStringLiteral(".png"));
        QCOMPARE(lines(r), QStringList({QStringLiteral("# 00002. photo.png"), QStringLiteral("# 00004. Photo2.PNG")}));
        QCOMPARE(r.serial(1), 4);
        QCOMPARE(r.countCaption(), QStringLiteral(" Files Found: 2 "));

        r = ListSearch::run(scan, SearchResult::Kind::Files, QStringLiteral("zzz"));
        QCOMPARE(r.count(), 0);
        QCOMPARE(r.countCaption(), QStringLiteral(" Files Found: 0 "));
        QCOMPARE(ListSearch::run(scan, SearchResult::Kind::Files, QString()).count(), 0);

        // With no folder, the one folder entry is the "NO FOLDER FOUND" line, and it can be found.
        auto none = scanOf({}, {"x"});
        QCOMPARE(lines(ListSearch::run(none, SearchResult::Kind::Folders, QStringLiteral("found"))),
                 QStringList({QStringLiteral("# 00001. NO FOLDER FOUND")}));
    }

    void resultsOutliveTheirScanAndSplitAcrossThreads()
    {
        QList<QByteArray> many;
        for (int i = 0; i < 200000; ++i)
            many.append("file-" + QByteArray::number(i) + (i % 3 ? ".txt" : ".JPG"));
        auto scan = scanOf({}, many);
        const SearchResult one = ListSearch::run(scan, SearchResult::Kind::Files, QStringLiteral(".jpg"), 1);
        const SearchResult four = ListSearch::run(scan, SearchResult::Kind::Files, QStringLiteral(".jpg"), 4);
        QCOMPARE(one.count(), 66667);
        QCOMPARE(four.rows, one.rows);
        QCOMPARE(four.line(66666), QStringLiteral("# 199999. file-199998.JPG"));
        scan.reset(); // a new scan replaces the window's: the results still read as found
        QCOMPARE(four.line(0), QStringLiteral("# 00001. file-0.JPG"));
    }
};

QTEST_GUILESS_MAIN(TestListSearch)
#include "tst_listsearch.moc"
