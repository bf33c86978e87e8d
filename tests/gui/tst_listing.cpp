// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "common/NativeText.h"
#include "platform/Twips.h"
#include "scan/FolderWalk.h"

#include <QApplication>
#include <QHeaderView>
#include <QListView>
#include <QScrollBar>
#include <QTableView>
#include <sys/stat.h>
#include <unistd.h>

using namespace BrowserTestKit;

// "List All Folders & Files" in both windows, what the panes show after it, and what clicks in them do.
class TestListing : public QObject
{
    Q_OBJECT

private:
    TestHome m_home;
    FakeServices m_fakes;

private slots:
    void initTestCase() { m_fakes.volumes.list = {{u"/"_s, u"System"_s, DriveType::Fixed, true}}; }
    void init() { m_fakes.reset(); }

    // What the window does around a walk: it waits and takes no input but the way out, then fills its labels,
    // enables what needs a listing and selects the first entries. What the lists hold is the walk's own test.
    void walkAndAfter_data() { addFlavours(); }
    void walkAndAfter()
    {
        QFETCH(bool, longVersion);
        TreeBuilder t;
        t.file("A/a1.txt", 1536);
        t.file("A/A1/x.bin");
        t.file("B/b.txt", 511);
        t.file("r.txt", 10);
        t.dir("C");
        auto w = window(m_fakes, longVersion);
        const BrowserControls& ui = w->controls();
        w->setDir1Path(QFile::decodeName(t.root()));

        QSignalSpy done(w.get(), &BrowserWindow::scanFinished);
        QTest::mouseClick(ui.navigation.List_Folders, Qt::LeftButton);
        QCOMPARE(ui.status.Label11->text(), u" Pl wait... "_s);
        QCOMPARE(ui.status.Label11->palette().color(QPalette::Window), QColor(255, 128, 128));
        QVERIFY(w->findChild<QLabel*>(u"scanProgress"_s)->isVisible());
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        QTest::mouseClick(ui.mode.Option1, Qt::LeftButton);
        QVERIFY(!ui.mode.Option1->isChecked());
        QVERIFY(done.wait(20000));

        QCOMPARE(w->panes().rowCount(1), 4);
        QCOMPARE(ui.status.Label1[0]->text(), u"Total Folders: 4"_s);
        QCOMPARE(ui.status.Label1[3]->text(), u"Total Files with path: 4"_s);
        QCOMPARE(ui.status.Label1[4]->text(), u"Total Files: 4"_s);
        for (int selection : {1, 5, 6, 2})
            QCOMPARE(ui.status.Label1[selection]->text(), u"Selected: 1"_s);
        QVERIFY(ui.status.Label11->text().startsWith(u"Elapsed time: "_s) &&
                ui.status.Label11->text().endsWith(u" sec"_s));
        QCOMPARE(ui.status.Label11->palette().color(QPalette::Window), QApplication::palette().color(QPalette::Button));
        QVERIFY(!w->findChild<QLabel*>(u"scanProgress"_s)->isVisible());
        QVERIFY(!QApplication::overrideCursor());
        QVERIFY(!ui.navigation.List_Folders->isEnabled() && ui.navigation.CreateTextFiles->isEnabled() &&
                ui.navigation.Label9Com->isEnabled());
        QVERIFY(m_fakes.messages.calls.isEmpty());
        // The first entries are selected; ShortBrowser's names came after the selection and have none.
        for (int n = 1; n <= 3; ++n)
            QCOMPARE(selectedRow(*w, n), 0);
        QCOMPARE(selectedRow(*w, 4), longVersion ? 0 : -1);
        if (longVersion) {
            QTableView* grid = ui.panes.MSFlexGrid[3];
            QVERIFY(grid->horizontalHeader()->isHidden() && grid->verticalHeader()->isHidden());
            QCOMPARE(grid->columnWidth(0), Twips::toPx(10000));
            QCOMPARE(grid->horizontalScrollBar()->maximum(), grid->columnWidth(0) - grid->viewport()->width());
            QVERIFY(ui.goTo.Image1->isHidden() && !ui.goTo.Frame5->isHidden());
        }
    }

    // With no sub-folder the folder labels stay empty, and ShortBrowser's file selection label shows the count.
    void noSubFolder_data() { addFlavours<int>("files", {{"two files", 2}, {"empty", 0}}); }
    void noSubFolder()
    {
        QFETCH(bool, longVersion);
        QFETCH(int, files);
        TreeBuilder t;
        t.dir("R");
        for (int i = 0; i < files; ++i)
            t.file("R/f" + QByteArray::number(i));
        auto w = listedWindow(m_fakes, longVersion, t.path("R"));
        const BrowserControls& ui = w->controls();
        for (int i : {0, 1, 5})
            QCOMPARE(ui.status.Label1[i]->text(), QString());
        QCOMPARE(ui.status.Label1[6]->text(), longVersion ? u"Selected: 1"_s : QString::number(files));
        QCOMPARE(ui.status.Label1[4]->text(), u"Total Files: "_s + QString::number(files));
        // A list box takes no selection from an entry added after the selecting; a grid always has a current row.
        QCOMPARE(selectedRow(*w, 1), longVersion ? 0 : -1);
        QVERIFY(ui.navigation.CreateTextFiles->isEnabled());
    }

