#include "BrowserTestKit.h"

#include "actions/ItemActions.h"
#include "browser/ClickableFrame.h"
#include "browser/ClickableLabel.h"
#include "scan/ScanResultBuilder.h"

#include <QLineEdit>
#include <QRadioButton>
#include <QStandardPaths>

using namespace BrowserTestKit;

// Double-clicks on the folder and file panes of both windows: open, locate or play by the mode.
class TestItemActions : public QObject
{
    Q_OBJECT

private:
    FakeServices m_fakes;

    std::unique_ptr<BrowserWindow> window(bool longVersion)
    {
        auto w = std::make_unique<BrowserWindow>(flavour(longVersion), m_fakes.services(), nullptr);
        w->show();
        ScanResultBuilder b("/m");
        const std::uint32_t photos = b.addFolder("Photos", 3);
        const std::uint32_t music = b.addFolder("Music", 5);
        b.addFile(photos, "a.flac");
        for (const char* name : {"song.au", "SONG.AU", "MYWAV", "x.mpeg", "clip.m4v", "clip.mp4", "notes.xmp3"})
            b.addFile(music, name);
        w->listResult(b.finish());
        return w;
    }
    static void setOpen(BrowserWindow& w, bool open)
    {
        (open ? w.controls().Option1 : w.controls().Option2)->setChecked(true);
    }
    static void doubleClick(const BrowserWindow& w, int n, int row)
    {
        clickRow(w, n, row);
        QTest::mouseDClick(pane(w, n)->viewport(), Qt::LeftButton, {}, rowPoint(w, n, row));
    }
    static int fileRow(const BrowserWindow& w, const QString& name)
    {
        for (int row = 0; row < w.panes().rowCount(3); ++row)
            if (w.panes().text(3, row).endsWith(QLatin1Char('/') + name))
                return row;
        return -1;
    }
    void reset()
    {
        m_fakes.shell.opened.clear();
        m_fakes.shell.located.clear();
        m_fakes.player.urls.clear();
        m_fakes.player.closes = 0;
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init()
    {
        reset();
        m_fakes.messages.calls.clear();
        m_fakes.programEnd.count = 0;
    }

    void folders_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::addColumn<bool>("open");
        QTest::addColumn<QString>("expected");
        // ShortBrowser's folder-name click leaves the entry as shown, name and size, in the path box; its open
        // takes that box, its locate the folder-path list.
        QTest::newRow("Short, Open") << false << true << QStringLiteral("Music (5kB)");
        QTest::newRow("Short, Locate") << false << false << QStringLiteral("/m/Music");
        QTest::newRow("Long, Open") << true << true << QStringLiteral("/m/Music");
        QTest::newRow("Long, Locate") << true << false << QStringLiteral("/m/Music");
    }
    void folders()
    {
        QFETCH(bool, longVersion);
        QFETCH(bool, open);
        QFETCH(QString, expected);
        auto w = window(longVersion);
        setOpen(*w, open);
        if (longVersion)
            w->panes().setCurrentRow(1, 0);
        doubleClick(*w, 2, 1);
        QCOMPARE(open ? m_fakes.shell.opened : m_fakes.shell.located, QStringList{expected});
        QVERIFY((open ? m_fakes.shell.located : m_fakes.shell.opened).isEmpty());
        QCOMPARE(m_fakes.player.closes, 0); // folders leave the player alone
        if (longVersion)
            QCOMPARE(w->panes().currentRow(1), 1);
    }

