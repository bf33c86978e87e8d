// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "scan/ScanResultBuilder.h"

#include <QListView>

using namespace BrowserTestKit;

// The search section of both windows: where its results and count land, and what a click and a double-click on
// a result do. What matches and how a result line reads are the list search's own tests (tst_listsearch); which
// file names play is tst_itemactions'; what a folder or drive change clears is tst_browserwindow's.
class TestSearch : public QObject
{
    Q_OBJECT

private:
    FakeServices m_fakes;

    std::unique_ptr<BrowserWindow> listed(bool longVersion)
    {
        ScanResultBuilder b("/d");
        for (const char* name : {"misc", "My Photos", "A", "PHOTOGRAPHS"})
            b.addFolder(name, 1);
        for (const char* name : {"ab.txt", "a*b.txt", "Photo1.jpg", "song.mp3"})
            b.addFile(0, name);
        auto w = windowWith(m_fakes, longVersion, b.finish());
        QTest::mouseClick(w->controls().navigation.Label9Com, Qt::LeftButton);
        return w;
    }
    static void search(BrowserWindow& w, const QString& text, bool folders)
    {
        w.controls().search.srchFolder->setText(text);
        QTest::mouseClick(folders ? w.controls().search.SearchFolders : w.controls().search.SearchFiles,
                          Qt::LeftButton);
    }
    static QStringList lines(const BrowserWindow& w)
    {
        QStringList out;
        const QAbstractItemModel* m = w.controls().search.List5->model();
        for (int row = 0; row < m->rowCount(); ++row)
            out.append(m->index(row, 0).data().toString());
        return out;
    }
    static void clickResult(const BrowserWindow& w, int row, bool twice = false)
    {
        QListView* list5 = w.controls().search.List5;
        const QPoint at = list5->visualRect(list5->model()->index(row, 0)).center();
        QTest::mouseClick(list5->viewport(), Qt::LeftButton, {}, at);
        if (twice)
            QTest::mouseDClick(list5->viewport(), Qt::LeftButton, {}, at);
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { m_fakes.reset(); }

    void searching_data() { addFlavours(); }
    void searching()
    {
        QFETCH(bool, longVersion);
        auto w = listed(longVersion);
        const BrowserControls& ui = w->controls();
        QVERIFY(ui.search.Frame1->isVisible());

        search(*w, u"photo"_s, true);
        QCOMPARE(lines(*w), QStringList({u"# 00002. My Photos (1kB)"_s, u"# 00004. PHOTOGRAPHS (1kB)"_s}));
        QCOMPARE(ui.status.Label1[7]->text(), u" Folders Found: 2 "_s);
        QVERIFY(w->search().searchingFolders());
        // The grid is walked row by row and stays on its last row.
        if (longVersion)
            QCOMPARE(w->panes().currentRow(2), 3);

        search(*w, u"a*"_s, false);
        QCOMPARE(lines(*w), QStringList{u"# 00002. a*b.txt"_s});
        QCOMPARE(ui.status.Label1[7]->text(), u" Files Found: 1 "_s);
        QVERIFY(!w->search().searchingFolders());
        if (longVersion)
            QCOMPARE(w->panes().currentRow(4), 3);

        // Results outlive a new scan; an empty search string clears them without a count.
        ScanResultBuilder other("/e");
        other.addFile(0, "only");
        w->listResult(other.finish());
        QCOMPARE(lines(*w).size(), 1);
        search(*w, QString(), false);
        QVERIFY(lines(*w).isEmpty());
        QCOMPARE(ui.status.Label1[7]->text(), QString());

        QTest::mouseClick(ui.navigation.Label9Com, Qt::LeftButton);
        QVERIFY(ui.search.Frame1->isHidden());
        QVERIFY(m_fakes.messages.calls.isEmpty());
    }

    void resultClicks_data() { addFlavours(); }
    void resultClicks()
    {
        QFETCH(bool, longVersion);
        auto w = listed(longVersion);
        const BrowserControls& ui = w->controls();

        search(*w, u"photo"_s, true);
        clickResult(*w, 1);
        QCOMPARE(w->panes().currentRow(1), 3);
        QCOMPARE(w->panes().currentRow(2), 3);
        QCOMPARE(ui.paths.Text1->text(), u"/d/PHOTOGRAPHS"_s);
        // ShortBrowser's list boxes run their click handling when selected.
        QCOMPARE(ui.status.Label1[5]->text(), longVersion ? u"Selected: 1"_s : u"Selected: 4"_s);
        // The arrow keys move the result list's selection and run its click as the mouse does.
        QTest::keyClick(ui.search.List5, Qt::Key_Up);
        QCOMPARE(w->panes().currentRow(2), 1);
        QCOMPARE(ui.paths.Text1->text(), u"/d/My Photos"_s);
        setOpenMode(*w, true);
        clickResult(*w, 0, true);
        QCOMPARE(m_fakes.shell.opened, QStringList{u"/d/My Photos"_s});

        setOpenMode(*w, false);
        // What a double-click plays, opens or locates, and what stops the player, are tst_itemactions'.
        search(*w, u".mp3"_s, false);
        clickResult(*w, 0, true);
        QCOMPARE(w->panes().currentRow(3), 3);
        QCOMPARE(w->panes().currentRow(4), 3);
        QCOMPARE(ui.paths.Text2->text(), u"/d/song.mp3"_s);
        QCOMPARE(m_fakes.shell.located, QStringList{u"/d/song.mp3"_s});
        setOpenMode(*w, true);
        clickResult(*w, 0, true);
        QCOMPARE(m_fakes.player.urls, QStringList{u"/d/song.mp3"_s});
        QVERIFY(m_fakes.messages.calls.isEmpty());
    }

    // Serials are read back into 16 bits from five characters of the line.
    void serials()
    {
        ScanResultBuilder b("/big");
        for (int i = 0; i < 100'005; ++i) {
            const QByteArray name = i == 39'999    ? QByteArray("needle")
                                    : i == 100'004 ? QByteArray("six")
                                                   : "f" + QByteArray::number(i);
            b.addFile(0, std::string_view(name.constData(), size_t(name.size())));
        }
        auto w = window(m_fakes, true);
        w->listResult(b.finish());
        QTest::mouseClick(w->controls().navigation.Label9Com, Qt::LeftButton);

        search(*w, u"six"_s, false);
        clickResult(*w, 0);
        QCOMPARE(w->panes().currentRow(3), 9999);
        QCOMPARE(w->controls().paths.Text2->text(), u"/big/f9999"_s);
        QVERIFY(m_fakes.messages.calls.isEmpty());

        search(*w, u"needle"_s, false);
        clickResult(*w, 0);
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"16|Run-time error '6':\r\n\r\nOverflow"_s});
        QCOMPARE(m_fakes.programEnd.count, 1);

        // An old result whose serial the new lists do not reach.
        search(*w, u"f30000"_s, false);
        ScanResultBuilder small("/e");
        small.addFile(0, "x");
        w->listResult(small.finish());
        clickResult(*w, 0);
        QCOMPARE(m_fakes.messages.texts().mid(1),
                 QStringList{u"16|Run-time error '381':\r\n\r\nInvalid property array index"_s});
    }
};

QTEST_MAIN(TestSearch)
#include "tst_search.moc"
