#include "BrowserTestKit.h"

#include "browser/ClickableFrame.h"
#include "search/SearchResultModel.h"
#include "search/SearchSection.h"
#include "scan/ScanResultBuilder.h"

#include <QAbstractItemModelTester>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QRadioButton>
#include <QStandardPaths>

using namespace BrowserTestKit;

// The search section of both windows: matching, result lines and count, and what a click and a double-click
// on a result do.
class TestSearch : public QObject
{
    Q_OBJECT

private:
    FakeServices m_fakes;

    std::unique_ptr<BrowserWindow> window(bool longVersion)
    {
        auto w = std::make_unique<BrowserWindow>(flavour(longVersion), m_fakes.services(), nullptr);
        new QAbstractItemModelTester(w->search().model(), QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     w.get());
        w->show();
        ScanResultBuilder b("/d");
        for (const char* name : {"misc", "My Photos", "A", "PHOTOGRAPHS"})
            b.addFolder(name, 1);
        for (const char* name : {"ab.txt", "a*b.txt", "Photo1.jpg", "song.mp3"})
            b.addFile(0, name);
        w->listResult(b.finish());
        return w;
    }
    static void search(BrowserWindow& w, const QString& text, bool folders)
    {
        w.controls().srchFolder->setText(text);
        QTest::mouseClick(folders ? w.controls().SearchFolders : w.controls().SearchFiles, Qt::LeftButton);
    }
    static QStringList lines(const BrowserWindow& w)
    {
        QStringList out;
        const QAbstractItemModel* m = w.controls().List[5]->model();
        for (int row = 0; row < m->rowCount(); ++row)
            out.append(m->index(row, 0).data().toString());
        return out;
    }
    static QString count(const BrowserWindow& w) { return w.controls().Label1[7]->text(); }
    static QPoint resultPoint(const BrowserWindow& w, int row)
    {
        QListView* list5 = w.controls().List[5];
        return list5->visualRect(list5->model()->index(row, 0)).center();
    }
    static void clickResult(const BrowserWindow& w, int row)
    {
        QTest::mouseClick(w.controls().List[5]->viewport(), Qt::LeftButton, {}, resultPoint(w, row));
    }
    static void doubleClickResult(const BrowserWindow& w, int row)
    {
        clickResult(w, row);
        QTest::mouseDClick(w.controls().List[5]->viewport(), Qt::LeftButton, {}, resultPoint(w, row));
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init()
    {
        m_fakes.messages.calls.clear();
        m_fakes.programEnd.count = 0;
        m_fakes.shell.opened.clear();
        m_fakes.shell.located.clear();
        m_fakes.player.urls.clear();
    }

    void flavours_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::newRow("ShortBrowser") << false;
        QTest::newRow("LongBrowser") << true;
    }

    void searching_data() { flavours_data(); }
    void searching()
    {
        QFETCH(bool, longVersion);
        auto w = window(longVersion);
        QFrame* frame = w->controls().Frame1;
        QVERIFY(frame->isHidden());
        QTest::mouseClick(w->controls().Label9Com, Qt::LeftButton);
        QVERIFY(frame->isVisible());

        search(*w, QStringLiteral("photo"), true);
        QCOMPARE(lines(*w), QStringList({QStringLiteral("# 00002. My Photos (1kB)"),
                                         QStringLiteral("# 00004. PHOTOGRAPHS (1kB)")}));
        QCOMPARE(count(*w), QStringLiteral(" Folders Found: 2 "));
        QVERIFY(w->search().searchingFolders());
        // The grid is walked row by row and stays on its last row.
        if (longVersion)
            QCOMPARE(w->panes().currentRow(2), 3);

        search(*w, QStringLiteral("a*"), false);
        QCOMPARE(lines(*w), QStringList{QStringLiteral("# 00002. a*b.txt")});
        QCOMPARE(count(*w), QStringLiteral(" Files Found: 1 "));
        QVERIFY(!w->search().searchingFolders());
        if (longVersion)
            QCOMPARE(w->panes().currentRow(4), 3);

        search(*w, QStringLiteral("zzz"), true);
        QVERIFY(lines(*w).isEmpty());
        QCOMPARE(count(*w), QStringLiteral(" Folders Found: 0 "));

        // Results outlive a new scan; an empty search string clears them without a count.
        search(*w, QStringLiteral("A"), true);
        QCOMPARE(lines(*w).size(), 2);
        ScanResultBuilder other("/e");
        other.addFile(0, "only");
        w->listResult(other.finish());
        QCOMPARE(lines(*w).size(), 2);
        search(*w, QString(), false);
        QVERIFY(lines(*w).isEmpty());
        QCOMPARE(count(*w), QString());
        QVERIFY(!w->search().searchingFolders());

        QTest::mouseClick(w->controls().Label9Com, Qt::LeftButton);
        QVERIFY(frame->isHidden());
        QVERIFY(m_fakes.messages.calls.isEmpty());
    }

