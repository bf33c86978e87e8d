// SPDX-License-Identifier: GPL-3.0-or-later

#include "volumes/VolumeService.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

// Which mounts the drive selector offers.
class TestVolumeService : public QObject
{
    Q_OBJECT

private slots:
    void shownMounts_data()
    {
        QTest::addColumn<QByteArray>("fileSystemType");
        QTest::addColumn<QString>("entry"); // a folder or file made in a temporary folder, or an absolute path
        QTest::addColumn<bool>("shown");
        QTest::newRow("a disk's folder") << QByteArray("ext4") << QStringLiteral("folder") << true;
        QTest::newRow("a single file bind-mounted") << QByteArray("ext4") << QStringLiteral("hosts") << false;
        QTest::newRow("a mount point that is gone") << QByteArray("ext4") << QStringLiteral("gone") << false;
        QTest::newRow("a kernel file system") << QByteArray("proc") << QStringLiteral("/proc") << false;
    }

    void shownMounts()
    {
        QFETCH(QByteArray, fileSystemType);
        QFETCH(QString, entry);
        QFETCH(bool, shown);
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("folder")));
        QFile hosts(dir.filePath(QStringLiteral("hosts")));
        QVERIFY(hosts.open(QIODevice::WriteOnly));
        const QString root = entry.startsWith(QLatin1Char('/')) ? entry : dir.filePath(entry);
        QCOMPARE(SystemVolumeService::shown(fileSystemType, root), shown);
    }
};

QTEST_GUILESS_MAIN(TestVolumeService)
#include "tst_volumeservice.moc"
