#include "FakeServices.h"
#include "TreeBuilder.h"

#include "browser/BrowserWindow.h"
#include "browser/ClickableLabel.h"
#include "browser/ResultGridModel.h"
#include "browser/ResultPanes.h"
#include "platform/Twips.h"
#include "scan/ScanResult.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTableView>
#include <QTest>
#include <memory>

// "List All Folders & Files" in both windows, and what clicks in the result panes do.
class TestListing : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;
    FakeServices m_fakes;

    std::unique_ptr<BrowserWindow> makeWindow(bool longVersion, const QByteArray& folder)
    {
        const BrowserFlavour& f = longVersion ? BrowserFlavour::longBrowser() : BrowserFlavour::shortBrowser();
        auto w = std::make_unique<BrowserWindow>(f, m_fakes.services(), nullptr);
        for (int n = 1; n <= 4; ++n)
            new QAbstractItemModelTester(w->panes().model(n), QAbstractItemModelTester::FailureReportingMode::QtTest,
                                         w.get());
        w->show();
        w->setDir1Path(QFile::decodeName(folder));
        return w;
    }
    static void scan(BrowserWindow& w)
    {
        QSignalSpy done(&w, &BrowserWindow::scanFinished);
        QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("List_Folders")), Qt::LeftButton);
        QVERIFY(done.wait(20000));
    }
    static QString label(const BrowserWindow& w, const QString& name) { return w.findChild<QLabel*>(name)->text(); }
    static QStringList entries(const BrowserWindow& w, int pane)
    {
        QStringList out;
        for (int row = 0; row < w.panes().rowCount(pane); ++row)
            out.append(w.panes().text(pane, row));
        return out;
    }
    static QAbstractItemView* pane(const BrowserWindow& w, int n)
    {
        return w.findChild<QAbstractItemView*>(w.flavour().paneName(n));
    }
    // Clicks the entry `row` of a pane as the user would, after scrolling it into view.
    static void clickRow(const BrowserWindow& w, int n, int row)
    {
        QAbstractItemView* view = pane(w, n);
        const QModelIndex index = view->model()->index(row, 0);
        view->scrollTo(index);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, QPoint(5, view->visualRect(index).center().y()));
    }
    static int selectedRow(const BrowserWindow& w, int n)
    {
        const QModelIndexList rows = pane(w, n)->selectionModel()->selectedIndexes();
        return rows.size() == 1 ? rows.first().row() : -int(rows.size()) - 1;
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        qputenv("HOME", m_home.path().toLocal8Bit());
        m_fakes.volumes.list = {{QStringLiteral("/"), QStringLiteral("System"), 2, true}};
    }

    void init()
    {
        m_fakes.messages.calls.clear();
        m_fakes.messages.onMessage = nullptr;
        m_fakes.programEnd.count = 0;
    }

    void flavour_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::newRow("ShortBrowser") << false;
        QTest::newRow("LongBrowser") << true;
    }

    void knownTree_data() { flavour_data(); }
    void knownTree()
    {
        QFETCH(bool, longVersion);
        TreeBuilder t;
        t.file("A/a1.txt", 1536);
        t.file("A/A1/x.bin");
        t.file("B/b.txt", 511);
        t.file("r.txt", 10);
        t.dir("C");
        auto w = makeWindow(longVersion, t.root());
        const QString r = QFile::decodeName(t.root());

        QSignalSpy done(w.get(), &BrowserWindow::scanFinished);
        QTest::mouseClick(w->findChild<QPushButton*>(QStringLiteral("List_Folders")), Qt::LeftButton);
        // Walking: the window waits and takes no input but the way out.
        auto* label11 = w->findChild<QLabel*>(QStringLiteral("Label11"));
        QCOMPARE(label11->text(), QStringLiteral(" Pl wait... "));
        QCOMPARE(label11->palette().color(QPalette::Window), QColor(255, 128, 128));
        QVERIFY(w->findChild<QLabel*>(QStringLiteral("scanProgress"))->isVisible());
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        auto* open = w->findChild<QRadioButton*>(QStringLiteral("Option1"));
        QTest::mouseClick(open, Qt::LeftButton);
        QVERIFY(!open->isChecked());
        QVERIFY(m_fakes.messages.calls.isEmpty());
        QVERIFY(done.wait(20000));

        const QStringList folderPaths = {r + QStringLiteral("/A/A1"), r + QStringLiteral("/A"),
                                         r + QStringLiteral("/B"), r + QStringLiteral("/C")};
        const QStringList filePaths = {r + QStringLiteral("/A/a1.txt"), r + QStringLiteral("/A/A1/x.bin"),
                                       r + QStringLiteral("/r.txt"), r + QStringLiteral("/B/b.txt")};
        QCOMPARE(entries(*w, 1), folderPaths);
        QCOMPARE(entries(*w, 2), QStringList({QStringLiteral("A1 (0kB)"), QStringLiteral("A (2kB)"),
                                              QStringLiteral("B (0kB)"), QStringLiteral("C (0kB)")}));
        QCOMPARE(entries(*w, 3), filePaths);
        QCOMPARE(entries(*w, 4), QStringList({QStringLiteral("a1.txt"), QStringLiteral("x.bin"),
                                              QStringLiteral("r.txt"), QStringLiteral("b.txt")}));
        QCOMPARE(label(*w, QStringLiteral("Label1_0")), QStringLiteral("Total Folders: 4"));
        QCOMPARE(label(*w, QStringLiteral("Label1_3")), QStringLiteral("Total Files with path: 4"));
        QCOMPARE(label(*w, QStringLiteral("Label1_4")), QStringLiteral("Total Files: 4"));
        for (const char* selection : {"Label1_1", "Label1_5", "Label1_6", "Label1_2"})
            QCOMPARE(label(*w, QLatin1String(selection)), QStringLiteral("Selected: 1"));
        QVERIFY(label11->text().startsWith(QStringLiteral("Elapsed time: ")));
        QVERIFY(label11->text().endsWith(QStringLiteral(" sec")));
        QCOMPARE(label11->palette().color(QPalette::Window), QApplication::palette().color(QPalette::Button));
        QVERIFY(!w->findChild<QLabel*>(QStringLiteral("scanProgress"))->isVisible());
        QVERIFY(!QApplication::overrideCursor());
        QVERIFY(!w->findChild<QPushButton*>(QStringLiteral("List_Folders"))->isEnabled());
        QVERIFY(w->findChild<QPushButton*>(QStringLiteral("CreateTextFiles"))->isEnabled());
        QVERIFY(w->findChild<QPushButton*>(QStringLiteral("Label9Com"))->isEnabled());
        QCOMPARE(w->scanResult()->fileCount(), 4);
        // The first entries are selected; ShortBrowser's names came after the selection and have none.
        for (int n = 1; n <= 3; ++n)
            QCOMPARE(selectedRow(*w, n), 0);
        QCOMPARE(selectedRow(*w, 4), longVersion ? 0 : -1);
        if (longVersion) {
            auto* grid = w->findChild<QTableView*>(QStringLiteral("MSFlexGrid3"));
            QVERIFY(grid->horizontalHeader()->isHidden() && grid->verticalHeader()->isHidden());
            QCOMPARE(grid->columnWidth(0), Twips::toPx(10000));
            QCOMPARE(grid->horizontalScrollBar()->maximum(), grid->columnWidth(0) - grid->viewport()->width());
            QVERIFY(w->findChild<QWidget*>(QStringLiteral("Image1"))->isHidden());
            QVERIFY(!w->findChild<QWidget*>(QStringLiteral("Frame5"))->isHidden());
        }

        // A new folder choice empties the panes; choosing the folder again and listing it gives the same lists.
        w->setDir1Path(r + QStringLiteral("/A"));
        QCOMPARE(w->panes().rowCount(3), 0);
        QVERIFY(!w->scanResult());
        w->setDir1Path(r);
        scan(*w);
        QCOMPARE(entries(*w, 1), folderPaths);
        QCOMPARE(entries(*w, 3), filePaths);
        QCOMPARE(label(*w, QStringLiteral("Label1_0")), QStringLiteral("Total Folders: 4"));
    }

    void noSubFolder_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::addColumn<int>("files");
        for (bool longVersion : {false, true}) {
            const char* name = longVersion ? "LongBrowser" : "ShortBrowser";
            QTest::addRow("%s, two files", name) << longVersion << 2;
            QTest::addRow("%s, empty", name) << longVersion << 0;
        }
    }
    void noSubFolder()
    {
        QFETCH(bool, longVersion);
        QFETCH(int, files);
        TreeBuilder t;
        t.dir("R");
        for (int i = 0; i < files; ++i)
            t.file("R/f" + QByteArray::number(i));
        auto w = makeWindow(longVersion, t.path("R"));
        scan(*w);

        const QStringList none = {QStringLiteral("NO FOLDER FOUND")};
        QCOMPARE(entries(*w, 1), none);
        QCOMPARE(entries(*w, 2), none);
        QCOMPARE(w->panes().rowCount(3), files);
        QCOMPARE(w->panes().rowCount(4), files);
        QCOMPARE(label(*w, QStringLiteral("Label1_0")), QString());
        QCOMPARE(label(*w, QStringLiteral("Label1_1")), QString());
        QCOMPARE(label(*w, QStringLiteral("Label1_5")), QString());
        QCOMPARE(label(*w, QStringLiteral("Label1_6")),
                 longVersion ? QStringLiteral("Selected: 1") : QString::number(files));
        QCOMPARE(label(*w, QStringLiteral("Label1_3")),
                 QStringLiteral("Total Files with path: ") + QString::number(files));
        QCOMPARE(label(*w, QStringLiteral("Label1_4")), QStringLiteral("Total Files: ") + QString::number(files));
        // A list box takes no selection from an entry added after the selecting; a grid always has a current row.
        QCOMPARE(selectedRow(*w, 1), longVersion ? 0 : -1);
        QVERIFY(w->findChild<QPushButton*>(QStringLiteral("CreateTextFiles"))->isEnabled());
    }

    void shortLimit()
    {
        TreeBuilder t;
        for (int i = 0; i < ScanResult::ShortFileLimit; ++i)
            t.file("S/f" + QByteArray::number(i));
        auto w = makeWindow(false, t.root());
        scan(*w);
        QVERIFY(m_fakes.messages.calls.isEmpty());
        QCOMPARE(w->panes().rowCount(3), ScanResult::ShortFileLimit);

        t.file("S/one-more");
        w->setDir1Path(QFile::decodeName(t.path("S")));
        w->setDir1Path(QFile::decodeName(t.root()));
        QString shownBehind;
        m_fakes.messages.onMessage = [&] { shownBehind = label(*w, QStringLiteral("Label11")); };
        scan(*w);
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        QCOMPARE(m_fakes.messages.calls[0].text, ScanResult::limitMessage());
        QCOMPARE(m_fakes.messages.calls[0].style, 16);
        QCOMPARE(m_fakes.messages.calls[0].title, QString());
        QCOMPARE(shownBehind, QStringLiteral(" Pl wait... "));
        QCOMPARE(w->panes().rowCount(3), ScanResult::ShortFileLimit);
        QCOMPARE(w->panes().rowCount(4), ScanResult::ShortFileLimit);
        QCOMPARE(label(*w, QStringLiteral("Label1_3")), QStringLiteral("Total Files with path: 32767"));
        // The limit struck in S's files, before S itself was done: no folder was completed.
        QCOMPARE(entries(*w, 1), QStringList{QStringLiteral("NO FOLDER FOUND")});
        QCOMPARE(label(*w, QStringLiteral("Label1_6")), QStringLiteral("32767"));
        QVERIFY(label(*w, QStringLiteral("Label11")).startsWith(QStringLiteral("Elapsed time: ")));
        QCOMPARE(m_fakes.programEnd.count, 0);
        // Still usable: a click goes through.
        clickRow(*w, 3, 2);
        QCOMPARE(label(*w, QStringLiteral("Label1_6")), QStringLiteral("Selected: 3"));
    }

    void selectionCoupling_data() { flavour_data(); }
    void selectionCoupling()
    {
        QFETCH(bool, longVersion);
        TreeBuilder t;
        for (int i = 0; i < 50; ++i)
            t.file(QByteArray("S/f") + (i < 10 ? "0" : "") + QByteArray::number(i));
        t.dir("T/U");
        auto w = makeWindow(longVersion, t.root());
        scan(*w);
        const QString path40 = QFile::decodeName(t.path("S/f39"));
        auto* text1 = w->findChild<QLineEdit*>(QStringLiteral("Text1"));
        auto* text2 = w->findChild<QLineEdit*>(QStringLiteral("Text2"));

        clickRow(*w, 4, 39);
        QCOMPARE(label(*w, QStringLiteral("Label1_2")), QStringLiteral("Selected: 40"));
        QCOMPARE(w->panes().currentRow(3), 39);
        QCOMPARE(selectedRow(*w, 3), 39);
        if (longVersion) {
            QCOMPARE(text2->text(), path40);
            QCOMPARE(selectedRow(*w, 4), 39);
            QCOMPARE(pane(*w, 4)->palette().color(QPalette::Highlight), QColor(0, 128, 0));
            QCOMPARE(pane(*w, 4)->palette().color(QPalette::HighlightedText), QColor(255, 255, 255));
        } else {
            // The name list is cleared before its focus entry is handed on: the path shows the selection.
            QCOMPARE(text2->text(), QString());
            QCOMPARE(selectedRow(*w, 4), -1);
            QCOMPARE(pane(*w, 4)->toolTip(), path40);
        }

        clickRow(*w, 3, 5);
        QCOMPARE(label(*w, QStringLiteral("Label1_6")), QStringLiteral("Selected: 6"));
        QCOMPARE(selectedRow(*w, 4), 5);
        QCOMPARE(text2->text(), QFile::decodeName(t.path("S/f05")));
        if (!longVersion) {
            QCOMPARE(pane(*w, 3)->toolTip(), text2->text());
            QTest::keyClick(pane(*w, 3), Qt::Key_Down);
            QCOMPARE(label(*w, QStringLiteral("Label1_6")), QStringLiteral("Selected: 7"));
            QCOMPARE(text2->text(), QFile::decodeName(t.path("S/f06")));
        }

        // Folders: S, T/U, T. The name list's path box shows the name as listed in ShortBrowser.
        clickRow(*w, 2, 1);
        QCOMPARE(label(*w, QStringLiteral("Label1_5")), QStringLiteral("Selected: 2"));
        QCOMPARE(text1->text(), longVersion ? QFile::decodeName(t.path("T/U")) : QStringLiteral("U (0kB)"));
        if (longVersion)
            QCOMPARE(selectedRow(*w, 1), 1);
        else
            QCOMPARE(pane(*w, 2)->toolTip(), QStringLiteral("U (0kB)"));
        clickRow(*w, 1, 2);
        QCOMPARE(label(*w, QStringLiteral("Label1_1")), QStringLiteral("Selected: 3"));
        if (longVersion) {
            QCOMPARE(text1->text(), QFile::decodeName(t.path("T")));
            QVERIFY(pane(*w, 1)->palette().color(QPalette::Highlight) != QColor(0, 128, 0));
            // Below the last row the grid keeps its current row, and the click still reports it.
            QTest::mouseClick(pane(*w, 1)->viewport(), Qt::LeftButton, {},
                              QPoint(5, pane(*w, 1)->viewport()->height() - 2));
            QCOMPARE(w->panes().currentRow(1), 2);
            QCOMPARE(selectedRow(*w, 1), 2);

            w->panes().setCellColours(3, 7, Qt::red);
            QCOMPARE(w->panes().model(3)->index(7, 0).data(Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
            w->setDir1Path(QFile::decodeName(t.path("S")));
            scan(*w);
            QVERIFY(!w->panes().model(3)->index(7, 0).data(Qt::BackgroundRole).isValid());
        }
    }

    void rightClickedItem()
    {
        TreeBuilder t;
        for (int i = 0; i < 5; ++i)
            t.file("S/f" + QByteArray::number(i));
        auto w = makeWindow(false, t.root());
        scan(*w);
        auto* list = w->findChild<QListView*>(QStringLiteral("List3"));
        const int h = list->visualRect(list->model()->index(0, 0)).height();
        const double tx = Twips::perPixelX(), ty = Twips::perPixelY();
        const auto at = [&](QWidget* control, int px, double py) {
            return w->GetRClickedItem(control, float(px * tx), float(py * ty));
        };
        QCOMPARE(at(list, 10, 2 * h + h / 2), 2);
        QCOMPARE(at(list, 10, 0), 0);
        QCOMPARE(at(list, 10, 3 * h + 1), 3);
        // The line between two entries belongs to both rectangles; the first one found wins.
        QCOMPARE(at(list, 10, 3 * h), 2);
        // A fraction of a pixel is cut off after rounding the twips.
        QCOMPARE(at(list, 10, 3 * h + 0.9), 2);
        QCOMPARE(at(list, 10, 5 * h + 3), 0);
        QCOMPARE(at(w->findChild<QListView*>(QStringLiteral("List5")), 10, 1), 0);
        QCOMPARE(at(w->findChild<QLineEdit*>(QStringLiteral("Text1")), 10, 1), -1);

        auto l = makeWindow(true, t.root());
        scan(*l);
        QCOMPARE(l->GetRClickedItem(l->findChild<QWidget*>(QStringLiteral("MSFlexGrid3")), 150, 3 * 240), 0);
        QCOMPARE(l->GetRClickedItem(l->findChild<QWidget*>(QStringLiteral("Text1")), 150, 150), 0);
    }

    void wayOutMidWalk_data() { flavour_data(); }
    void wayOutMidWalk()
    {
        QFETCH(bool, longVersion);
        TreeBuilder t;
        t.file("S/f");
        for (bool viaLabel : {true, false}) {
            m_fakes.programEnd.count = 0;
            auto w = makeWindow(longVersion, t.root());
            QSignalSpy done(w.get(), &BrowserWindow::scanFinished);
            QTest::mouseClick(w->findChild<QPushButton*>(QStringLiteral("List_Folders")), Qt::LeftButton);
            if (viaLabel)
                QTest::mouseDClick(w->findChild<ClickableLabel*>(QStringLiteral("Label11")), Qt::LeftButton);
            else
                w->close();
            QCOMPARE(m_fakes.programEnd.count, 1);
            QVERIFY(!done.wait(300));
            QVERIFY(!QApplication::overrideCursor());
        }
    }
};

QTEST_MAIN(TestListing)
#include "tst_listing.moc"