    // The limit's message comes up over the wait text, as an error box; the window then shows what was listed
    // and stays usable.
    void shortLimit()
    {
        TreeBuilder t;
        for (int i = 0; i <= ScanResult::ShortFileLimit; ++i)
            t.file("S/f" + QByteArray::number(i));
        auto w = window(m_fakes, false);
        const BrowserControls& ui = w->controls();
        w->setDir1Path(QFile::decodeName(t.root()));
        QString shownBehind;
        m_fakes.messages.onMessage = [&] { shownBehind = ui.status.Label11->text(); };
        scan(*w);
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"16|"_s + ScanResult::limitMessage()});
        QCOMPARE(shownBehind, u" Pl wait... "_s);
        QCOMPARE(w->panes().rowCount(4), ScanResult::ShortFileLimit);
        QCOMPARE(ui.status.Label1[3]->text(), u"Total Files with path: 32767"_s);
        QCOMPARE(ui.status.Label1[6]->text(), u"32767"_s);
        QVERIFY(ui.status.Label11->text().startsWith(u"Elapsed time: "_s));
        QCOMPARE(m_fakes.programEnd.count, 0);
        clickRow(*w, 3, 2);
        QCOMPARE(ui.status.Label1[6]->text(), u"Selected: 3"_s);
    }

    // A tree made to break the windows: names that are not UTF-8 or hold line breaks, a link loop, a pipe. Each
    // pane shows its list of what the walk found, byte for byte, and an odd name is opened, located and copied
    // as it is on disk. How such names reach a listing file is the lister's test (tst_hostiletrees).
    void oddTree_data() { addFlavours(); }
    void oddTree()
    {
        QFETCH(bool, longVersion);
        TreeBuilder tree;
        const QByteArray odd = "bad\xff\xfe name";
        for (const QByteArray& n : {odd, QByteArray("line\nbreak"), QByteArray("-rf"), QByteArray(255, 'L')})
            tree.file("odd\xe9/" + n, 3);
        QCOMPARE(::symlink("..", tree.path("odd\xe9/loop").constData()), 0);
        QCOMPARE(::mkfifo(tree.path("odd\xe9/pipe").constData(), 0644), 0);
        auto w = listedWindow(m_fakes, longVersion, tree.root());
        const auto walked = FolderWalk::run(tree.root());
        using L = ScanResult::List;
        int oddRow = -1;
        for (const auto& [n, list] :
             {std::pair{1, L::FolderPaths}, {2, L::FolderNames}, {3, L::FilePaths}, {4, L::FileNames}}) {
            QCOMPARE(qint64(w->panes().rowCount(n)), walked->count(list));
            for (int row = 0; row < w->panes().rowCount(n); ++row) {
                const QByteArray shown = NativeText::fromDisplay(w->panes().text(n, row));
                QCOMPARE(shown, walked->entry(list, row));
                if (n == 4 && shown == odd)
                    oddRow = row;
            }
        }
        QVERIFY(oddRow >= 0);
        const QByteArray oddPath = tree.path("odd\xe9/" + odd);

        // Open and locate hand the shell the name's own bytes.
        setOpenMode(*w, true);
        doubleClickRow(*w, 3, oddRow);
        setOpenMode(*w, false);
        doubleClickRow(*w, 3, oddRow);
        QCOMPARE(m_fakes.shell.opened.size(), 1);
        QCOMPARE(NativeText::fromDisplay(m_fakes.shell.opened.first()), oddPath);
        QCOMPARE(NativeText::fromDisplay(m_fakes.shell.located.last()), oddPath);

        // Copied into the collection folder under the same bytes.
        QDir(collectionPath()).removeRecursively();
        QDir().mkpath(collectionPath());
        clickRow(*w, 3, oddRow);
        entry(*w, u"SaveFile_3"_s, u"SaveFileTo_MSF3"_s)->trigger();
        QCOMPARE(::access((QFile::encodeName(collectionPath()) + '/' + odd).constData(), F_OK), 0);
        QCOMPARE(m_fakes.programEnd.count, 0);
    }

    // The 40th name selects the 40th path, and which boxes and labels each pane's click fills. Selecting a list
    // box's entry runs that list's click, so in ShortBrowser the partner's handler runs too; a grid's row does not.
    // The quirk kept: a path clicked in ShortBrowser runs the name list's click, which clears that list's own
    // highlight, leaving only its focus on the name.
    void selectionCoupling_nameListClearsItsOwnHighlight_data() { addFlavours(); }
    void selectionCoupling_nameListClearsItsOwnHighlight()
    {
        QFETCH(bool, longVersion);
        TreeBuilder t;
        for (int i = 0; i < 50; ++i)
            t.file(QByteArray("S/f") + (i < 10 ? "0" : "") + QByteArray::number(i));
        t.dir("T/U");
        auto w = listedWindow(m_fakes, longVersion, t.root());
        const BrowserControls& ui = w->controls();
        const QString path40 = QFile::decodeName(t.path("S/f39"));

        clickRow(*w, 4, 39);
        QCOMPARE(ui.status.Label1[2]->text(), u"Selected: 40"_s);
        QCOMPARE(ui.status.Label1[6]->text(), longVersion ? u"Selected: 1"_s : u"Selected: 40"_s);
        QCOMPARE(ui.paths.Text2->text(), path40);
        QCOMPARE(w->panes().currentRow(3), 39);
        QCOMPARE(selectedRow(*w, 3), 39);
        QCOMPARE(selectedRow(*w, 4), 39);
        if (longVersion) {
            QCOMPARE(pane(*w, 4)->palette().color(QPalette::Highlight), QColor(0, 128, 0));
            QCOMPARE(pane(*w, 4)->palette().color(QPalette::HighlightedText), QColor(255, 255, 255));
        } else {
            QCOMPARE(pane(*w, 4)->toolTip(), path40);
            QCOMPARE(pane(*w, 3)->toolTip(), path40);
        }

        clickRow(*w, 3, 5);
        QCOMPARE(ui.status.Label1[6]->text(), u"Selected: 6"_s);
        QCOMPARE(ui.status.Label1[2]->text(), longVersion ? u"Selected: 40"_s : u"Selected: 6"_s);
        QCOMPARE(w->panes().currentRow(4), 5);
        QCOMPARE(selectedRow(*w, 4), longVersion ? 5 : -1);
        QCOMPARE(ui.paths.Text2->text(), QFile::decodeName(t.path("S/f05")));
        if (!longVersion) {
            QCOMPARE(pane(*w, 3)->toolTip(), ui.paths.Text2->text());
            QTest::keyClick(pane(*w, 3), Qt::Key_Down);
            QCOMPARE(ui.status.Label1[6]->text(), u"Selected: 7"_s);
            QCOMPARE(ui.status.Label1[2]->text(), u"Selected: 7"_s);
            QCOMPARE(ui.paths.Text2->text(), QFile::decodeName(t.path("S/f06")));
        }

        // Folders: S, T/U, T. The name list's path box shows the name as listed in ShortBrowser.
        clickRow(*w, 2, 1);
        QCOMPARE(ui.status.Label1[5]->text(), u"Selected: 2"_s);
        QCOMPARE(ui.paths.Text1->text(), longVersion ? QFile::decodeName(t.path("T/U")) : u"U (0kB)"_s);
        if (longVersion)
            QCOMPARE(selectedRow(*w, 1), 1);
        else
            QCOMPARE(pane(*w, 2)->toolTip(), u"U (0kB)"_s);
        clickRow(*w, 1, 2);
        QCOMPARE(ui.status.Label1[1]->text(), u"Selected: 3"_s);
        if (longVersion) {
            QCOMPARE(ui.paths.Text1->text(), QFile::decodeName(t.path("T")));
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
        auto w = listedWindow(m_fakes, false, t.root());
        QListView* list = w->controls().panes.List[3];
        const int h = list->visualRect(list->model()->index(0, 0)).height();
        const auto at = [&](QWidget* control, int px, double py) {
            return w->GetRClickedItem(control, float(px * Twips::perPixelX()), float(py * Twips::perPixelY()));
        };
        QCOMPARE(at(list, 10, 2 * h + h / 2), 2);
        QCOMPARE(at(list, 10, 0), 0);
        QCOMPARE(at(list, 10, 3 * h + 1), 3);
        // The line between two entries belongs to both rectangles; the first one found wins.
        QCOMPARE(at(list, 10, 3 * h), 2);
        // A fraction of a pixel is cut off after rounding the twips.
        QCOMPARE(at(list, 10, 3 * h + 0.9), 2);
        QCOMPARE(at(list, 10, 5 * h + 3), 0);
        QCOMPARE(at(w->controls().search.List5, 10, 1), 0);
        QCOMPARE(at(w->controls().paths.Text1, 10, 1), -1);

        auto l = listedWindow(m_fakes, true, t.root());
        QCOMPARE(l->GetRClickedItem(l->controls().panes.MSFlexGrid[3], 150, 3 * 240), 0);
        QCOMPARE(l->GetRClickedItem(l->controls().paths.Text1, 150, 150), 0);
    }

    // Both ways out end the program mid-walk, and the walk reports nothing after.
    void wayOutMidWalk_data() { addFlavours(); }
    void wayOutMidWalk()
    {
        QFETCH(bool, longVersion);
        TreeBuilder t;
        t.file("S/f");
        for (bool viaLabel : {true, false}) {
            m_fakes.programEnd.count = 0;
            auto w = window(m_fakes, longVersion);
            w->setDir1Path(QFile::decodeName(t.root()));
            QSignalSpy done(w.get(), &BrowserWindow::scanFinished);
            QTest::mouseClick(w->controls().navigation.List_Folders, Qt::LeftButton);
            if (viaLabel)
                QTest::mouseDClick(w->controls().status.Label11, Qt::LeftButton);
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
