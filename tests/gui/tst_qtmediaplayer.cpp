// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/QtMediaPlayer.h"

#include <QFile>
#include <QMediaPlayer>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <cmath>

// The real player: a short WAV made here, played through Qt Multimedia, then stopped and let go.
class TestQtMediaPlayer : public QObject
{
    Q_OBJECT

private:
    // Half a second of a 440 Hz tone, 8 kHz mono 16-bit PCM.
    static QByteArray wav()
    {
        constexpr int rate = 8000;
        constexpr int samples = rate / 2;
        QByteArray pcm(samples * 2, Qt::Uninitialized);
        for (int i = 0; i < samples; ++i)
            qToLittleEndian<qint16>(qint16(8000 * std::sin(2 * M_PI * 440 * i / rate)), pcm.data() + 2 * i);
        QByteArray out;
        auto u32 = [&out](quint32 v) { out.append(reinterpret_cast<const char*>(&v), 4); };
        auto u16 = [&out](quint16 v) { out.append(reinterpret_cast<const char*>(&v), 2); };
        out.append("RIFF");
        u32(quint32(36 + pcm.size()));
        out.append("WAVEfmt ");
        u32(16);
        u16(1);
        u16(1);
        u32(rate);
        u32(rate * 2);
        u16(2);
        u16(16);
        out.append("data");
        u32(quint32(pcm.size()));
        return out + pcm;
    }

private slots:
    void playsAndReleasesAWav()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("tone.wav"));
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(wav());
        f.close();

        QtMediaPlayer player;
        QWidget area;
        area.resize(200, 150);
        area.show();
        player.showIn(&area);
        QVERIFY(player.videoWidget());
        QCOMPARE(player.videoWidget()->parentWidget(), &area);
        player.showIn(&area); // the same area keeps its one video widget
        QCOMPARE(area.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly).size(), 1);

        QMediaPlayer* backend = player.backend();
        if (!backend->isAvailable())
            QSKIP("Qt Multimedia has no backend on this platform");
        player.setUrl(path);
        // The state says Playing even for what cannot be decoded; the position and status say what happens.
        QTRY_VERIFY_WITH_TIMEOUT(backend->position() > 0 || backend->mediaStatus() == QMediaPlayer::EndOfMedia ||
                                     backend->error() != QMediaPlayer::NoError,
                                 15000);
        if (backend->error() != QMediaPlayer::NoError)
            QSKIP(qPrintable(QStringLiteral("the media backend cannot play WAV here (are GStreamer's good plugins "
                                            "installed?): ") +
                             backend->errorString()));
        QVERIFY2(qAbs(backend->duration() - 500) <= 20, "the tone was decoded: it lasts half a second");
        QCOMPARE(backend->source().toLocalFile(), path);

        player.close();
        QCOMPARE(backend->playbackState(), QMediaPlayer::StoppedState);
        QVERIFY(backend->source().isEmpty());
    }
};

QTEST_MAIN(TestQtMediaPlayer)
#include "tst_qtmediaplayer.moc"
