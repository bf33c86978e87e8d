// SPDX-License-Identifier: GPL-3.0-or-later

#include "catalogue/CatalogueResultModel.h"
#include "catalogue/CatalogueResults.h"
#include "catalogue/ResultSorter.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

using namespace CatalogueRecords;

namespace {

std::shared_ptr<const ScanInfo> scanOn(const QString& label, qint64 atMs, char separator = '/')
{
    auto scan = std::make_shared<ScanInfo>();
    scan->id = atMs;
    scan->scannedAtMs = atMs;
    scan->volume.label = label;
    scan->separator = separator;
    return scan;
}

FindHit hitAt(const std::shared_ptr<const ScanInfo>& scan, const QByteArray& path, qint64 bytes = 0, qint64 mtime = 0)
{
    FindHit hit;
    hit.scan = scan;
    hit.path = path;
    const qsizetype slash = std::max(path.lastIndexOf(scan->separator), qsizetype(-1));
    hit.nameOffset = int(slash + 1);
    hit.bytes = bytes;
    hit.mtime = mtime;
    return hit;
}

QStringList names(const CatalogueResultModel& model)
{
    QStringList out;
    for (int r = 0; r < model.rowCount(); ++r)
        out.append(model.index(r, CatalogueResultModel::Name).data().toString());
    return out;
}

} // namespace

