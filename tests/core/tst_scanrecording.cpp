// SPDX-License-Identifier: GPL-3.0-or-later

#include "TreeBuilder.h"
#include "catalogue/ScanRecorder.h"
#include "catalogue/SqliteCatalogue.h"
#include "scan/FolderWalk.h"

#include <QTest>
#include <map>
#include <set>
#include <sys/stat.h>

// A real walk carries each file's and folder's size in bytes and modification time into the catalogue.
class TestScanRecording : public QObject
{
    Q_OBJECT

private slots:
    void walkCarriesSizesAndTimesIntoTheCatalogue()
    {
        // Files' sizes and times through `add` are also the catalogue command's to pin; the folders' sums and
        // times, and what the scan's record says of itself, only this case's.
        TreeBuilder t;
        t.file("docs/deep/a.txt", 3000);
        t.file("docs/b.bin", 70000);
        t.file("top.txt", 5);
        t.file("music/\xe9t\xe9.mp3", 12);
        QVERIFY(TreeBuilder::setTime(t.path("docs/deep/a.txt"), 1000000000));
        QVERIFY(TreeBuilder::setTime(t.path("docs/deep"), 1400000000));
        QVERIFY(TreeBuilder::setTime(t.path("docs"), 1500000000));

        const auto r = FolderWalk::run(t.root());

        QTemporaryDir dir;
        auto c = SqliteCatalogue::open(dir.filePath(QStringLiteral("catalogue.sqlite")));
        QString error;
        const auto id = ScanRecorder::record(*c, {r.get(), 1700000000000, 42, QStringLiteral("set")}, &error);
        QVERIFY2(id, qPrintable(error));
        const ScanInfo s = c->scans()->front();
        QCOMPARE((QVariantList{s.startPath, s.folderCount, s.fileCount, s.totalBytes, s.durationMs, s.complete}),
                 (QVariantList{t.root(), 3, 4, 73017, 42, true}));
        QVERIFY(!s.volume.mountPoint.isEmpty() && !s.volume.fsType.isEmpty() && s.volume.capacity > 0);

        std::map<QByteArray, std::pair<qint64, qint64>> found;
        c->find({}, [&](std::vector<FindHit>& batch) {
            for (const FindHit& h : batch)
                found[h.path] = {h.bytes, h.mtime};
            return true;
        });
        const auto expect = [&](const char* rel, qint64 bytes, qint64 mtime) {
            QCOMPARE(found[t.path(rel)], std::make_pair(bytes, mtime));
        };
        expect("docs/deep/a.txt", 3000, 1000000000);
        expect("docs/deep", 3000, 1400000000);
        expect("docs", 73000, 1500000000);
        QCOMPARE(found.size(), size_t(7));
    }

    // A walk's result is indexed on a thread of its own while its entries are written: over many blocks, the
    // index finds what a search that reads every name finds (a path search goes without the index).
    void indexBuiltAsideFindsWhatAFullReadFinds()
    {
        TreeBuilder t;
        for (int i = 0; i < 700; ++i)
            t.file(QByteArray("d") + QByteArray::number(i % 9) + "/n" + QByteArray::number(i) +
                   (i % 7 ? "-plain.txt" : "-NeedLe.\xc3\xa9t\xc3\xa9"));
        const auto r = FolderWalk::run(t.root());
        QTemporaryDir dir;
        auto c = SqliteCatalogue::open(dir.filePath(QStringLiteral("catalogue.sqlite")));
        QVERIFY(ScanRecorder::record(*c, {r.get(), 0, 0, {}}));
        const auto paths = [&](const QString& text, bool matchPath) {
            FindQuery q;
            q.text = text;
            q.matchPath = matchPath;
            std::set<QByteArray> out;
            c->find(q, [&](std::vector<FindHit>& batch) {
                for (const FindHit& h : batch)
                    out.insert(h.path);
                return true;
            });
            return out;
        };
        for (const QString& text : {QStringLiteral("needle"), QStringLiteral("9-pl"), QStringLiteral("\u00c9T\u00c9"),
                                    QStringLiteral("n69-")}) {
            const std::set<QByteArray> indexed = paths(text, false);
            QVERIFY2(!indexed.empty(), qPrintable(text));
            QCOMPARE(indexed, paths(text, true));
        }
        QCOMPARE(paths(QStringLiteral("needle"), false).size(), size_t(100));
    }
};

QTEST_GUILESS_MAIN(TestScanRecording)
#include "tst_scanrecording.moc"
