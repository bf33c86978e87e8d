// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/NativeText.h"
#include "platform/QtMediaPlayer.h"

#include <QDataStream>
#include <QFile>
#include <QMediaPlayer>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// The real player: a short WAV made here, played through Qt Multimedia, then stopped and let go; what is not
// a file is never handed over, and what is not media fails without holding anything up.
class TestQtMediaPlayer : public QObject
{
    Q_OBJECT

private:
    // Half a second of silence, 8 kHz mono 16-bit PCM.
    static QByteArray wav()
    {
        constexpr quint32 rate = 8000, bytes = rate;
        QByteArray out;
        QDataStream s(&out, QIODevice::WriteOnly);
        s.setByteOrder(QDataStream::LittleEndian);
        s.writeRawData("RIFF", 4);
        s << quint32(36 + bytes);
        s.writeRawData("WAVEfmt ", 8);
        s << quint32(16) << quint16(1) << quint16(1) << rate << rate * 2 << quint16(2) << quint16(16);
        s.writeRawData("data", 4);
        s << bytes;
        return out + QByteArray(bytes, '\0');
    }

    // Writes `data` to the file named by the native bytes `name` inside `dir`; returns the path as the window
    // shows it.
    static QString writeNative(const QTemporaryDir& dir, const QByteArray& name, const QByteArray& data)
    {
        const QByteArray path = QFile::encodeName(dir.path()) + '/' + name;
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fd < 0)
            return {};
        const bool written = ::write(fd, data.constData(), size_t(data.size())) == data.size();
        ::close(fd);
        return written ? NativeText::toDisplay(path) : QString();
    }

    static void waitForOutcome(QMediaPlayer* backend)
    {
        // The state says Playing even for what cannot be decoded; the position and status say what happens.
        QTRY_VERIFY_WITH_TIMEOUT(backend->position() > 0 || backend->mediaStatus() == QMediaPlayer::EndOfMedia ||
                                     backend->mediaStatus() == QMediaPlayer::InvalidMedia ||
                                     backend->error() != QMediaPlayer::NoError,
                                 15000);
    }

private slots:
    void videoArea()
    {
        QtMediaPlayer player;
        QWidget area;
        area.resize(200, 150);
        area.show();
        player.showIn(&area);
        QVERIFY(player.videoWidget());
        QCOMPARE(player.videoWidget()->parentWidget(), &area);
        player.showIn(&area); // the same area keeps its one video widget
        QCOMPARE(area.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly).size(), 1);
    }

    void playsAndReleases_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("UTF-8 name") << QByteArray("sound.wav");
        QTest::newRow("name that is not UTF-8") << QByteArray("s\xF6und \xFF.wav");
    }

    void playsAndReleases()
    {
        QFETCH(QByteArray, name);
        QTemporaryDir dir;
        const QString path = writeNative(dir, name, wav());
        QVERIFY(!path.isEmpty());

        QtMediaPlayer player;
        QMediaPlayer* backend = player.backend();
        if (!backend->isAvailable())
            QSKIP("Qt Multimedia has no backend on this platform");
        player.setUrl(path);
        waitForOutcome(backend);
        if (backend->error() != QMediaPlayer::NoError && name == "sound.wav")
            QSKIP(qPrintable(QStringLiteral("the media backend cannot play WAV here (are GStreamer's good plugins "
                                            "installed?): ") +
                             backend->errorString()));
        QCOMPARE(backend->error(), QMediaPlayer::NoError);
        QVERIFY2(qAbs(backend->duration() - 500) <= 20, "the sound was decoded: it lasts half a second");

        player.close();
        QCOMPARE(backend->playbackState(), QMediaPlayer::StoppedState);
        QVERIFY(backend->source().isEmpty());
    }

    // A FIFO named like a song would block whoever opens it for reading until a writer comes: the player is
    // never given one. A file that is not media is given, fails, and the player can be closed after it.
    void refusesWhatIsNotAFileAndSurvivesWhatIsNotMedia()
    {
        QTemporaryDir dir;
        const QByteArray fifo = QFile::encodeName(dir.path()) + "/song.mp3";
        QCOMPARE(::mkfifo(fifo.constData(), 0644), 0);
        QtMediaPlayer player;
        QMediaPlayer* backend = player.backend();
        if (!backend->isAvailable())
            QSKIP("Qt Multimedia has no backend on this platform");
        player.setUrl(NativeText::toDisplay(fifo));
        QVERIFY(backend->source().isEmpty());
        QCOMPARE(backend->playbackState(), QMediaPlayer::StoppedState);

        const QString bad = writeNative(dir, "bad.mp3", QByteArray(4096, '\x5a'));
        player.setUrl(bad);
        waitForOutcome(backend);
        QVERIFY(backend->position() == 0);
        player.close();
        QVERIFY(backend->source().isEmpty());
    }
};

QTEST_MAIN(TestQtMediaPlayer)
#include "tst_qtmediaplayer.moc"