    void files_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::addColumn<int>("pane");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("media");
        for (bool longVersion : {false, true}) {
            for (int n : {3, 4}) {
                const char* w = longVersion ? "Long" : "Short";
                for (const char* name : {"song.au", "SONG.AU", "MYWAV", "clip.mp4", "notes.xmp3"})
                    QTest::addRow("%s, pane %d, %s", w, n, name) << longVersion << n << QString::fromLatin1(name) << true;
                for (const char* name : {"x.mpeg", "a.flac", "clip.m4v"})
                    QTest::addRow("%s, pane %d, %s", w, n, name) << longVersion << n << QString::fromLatin1(name) << false;
            }
        }
    }
    void files()
    {
        QFETCH(bool, longVersion);
        QFETCH(int, pane);
        QFETCH(QString, name);
        QFETCH(bool, media);
        auto w = window(longVersion);
        const int row = fileRow(*w, name);
        QVERIFY(row >= 0);
        const QString path = w->panes().text(3, row);
        QWidget* frame = w->controls().playerFrame;

        // ShortBrowser's file-name click does not touch the path box, so its double-click opens or plays whatever
        // the box held (nothing yet), while the key still comes from the file's path.
        const QString target = !longVersion && pane == 4 ? QString() : path;
        setOpen(*w, true);
        doubleClick(*w, pane, row);
        QCOMPARE(w->controls().Text2->text(), target);
        QCOMPARE(m_fakes.player.closes, 1);
        QCOMPARE(m_fakes.player.urls, media ? QStringList{target} : QStringList{});
        QCOMPARE(m_fakes.shell.opened, media ? QStringList{} : QStringList{target});
        QCOMPARE(frame->isVisible(), media);

        // Locate never plays, and stops what plays.
        reset();
        setOpen(*w, false);
        doubleClick(*w, pane, row);
        QCOMPARE(m_fakes.shell.located, QStringList{path});
        QVERIFY(m_fakes.player.urls.isEmpty() && m_fakes.shell.opened.isEmpty());
        QCOMPARE(m_fakes.player.closes, 1);
        QVERIFY(frame->isHidden());
    }

    void pathOfFilez()
    {
        auto w = window(false);
        ItemActions& a = w->actions();
        setOpen(*w, true);
        // The key is the argument's, what plays is the path box's.
        w->controls().Text2->setText(QStringLiteral("/elsewhere/film.avi"));
        QCOMPARE(a.pathOfFilez(QStringLiteral("/m/tune.WAV")), QString());
        QCOMPARE(a.fileName(), QStringLiteral("/tune.WAV"));
        QCOMPARE(m_fakes.player.urls, QStringList{QStringLiteral("/elsewhere/film.avi")});
        a.pathOfFilez(QStringLiteral("readme.txt"));
        QCOMPARE(a.fileName(), QStringLiteral("readme.txt"));
        QCOMPARE(m_fakes.shell.opened, QStringList{QStringLiteral("/elsewhere/film.avi")});
        // A name part of two letters keeps its separator in the key, so "/AU" is no media key.
        a.pathOfFilez(QStringLiteral("/AU"));
        QCOMPARE(m_fakes.shell.opened.size(), 2);
        setOpen(*w, false);
        a.pathOfFilez(QStringLiteral("/m/song.au"));
        QCOMPARE(m_fakes.shell.located, QStringList{QStringLiteral("/m/song.au")});
        QVERIFY(m_fakes.messages.calls.isEmpty());

        // Lengths were 16-bit.
        a.pathOfFilez(QString(32768, QLatin1Char('x')));
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        QCOMPARE(m_fakes.messages.calls[0].text, QStringLiteral("Run-time error '6':\r\n\r\nOverflow"));
        QCOMPARE(m_fakes.messages.calls[0].style, 16);
        QCOMPARE(m_fakes.programEnd.count, 1);
        QCOMPARE(m_fakes.shell.located.size(), 1);
    }

    void playerFrameCloses_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::newRow("Short") << false;
        QTest::newRow("Long") << true;
    }
    void playerFrameCloses()
    {
        QFETCH(bool, longVersion);
        auto w = window(longVersion);
        setOpen(*w, true);
        const int row = fileRow(*w, QStringLiteral("MYWAV"));
        for (ClickableLabel* label : w->controls().clickToClose) {
            doubleClick(*w, 3, row);
            QVERIFY(w->controls().playerFrame->isVisible());
            const int before = m_fakes.player.closes;
            QTest::mouseClick(label, Qt::LeftButton);
            QCOMPARE(m_fakes.player.closes, before + 1);
            QVERIFY(w->controls().playerFrame->isHidden());
        }
        // A non-media double-click stops the player too.
        doubleClick(*w, 3, row);
        const int before = m_fakes.player.closes;
        doubleClick(*w, 4, fileRow(*w, QStringLiteral("a.flac")));
        QCOMPARE(m_fakes.player.closes, before + 1);
        QVERIFY(w->controls().playerFrame->isHidden());
    }
};

QTEST_MAIN(TestItemActions)
#include "tst_itemactions.moc"
