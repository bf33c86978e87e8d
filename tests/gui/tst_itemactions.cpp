// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "actions/ItemActions.h"
#include "scan/ScanResultBuilder.h"

using namespace BrowserTestKit;

// Double-clicks on the folder and file panes of both windows: open, locate or play by the mode.
class TestItemActions : public QObject
{
    Q_OBJECT

private:
    FakeServices m_fakes;

    std::unique_ptr<BrowserWindow> listed(bool longVersion)
    {
        ScanResultBuilder b("/m");
        const std::uint32_t photos = b.addFolder("Photos", 3);
        const std::uint32_t music = b.addFolder("Music", 5);
        b.addFile(photos, "a.flac");
        for (const char* name : {"song.au", "SONG.AU", "MYWAV", "x.mpeg", "clip.m4v", "clip.mp4", "notes.xmp3"})
            b.addFile(music, name);
        return windowWith(m_fakes, longVersion, b.finish());
    }
    static void setOpen(BrowserWindow& w, bool open)
    {
        (open ? w.controls().mode.Option1 : w.controls().mode.Option2)->setChecked(true);
    }
    static int fileRow(const BrowserWindow& w, const QString& name)
    {
        const QStringList paths = entries(w, 3);
        for (int row = 0; row < paths.size(); ++row)
            if (paths[row].endsWith(u'/' + name))
                return row;
        return -1;
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { m_fakes.reset(); }

    void folders_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::addColumn<bool>("open");
        QTest::addColumn<QString>("expected");
        // ShortBrowser's folder-name click leaves the entry as shown, name and size, in the path box; its open
        // takes that box, its locate the folder-path list.
        QTest::newRow("Short, Open") << false << true << u"Music (5kB)"_s;
        QTest::newRow("Short, Locate") << false << false << u"/m/Music"_s;
        QTest::newRow("Long, Open") << true << true << u"/m/Music"_s;
        QTest::newRow("Long, Locate") << true << false << u"/m/Music"_s;
    }
    void folders()
    {
        QFETCH(bool, longVersion);
        QFETCH(bool, open);
        QFETCH(QString, expected);
        auto w = listed(longVersion);
        setOpen(*w, open);
        if (longVersion)
            w->panes().setCurrentRow(1, 0);
        doubleClickRow(*w, 2, 1);
        QCOMPARE(open ? m_fakes.shell.opened : m_fakes.shell.located, QStringList{expected});
        QVERIFY((open ? m_fakes.shell.located : m_fakes.shell.opened).isEmpty());
        QCOMPARE(m_fakes.player.closes, 0); // folders leave the player alone
        if (longVersion)
            QCOMPARE(w->panes().currentRow(1), 1);
    }

    // Which names play: the media keys against every pane, mode and window the name can be double-clicked in.
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
                    QTest::addRow("%s, pane %d, %s", w, n, name)
                        << longVersion << n << QString::fromLatin1(name) << true;
                for (const char* name : {"x.mpeg", "a.flac", "clip.m4v"})
                    QTest::addRow("%s, pane %d, %s", w, n, name)
                        << longVersion << n << QString::fromLatin1(name) << false;
            }
        }
    }
    void files()
    {
        QFETCH(bool, longVersion);
        QFETCH(int, pane);
        QFETCH(QString, name);
        QFETCH(bool, media);
        auto w = listed(longVersion);
        const int row = fileRow(*w, name);
        QVERIFY(row >= 0);
        const QString path = w->panes().text(3, row);
        QWidget* frame = w->controls().player.playerFrame;

        // A click on the name selects its path, whose click fills the path box: what opens or plays is the file
        // double-clicked, never the one selected before.
        setOpen(*w, true);
        doubleClickRow(*w, pane, row);
        QCOMPARE(w->controls().paths.Text2->text(), path);
        QCOMPARE(m_fakes.player.closes, 1);
        QCOMPARE(m_fakes.player.urls, media ? QStringList{path} : QStringList{});
        QCOMPARE(m_fakes.shell.opened, media ? QStringList{} : QStringList{path});
        QCOMPARE(frame->isVisible(), media);

        // Locate never plays, and stops what plays.
        m_fakes.reset();
        setOpen(*w, false);
        doubleClickRow(*w, pane, row);
        QCOMPARE(m_fakes.shell.located, QStringList{path});
        QVERIFY(m_fakes.player.urls.isEmpty() && m_fakes.shell.opened.isEmpty());
        QCOMPARE(m_fakes.player.closes, 1);
        QVERIFY(frame->isHidden());
    }

    void pathOfFilez()
    {
        auto w = listed(false);
        ItemActions& a = w->actions();
        setOpen(*w, true);
        // The key is the argument's, what plays is the path box's.
        w->controls().paths.Text2->setText(u"/elsewhere/film.avi"_s);
        QCOMPARE(a.pathOfFilez(u"/m/tune.WAV"_s), QString());
        QCOMPARE(a.fileName(), u"/tune.WAV"_s);
        QCOMPARE(m_fakes.player.urls, QStringList{u"/elsewhere/film.avi"_s});
        a.pathOfFilez(u"readme.txt"_s);
        QCOMPARE(a.fileName(), u"readme.txt"_s);
        QCOMPARE(m_fakes.shell.opened, QStringList{u"/elsewhere/film.avi"_s});
        // A name part of two letters keeps its separator in the key, so "/AU" is no media key.
        a.pathOfFilez(u"/AU"_s);
        QCOMPARE(m_fakes.shell.opened.size(), 2);
        setOpen(*w, false);
        a.pathOfFilez(u"/m/song.au"_s);
        QCOMPARE(m_fakes.shell.located, QStringList{u"/m/song.au"_s});
        QVERIFY(m_fakes.messages.calls.isEmpty());

        // Lengths were 16-bit.
        a.pathOfFilez(QString(32768, u'x'));
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"16|Run-time error '6':\r\n\r\nOverflow"_s});
        QCOMPARE(m_fakes.programEnd.count, 1);
        QCOMPARE(m_fakes.shell.located.size(), 1);
    }

    // The frame around the picture, both "Click to Close" labels, and a double-click on a file that does not
    // play, stop the player; a click on the picture itself does not.
    void playerFrameCloses_data() { addFlavours(); }
    void playerFrameCloses()
    {
        QFETCH(bool, longVersion);
        auto w = listed(longVersion);
        setOpen(*w, true);
        const int row = fileRow(*w, u"MYWAV"_s);
        ClickableFrame* frame = w->controls().player.playerFrame;
        doubleClickRow(*w, 3, row);
        QTest::mouseClick(w->controls().player.WindowsMediaPlayer1, Qt::LeftButton);
        QVERIFY(frame->isVisible());
        QTest::mouseClick(frame, Qt::LeftButton, {}, QPoint(2, frame->height() / 2));
        QVERIFY(frame->isHidden());
        for (ClickableLabel* label : w->controls().player.clickToClose) {
            doubleClickRow(*w, 3, row);
            QVERIFY(w->controls().player.playerFrame->isVisible());
            const int before = m_fakes.player.closes;
            QTest::mouseClick(label, Qt::LeftButton);
            QCOMPARE(m_fakes.player.closes, before + 1);
            QVERIFY(w->controls().player.playerFrame->isHidden());
        }
        doubleClickRow(*w, 3, row);
        const int before = m_fakes.player.closes;
        doubleClickRow(*w, 4, fileRow(*w, u"a.flac"_s));
        QCOMPARE(m_fakes.player.closes, before + 1);
        QVERIFY(w->controls().player.playerFrame->isHidden());
    }
};

QTEST_MAIN(TestItemActions)
#include "tst_itemactions.moc"