class TestCatalogueResults : public QObject
{
    Q_OBJECT
private slots:
    // Every path comes back byte for byte, whether it went through a small batch or was moved into the store, and
    // a folder path held once serves every hit in it, in any batch and from any scan, squeezed or not.
    void keepsPaths_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<char>("separator");
        QTest::addColumn<QByteArray>("folder");
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("nested") << QByteArray("/data/docs/report.txt") << '/' << QByteArray("/data/docs")
                                << QByteArray("report.txt");
        QTest::newRow("in the root") << QByteArray("/top.txt") << '/' << QByteArray("/") << QByteArray("top.txt");
        QTest::newRow("not UTF-8") << QByteArray("/data/caf\xe9/\xff\xfe.bin") << '/' << QByteArray("/data/caf\xe9")
                                   << QByteArray("\xff\xfe.bin");
        QTest::newRow("Windows drive") << QByteArray("C:\\top.doc") << '\\' << QByteArray("C:\\")
                                       << QByteArray("top.doc");
        QTest::newRow("Windows folder") << QByteArray("C:\\DATA\\Sub\\a.txt") << '\\' << QByteArray("C:\\DATA\\Sub")
                                        << QByteArray("a.txt");
    }
    void keepsPaths()
    {
        QFETCH(QByteArray, path);
        QFETCH(char, separator);
        QFETCH(QByteArray, folder);
        QFETCH(QByteArray, name);
        const auto scan = scanOn(QStringLiteral("DATA"), 1000, separator);
        const auto other = scanOn(QStringLiteral("ZIP"), 2000, separator);
        CatalogueResults store;
        CatalogueResults first;
        first.add(hitAt(scan, "/elsewhere/x"));
        first.add(hitAt(scan, path, 42, 7));
        store.append(std::move(first));
        store.squeeze();
        CatalogueResults batch;
        batch.add(hitAt(scan, path + "2"));
        batch.add(hitAt(other, path));
        batch.add(hitAt(scan, "/elsewhere/y"));
        store.append(std::move(batch));
        const auto bytes = [](std::string_view v) { return QByteArray(v.data(), qsizetype(v.size())); };
        QCOMPARE(store.size(), std::size_t(5));
        QCOMPARE((QVariantList{store.path(0), store.path(1), store.path(2), store.path(3), store.path(4),
                               bytes(store.folder(1)), bytes(store.name(1)), store.bytes(1), store.mtime(1),
                               bytes(store.folder(3)), store.scan(2).volume.label, store.scan(3).volume.label,
                               store.sameFolder(1, 3), store.sameFolder(0, 4), store.sameFolder(0, 1)}),
                 (QVariantList{QByteArray("/elsewhere/x"), path, path + "2", path, QByteArray("/elsewhere/y"), folder,
                               name, 42, 7, folder, u"DATA"_s, u"ZIP"_s, true, true, false}));
    }

    void sortsByEachColumn_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("descending");
        QTest::addColumn<QStringList>("expected");
        // b.TXT 300 t=30 on ZIP scanned 2000; a.txt 100 t=10 on DATA 1000; C.txt 200 t=20 on DATA 1000
        QTest::newRow("name, case ignored")
            << int(ResultSorter::Key::Name) << false << QStringList{u"a.txt"_s, u"b.TXT"_s, u"C.txt"_s};
        QTest::newRow("name, descending")
            << int(ResultSorter::Key::Name) << true << QStringList{u"C.txt"_s, u"b.TXT"_s, u"a.txt"_s};
        QTest::newRow("size") << int(ResultSorter::Key::Size) << false
                              << QStringList{u"a.txt"_s, u"C.txt"_s, u"b.TXT"_s};
        QTest::newRow("modified, descending")
            << int(ResultSorter::Key::Modified) << true << QStringList{u"b.TXT"_s, u"C.txt"_s, u"a.txt"_s};
        QTest::newRow("volume, found order kept")
            << int(ResultSorter::Key::Volume) << false << QStringList{u"a.txt"_s, u"C.txt"_s, u"b.TXT"_s};
        QTest::newRow("scanned, descending")
            << int(ResultSorter::Key::Scanned) << true << QStringList{u"b.TXT"_s, u"a.txt"_s, u"C.txt"_s};
        QTest::newRow("folder") << int(ResultSorter::Key::Folder) << false
                                << QStringList{u"C.txt"_s, u"b.TXT"_s, u"a.txt"_s};
    }
    void sortsByEachColumn()
    {
        QFETCH(int, key);
        QFETCH(bool, descending);
        QFETCH(QStringList, expected);
        const auto zip = scanOn(QStringLiteral("ZIP"), 2000);
        const auto data = scanOn(QStringLiteral("DATA"), 1000);
        CatalogueResults store;
        store.add(hitAt(zip, "/m/b.TXT", 300, 30));
        store.add(hitAt(data, "/z/a.txt", 100, 10));
        store.add(hitAt(data, "/a/C.txt", 200, 20));

        QStringList got;
        for (const std::uint32_t row : ResultSorter::order(store, ResultSorter::Key(key), descending))
            got.append(QString::fromUtf8(store.name(row).data(), qsizetype(store.name(row).size())));
        QCOMPARE(got, expected);
    }

    // Past one sorted run the runs are merged: every count around the run length gives a full, ordered result.
    void mergesRuns_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("empty") << 0;
        QTest::newRow("one") << 1;
        QTest::newRow("one run") << 32768;
        QTest::newRow("run and one") << 32769;
        QTest::newRow("five runs and a bit") << 5 * 32768 + 17;
    }
    void mergesRuns()
    {
        QFETCH(int, count);
        const auto scan = scanOn(QStringLiteral("DATA"), 1000);
        CatalogueResults store;
        QRandomGenerator random(count);
        for (int i = 0; i < count; ++i)
            store.add(hitAt(scan, "/d/f" + QByteArray::number(i), random.bounded(1000)));
        const std::vector<std::uint32_t> order = ResultSorter::order(store, ResultSorter::Key::Size, false);
        QCOMPARE(order.size(), std::size_t(count));
        std::vector<bool> seen(std::size_t(count), false);
        for (std::size_t i = 0; i < order.size(); ++i) {
            seen[order[i]] = true;
            if (i > 0) {
                QVERIFY(store.bytes(order[i - 1]) <= store.bytes(order[i]));
                if (store.bytes(order[i - 1]) == store.bytes(order[i]))
                    QVERIFY(order[i - 1] < order[i]);
            }
        }
        QVERIFY(std::all_of(seen.begin(), seen.end(), [](bool b) { return b; }));
    }

    void stopsWhenAsked()
    {
        const auto scan = scanOn(QStringLiteral("DATA"), 1000);
        CatalogueResults store;
        for (int i = 0; i < 100000; ++i)
            store.add(hitAt(scan, "/d/f" + QByteArray::number(i)));
        const std::atomic_bool stop{true};
        QVERIFY(ResultSorter::order(store, ResultSorter::Key::Name, false, &stop).empty());
    }

    // Batches arrive as insertions, a sort applies once they stop coming, and a selection follows its item.
    void modelStreamsThenSorts()
    {
        CatalogueResultModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const auto scan = scanOn(QStringLiteral("DATA"), 1000);
        model.clear();
        model.sort(CatalogueResultModel::Size, Qt::DescendingOrder);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        for (int b = 0; b < 3; ++b) {
            CatalogueResults batch;
            for (int i = 0; i < 4; ++i)
                batch.add(hitAt(scan, "/d/f" + QByteArray::number(b * 4 + i), b * 4 + i));
            model.append(std::move(batch));
        }
        QCOMPARE(inserted.count(), 3);
        QCOMPARE(model.rowCount(), 12);
        QCOMPARE(names(model).first(), QStringLiteral("f0")); // found order while streaming
        const QPersistentModelIndex f5 = model.index(5, CatalogueResultModel::Name);
        QSignalSpy sorted(&model, &CatalogueResultModel::sortingChanged);
        model.finish();
        QTRY_VERIFY(!model.sorting() && !sorted.isEmpty() && !sorted.last().first().toBool());
        QCOMPARE(names(model).first(), QStringLiteral("f11"));
        QCOMPARE(names(model).last(), QStringLiteral("f0"));
        QCOMPARE(f5.row(), 6);
        QCOMPARE(f5.data().toString(), QStringLiteral("f5"));
        QCOMPARE(model.index(0, CatalogueResultModel::Volume).data().toString(), QStringLiteral("DATA"));
        QCOMPARE(model.index(0, CatalogueResultModel::Folder).data().toString(), QStringLiteral("/d"));

        model.clear();
        QCOMPARE(model.rowCount(), 0);
    }
};

QTEST_MAIN(TestCatalogueResults)
#include "tst_catalogueresults.moc"