    void resultClicks_data() { flavours_data(); }
    void resultClicks()
    {
        QFETCH(bool, longVersion);
        auto w = window(longVersion);
        QTest::mouseClick(w->controls().Label9Com, Qt::LeftButton);

        search(*w, QStringLiteral("photo"), true);
        clickResult(*w, 1);
        QCOMPARE(w->panes().currentRow(1), 3);
        QCOMPARE(w->panes().currentRow(2), 3);
        QCOMPARE(w->controls().Text1->text(), QStringLiteral("/d/PHOTOGRAPHS"));
        // ShortBrowser's list boxes run their click handling when selected.
        QCOMPARE(w->controls().Label1[5]->text(), longVersion ? QStringLiteral("Selected: 1")
                                                              : QStringLiteral("Selected: 4"));
        w->controls().Option1->setChecked(true);
        doubleClickResult(*w, 0);
        QCOMPARE(m_fakes.shell.opened, QStringList{QStringLiteral("/d/My Photos")});
        w->controls().Option2->setChecked(true);
        doubleClickResult(*w, 0);
        QCOMPARE(m_fakes.shell.located, QStringList{QStringLiteral("/d/My Photos")});

        search(*w, QStringLiteral(".mp3"), false);
        const int closes = m_fakes.player.closes;
        doubleClickResult(*w, 0);
        QCOMPARE(w->panes().currentRow(3), 3);
        QCOMPARE(w->panes().currentRow(4), 3);
        QCOMPARE(w->controls().Text2->text(), QStringLiteral("/d/song.mp3"));
        QCOMPARE(m_fakes.shell.located.last(), QStringLiteral("/d/song.mp3"));
        QCOMPARE(m_fakes.player.closes, closes + 1);
        w->controls().Option1->setChecked(true);
        doubleClickResult(*w, 0);
        QCOMPARE(m_fakes.player.urls, QStringList{QStringLiteral("/d/song.mp3")});
        QVERIFY(w->controls().playerFrame->isVisible());
        search(*w, QStringLiteral("ab"), false);
        doubleClickResult(*w, 0);
        QCOMPARE(m_fakes.shell.opened.last(), QStringLiteral("/d/ab.txt"));
        QVERIFY(w->controls().playerFrame->isHidden());
        QVERIFY(m_fakes.messages.calls.isEmpty());
    }

    // Serials are read back into 16 bits from five characters of the line.
    void serials()
    {
        auto w = std::make_unique<BrowserWindow>(flavour(true), m_fakes.services(), nullptr);
        w->show();
        QTest::mouseClick(w->controls().Label9Com, Qt::LeftButton);
        ScanResultBuilder b("/big");
        for (int i = 0; i < 100'005; ++i) {
            const QByteArray name = i == 39'999 ? QByteArray("needle")
                                    : i == 100'004 ? QByteArray("six")
                                                   : "f" + QByteArray::number(i);
            b.addFile(0, std::string_view(name.constData(), size_t(name.size())));
        }
        w->listResult(b.finish());
        QTest::mouseClick(w->controls().Label9Com, Qt::LeftButton);

        search(*w, QStringLiteral("six"), false);
        QCOMPARE(lines(*w), QStringList{QStringLiteral("# 100005. six")});
        clickResult(*w, 0);
        QCOMPARE(w->panes().currentRow(3), 9999);
        QCOMPARE(w->controls().Text2->text(), QStringLiteral("/big/f9999"));
        QVERIFY(m_fakes.messages.calls.isEmpty());

        search(*w, QStringLiteral("needle"), false);
        QCOMPARE(lines(*w), QStringList{QStringLiteral("# 40000. needle")});
        clickResult(*w, 0);
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        QCOMPARE(m_fakes.messages.calls[0].text, QStringLiteral("Run-time error '6':\r\n\r\nOverflow"));
        QCOMPARE(m_fakes.programEnd.count, 1);

        // An old result whose serial the new lists do not reach.
        search(*w, QStringLiteral("f30000"), false);
        ScanResultBuilder small("/e");
        small.addFile(0, "x");
        w->listResult(small.finish());
        clickResult(*w, 0);
        QCOMPARE(m_fakes.messages.calls.size(), 2);
        QCOMPARE(m_fakes.messages.calls[1].text,
                 QStringLiteral("Run-time error '381':\r\n\r\nInvalid property array index"));
        QCOMPARE(m_fakes.messages.calls[1].style, 16);
    }
};

QTEST_MAIN(TestSearch)
#include "tst_search.moc"
