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
        b.addFile(music, "song.au");
        b.addFile(music, "MYWAV");
        return windowWith(m_fakes, longVersion, b.finish());
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

    // Every pane that takes a double-click, in both modes. What opens, plays or is located is the item under the
    // mouse, never the one selected before. ShortBrowser's folder-name click leaves the entry as shown, name and
    // size, in the path box, and its Open takes that box.
    void doubleClicks_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::addColumn<int>("pane");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("opened"); // what Open hands the shell, or the player for a media file
        for (bool longVersion : {false, true}) {
            const char* w = longVersion ? "Long" : "Short";
            QTest::addRow("%s, folder", w)
                << longVersion << 2 << u"Music"_s << (longVersion ? u"/m/Music"_s : u"Music (5kB)"_s);
            for (int n : {3, 4}) {
                QTest::addRow("%s, pane %d, media", w, n) << longVersion << n << u"MYWAV"_s << u"/m/Music/MYWAV"_s;
                QTest::addRow("%s, pane %d, other", w, n) << longVersion << n << u"a.flac"_s << u"/m/Photos/a.flac"_s;
            }
        }
    }
    void doubleClicks()
    {
        QFETCH(bool, longVersion);
        QFETCH(int, pane);
        QFETCH(QString, name);
        QFETCH(QString, opened);
        auto w = listed(longVersion);
        const bool folder = pane == 2, media = name == u"MYWAV"_s;
        const int row = folder ? 1 : fileRow(*w, name);
        const QString path = folder ? u"/m/Music"_s : w->panes().text(3, row);
        if (longVersion)
            w->panes().setCurrentRow(1, 0);

        setOpenMode(*w, true);
        doubleClickRow(*w, pane, row);
        QCOMPARE(media ? m_fakes.player.urls : m_fakes.shell.opened, QStringList{opened});
        QCOMPARE(m_fakes.player.urls.size() + m_fakes.shell.opened.size(), 1);
        QCOMPARE(m_fakes.player.closes, folder ? 0 : 1); // folders leave the player alone
        QCOMPARE(w->controls().player.playerFrame->isVisible(), media);
        if (longVersion && folder)
            QCOMPARE(w->panes().currentRow(1), 1);

        // Locate never plays, and stops what plays.
        m_fakes.reset();
        setOpenMode(*w, false);
        doubleClickRow(*w, pane, row);
        QCOMPARE(m_fakes.shell.located, QStringList{path});
        QVERIFY(m_fakes.player.urls.isEmpty() && m_fakes.shell.opened.isEmpty());
        QCOMPARE(m_fakes.player.closes, folder ? 0 : 1);
        QVERIFY(w->controls().player.playerFrame->isHidden());
    }

    // Which names play. The key is the argument's last three characters, what plays or opens is the path box's.
    void pathOfFilez_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("media");
        for (const char* name : {"song.au", "SONG.AU", "MYWAV", "clip.mp4", "notes.xmp3", "tune.WAV"})
            QTest::newRow(name) << QString::fromLatin1(name) << true;
        // A name part of two letters keeps its separator in the key, so "/AU" is no media key.
        for (const char* name : {"x.mpeg", "a.flac", "clip.m4v", "AU"})
            QTest::newRow(name) << QString::fromLatin1(name) << false;
    }
    void pathOfFilez()
    {
        QFETCH(QString, name);
        QFETCH(bool, media);
        auto w = listed(false);
        ItemActions& a = w->actions();
        setOpenMode(*w, true);
        w->controls().paths.Text2->setText(u"/elsewhere/film"_s);
        QCOMPARE(a.pathOfFilez(u"/m/"_s + name), QString());
        QCOMPARE(a.fileName(), u'/' + name);
        QCOMPARE(media ? m_fakes.player.urls : m_fakes.shell.opened, QStringList{u"/elsewhere/film"_s});
        QCOMPARE(m_fakes.player.urls.size() + m_fakes.shell.opened.size(), 1);

        // Lengths were 16-bit.
        a.pathOfFilez(QString(32768, u'x'));
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"16|Run-time error '6':\r\n\r\nOverflow"_s});
        QCOMPARE(m_fakes.programEnd.count, 1);
    }

    // The frame around the picture and both "Click to Close" labels stop the player; a click on the picture itself
    // does not. A double-click on a file that does not play stops it too (doubleClicks).
    void playerFrameCloses_data() { addFlavours(); }
    void playerFrameCloses()
    {
        QFETCH(bool, longVersion);
        auto w = listed(longVersion);
        setOpenMode(*w, true);
        const PlayerControls& player = w->controls().player;
        const int row = fileRow(*w, u"MYWAV"_s);
        doubleClickRow(*w, 3, row);
        QTest::mouseClick(player.WindowsMediaPlayer1, Qt::LeftButton);
        QVERIFY(player.playerFrame->isVisible());
        QTest::mouseClick(player.playerFrame, Qt::LeftButton, {}, QPoint(2, player.playerFrame->height() / 2));
        QVERIFY(player.playerFrame->isHidden());
        for (ClickableLabel* label : player.clickToClose) {
            doubleClickRow(*w, 3, row);
            QVERIFY(player.playerFrame->isVisible());
            const int before = m_fakes.player.closes;
            QTest::mouseClick(label, Qt::LeftButton);
            QCOMPARE(m_fakes.player.closes, before + 1);
            QVERIFY(player.playerFrame->isHidden());
        }
    }
};

QTEST_MAIN(TestItemActions)
#include "tst_itemactions.moc"
