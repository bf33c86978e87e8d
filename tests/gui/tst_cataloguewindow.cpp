// SPDX-License-Identifier: GPL-3.0-or-later

#include "FakeServices.h"
#include "catalogue/CatalogueFilterBar.h"
#include "catalogue/CatalogueResultModel.h"
#include "catalogue/CatalogueWindow.h"
#include "catalogue/DiffDialog.h"
#include "catalogue/DiffModel.h"
#include "catalogue/ScanTreeModel.h"
#include "catalogue/SqliteCatalogue.h"
#include "catalogue/VolumePresence.h"
#include "core/CatalogueFixture.h"

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class TestCatalogueWindow : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString m_path;
    FakeServices m_fakes;
    std::unique_ptr<CatalogueWindow> m_window;
    qint64 m_older = 0, m_newer = 0, m_stick = 0;
    QString m_data; // a real folder on the connected volume

    // DATA's folder twice (report.txt grew, repair.log went, new.txt came) and /stick on USB, not connected.
    void fill()
    {
        auto c = SqliteCatalogue::open(m_path);
        QVERIFY(c);
        FixtureScan before;
        std::uint32_t docs = before.folder(0, "docs", 5100);
        before.file(docs, "report.txt", 100, 1000);
        before.file(docs, "repair.log", 5000, 1000);
        before.file(0, "notes.md", 10, 1000);
        FixtureScan after;
        docs = after.folder(0, "docs", 5100);
        after.file(docs, "report.txt", 200, 2000);
        after.file(docs, "new.txt", 4900, 2000);
        after.file(0, "notes.md", 10, 1000);
        FixtureScan stick;
        stick.file(0, "photo-report.jpg", 1 << 20, 1500);
        m_data = m_dir.filePath(u"data"_s);
        QVERIFY(QDir().mkpath(m_data));
        m_older = *c->record(fixtureInfo(QFile::encodeName(m_data), 1000), before);
        m_newer = *c->record(fixtureInfo(QFile::encodeName(m_data), 2000), after);
        ScanInfo usb = fixtureInfo("/media/usb/stick", 1500, QStringLiteral("USB"), QStringLiteral("9999-AAAA"));
        usb.volume.mountPoint = "/media/usb";
        m_stick = *c->record(usb, stick);
    }

    void typeSearch(const QString& text)
    {
        auto* box = m_window->findChild<QLineEdit*>(QStringLiteral("searchBox"));
        QSignalSpy finished(m_window.get(), &CatalogueWindow::searchFinished);
        box->clear();
        QTest::keyClicks(box, text);
        QTRY_VERIFY(!finished.isEmpty());
        // Only the last search's answer counts; earlier ones were stopped by the keys after them.
        finished.clear();
        QTRY_VERIFY(finished.isEmpty() && !m_window->resultModel()->sorting());
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QVERIFY(m_dir.isValid());
        m_path = m_dir.filePath(QStringLiteral("catalogue.sqlite"));
        fill();
        m_fakes.volumes.list = {Volume{QStringLiteral("/"), QStringLiteral("DATA"), DriveType::Fixed, true}};
    }

    void init()
    {
        m_fakes.reset();
        const QString path = m_path;
        m_window = std::make_unique<CatalogueWindow>(m_fakes.services(), [path](QString* error) {
            return std::unique_ptr<Catalogue>(SqliteCatalogue::open(path, error));
        });
        for (QAbstractItemModel* model : {static_cast<QAbstractItemModel*>(m_window->resultModel()),
                                          static_cast<QAbstractItemModel*>(m_window->scanModel())})
            new QAbstractItemModelTester(model, QAbstractItemModelTester::FailureReportingMode::QtTest, m_window.get());
        m_window->show();
    }

    void cleanup() { m_window.reset(); }

    void showsVolumesAndScans()
    {
        ScanTreeModel* scans = m_window->scanModel();
        QCOMPARE(scans->rowCount(), 2);
        QCOMPARE(scans->scans().size(), std::size_t(3));
        QStringList states;
        for (int r = 0; r < scans->rowCount(); ++r)
            states.append(scans->index(r, ScanTreeModel::Name).data().toString() + QLatin1Char('=') +
                          scans->index(r, ScanTreeModel::Scanned).data().toString());
        states.sort();
        QCOMPARE(states, (QStringList{u"DATA (1111-2222)=Connected"_s, u"USB (9999-AAAA)=Not connected"_s}));
    }

    // Typed letter by letter: each key stops the search before it, and the list ends up holding exactly the
    // last text's hits, with the filters applied.
    void searchesAsYouType_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("minSize");
        QTest::addColumn<bool>("allScans");
        QTest::addColumn<QStringList>("expected");
        // One row for each control that shapes the query; how the catalogue matches is its own test.
        QTest::newRow("substring, newest scans")
            << u"rep"_s << 0 << u""_s << false << QStringList{u"photo-report.jpg"_s, u"report.txt"_s};
        QTest::newRow("older scans too") << u"rep"_s << 0 << u""_s << true
                                         << QStringList{u"photo-report.jpg"_s, u"repair.log"_s, u"report.txt"_s,
                                                        u"report.txt"_s};
        QTest::newRow("pattern") << u"*.txt"_s << 0 << u""_s << false << QStringList{u"new.txt"_s, u"report.txt"_s};
        QTest::newRow("folders only") << u""_s << 2 << u""_s << false << QStringList{u"docs"_s};
        QTest::newRow("files of at least 1k")
            << u""_s << 1 << u"1k"_s << false << QStringList{u"new.txt"_s, u"photo-report.jpg"_s};
    }
    void searchesAsYouType()
    {
        QFETCH(QString, typed);
        QFETCH(int, kind);
        QFETCH(QString, minSize);
        QFETCH(bool, allScans);
        QFETCH(QStringList, expected);
        m_window->findChild<QComboBox*>(QStringLiteral("kindFilter"))->setCurrentIndex(kind);
        m_window->findChild<QLineEdit*>(QStringLiteral("minSizeFilter"))->setText(minSize);
        m_window->findChild<QCheckBox*>(QStringLiteral("allScansFilter"))->setChecked(allScans);
        typeSearch(typed);
        QStringList found;
        for (int r = 0; r < m_window->resultModel()->rowCount(); ++r)
            found.append(m_window->resultModel()->index(r, CatalogueResultModel::Name).data().toString());
        found.sort();
        QCOMPARE(found, expected);
        const QString status = m_window->findChild<QLabel*>(QStringLiteral("statusLine"))->text();
        QVERIFY2(status.startsWith(QString::number(expected.size()) + QStringLiteral(" found in ")),
                 qPrintable(status));
    }

    void sizeTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("bytes");
        QTest::newRow("plain") << u"512"_s << qint64(512);
        QTest::newRow("k") << u"2k"_s << qint64(2048);
        QTest::newRow("M with B") << u"1.5MB"_s << qint64(1572864);
        QTest::newRow("G") << u"3 g"_s << qint64(3) * (1 << 30);
        QTest::newRow("not a size") << u"big"_s << qint64(-1);
    }
    void sizeTexts()
    {
        QFETCH(QString, text);
        QFETCH(qint64, bytes);
        QCOMPARE(CatalogueFilterBar::parseSize(text).value_or(-1), bytes);
    }

    // An item on a connected volume goes to the shell; one on a volume that is not connected, or whose scanned
    // folder is not there now (renamed away, or another volume under the same name), names the volume.
    void opensOrNamesTheVolume_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("locate");
        QTest::addColumn<bool>("renamedAway");
        QTest::addColumn<QString>("reached");
        QTest::newRow("open, connected") << u"report.txt"_s << false << false << u"/docs/report.txt"_s;
        QTest::newRow("locate, connected") << u"report.txt"_s << true << false << u"/docs/report.txt"_s;
        QTest::newRow("open, not connected") << u"photo-report.jpg"_s << false << false << u"USB 9999-AAAA"_s;
        QTest::newRow("locate, not connected") << u"photo-report.jpg"_s << true << false << u"USB 9999-AAAA"_s;
        QTest::newRow("open, folder renamed away") << u"report.txt"_s << false << true << u"DATA 1111-2222"_s;
    }
    void opensOrNamesTheVolume()
    {
        QFETCH(QString, name);
        QFETCH(bool, locate);
        QFETCH(bool, renamedAway);
        QFETCH(QString, reached);
        typeSearch(name); // the one hit, in the newest scans
        QCOMPARE(m_window->resultModel()->rowCount(), 1);
        const QString away = m_data + u"-away"_s;
        QVERIFY(!renamedAway || QDir().rename(m_data, away));
        locate ? m_window->locateRow(0) : m_window->openRow(0);
        QVERIFY(!renamedAway || QDir().rename(away, m_data));
        const QStringList& asked = locate ? m_fakes.shell.located : m_fakes.shell.opened;
        if (!reached.startsWith(u'/')) {
            QVERIFY(asked.isEmpty());
            QCOMPARE(m_fakes.messages.calls.size(), 1);
            const QString text = m_fakes.messages.calls.first().text;
            const QStringList volume = reached.split(u' ');
            QVERIFY2(text.contains(u'"' + volume[0] + u'"') && text.contains(volume[1]) &&
                         text.contains(QLatin1String("Connect that volume")),
                     qPrintable(text));
        } else {
            QCOMPARE(asked, QStringList{m_data + reached});
            QVERIFY(m_fakes.messages.calls.isEmpty());
        }
    }

    // A stick found by its UUID at another mount point is reached there; without its UUID it is not connected.
    void findsAVolumeWhereItIsNow_data()
    {
        QTest::addColumn<QString>("mountedAt");
        QTest::addColumn<QString>("expected");
        QTest::newRow("same place") << u"/media/usb"_s << u"/media/usb/stick/a.jpg"_s;
        QTest::newRow("moved") << u"/media/ann/USB"_s << u"/media/ann/USB/stick/a.jpg"_s;
        QTest::newRow("gone") << u""_s << u""_s;
    }
    void findsAVolumeWhereItIsNow()
    {
        QFETCH(QString, mountedAt);
        QFETCH(QString, expected);
        FakeVolumes none;
        const VolumePresence presence(
            &none, [&](const QString& uuid) { return uuid == QLatin1String("9999-AAAA") ? mountedAt : QString(); });
        ScanInfo scan = fixtureInfo("/media/usb/stick", 1, QStringLiteral("USB"), QStringLiteral("9999-AAAA"));
        scan.volume.mountPoint = "/media/usb";
        const std::optional<QByteArray> path = presence.currentPath(scan, "/media/usb/stick/a.jpg");
        QCOMPARE(path.has_value(), !expected.isEmpty());
        if (path)
            QCOMPARE(QString::fromUtf8(*path), expected);
    }

    void comparesWithThePreviousScan()
    {
        QSignalSpy shown(m_window.get(), &CatalogueWindow::diffShown);
        m_window->compareScan(m_newer);
        QTRY_COMPARE(shown.count(), 1);
        auto* dialog = qobject_cast<DiffDialog*>(shown.first().first().value<QWidget*>());
        QVERIFY(dialog);
        DiffModel* diff = dialog->model();
        QAbstractItemModelTester tester(diff, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QStringList rows;
        for (int r = 0; r < diff->rowCount(); ++r)
            rows.append(diff->index(r, DiffModel::Change).data().toString() + QLatin1Char(' ') +
                        diff->index(r, DiffModel::Path).data().toString());
        rows.sort();
        QCOMPARE(rows,
                 (QStringList{u"Added "_s + m_data + u"/docs/new.txt"_s, u"Changed "_s + m_data + u"/docs/report.txt"_s,
                              u"Removed "_s + m_data + u"/docs/repair.log"_s}));
        diff->sort(DiffModel::SizeChange, Qt::DescendingOrder);
        QCOMPARE(diff->index(0, DiffModel::Path).data().toString(), m_data + u"/docs/new.txt"_s);
        dialog->close();

        m_window->compareScan(m_stick);
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        QVERIFY(m_fakes.messages.calls.first().text.contains(QLatin1String("no earlier scan")));
    }

    void importsListingFilesThenRemovesThem()
    {
        // A set written on Windows: its volume (C:) is never connected here.
        const QByteArray header = "Date: 05 March 2009\r\nSOURCE: C: HD DRIVE \r\n\r\nParent Folder: C:\\OLD\r\n";
        for (const auto& [name, title, line] :
             {std::tuple{"Folders List WithPath", "LIST OF FOLDERS WITH THEIR PATHS", "C:\\OLD\\Sub"},
              {"Folders List -", "LIST OF ALL FOLDERS & SUB FOLDERS", "Sub (3kB)"},
              {"Files List WithPath", "LIST OF ALL FILES", "C:\\OLD\\Sub\\price.txt"},
              {"Files List -", "LIST OF ALL FILES", "price.txt"}}) {
            QFile f(m_dir.filePath(QLatin1String(name) + u" old.txt"_s));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(header + title + " (1):\r\n\r\n" + line + "\r\n\r\n\r\n");
        }
        QSignalSpy imported(m_window.get(), &CatalogueWindow::importFinished);
        m_window->importFiles({m_dir.filePath(QStringLiteral("Files List - old.txt")),
                               m_dir.filePath(QStringLiteral("Folders List - old.txt"))});
        QVERIFY(m_window->findChild<QProgressDialog*>(QStringLiteral("importProgress")));
        QTRY_COMPARE(imported.count(), 1);
        QVERIFY2(m_fakes.messages.calls.isEmpty(), qPrintable(m_fakes.messages.texts().join(QLatin1Char('\n'))));
        QCOMPARE(m_window->scanModel()->scans().size(), std::size_t(4)); // the two files are one set

        // Removing asks first; No keeps the scan. What an import holds and a removal leaves is the catalogue's test.
        const auto importedScan =
            std::find_if(m_window->scanModel()->scans().begin(), m_window->scanModel()->scans().end(),
                         [](const ScanInfo& s) { return s.imported; });
        const qint64 id = importedScan->id;
        m_fakes.messages.answers = {Answer::No};
        m_window->removeScan(id);
        QCOMPARE(m_window->scanModel()->scans().size(), std::size_t(4));
        m_window->removeScan(id);
        QCOMPARE(m_window->scanModel()->scans().size(), std::size_t(3));
    }
};

QTEST_MAIN(TestCatalogueWindow)
#include "tst_cataloguewindow.moc"
