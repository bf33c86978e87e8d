// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/DesktopShellService.h"

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>

// The Linux shell service standing in for the shell: the opener and the file manager are stand-ins made here,
// so what was asked of them and the one notice on a failure can be seen.
class TestDesktopShellService : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    // An opener that notes its argument and ends with `exitCode`.
    QString opener(int exitCode)
    {
        const QString path = m_dir.filePath(QStringLiteral("opener") + QString::number(exitCode));
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly))
            return {};
        f.write("#!/bin/sh\nprintf '%s\\n' \"$1\" >> '" + QFile::encodeName(asked()) + "'\nexit " +
                QByteArray::number(exitCode) + "\n");
        f.close();
        f.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }
    QString asked() const { return m_dir.filePath(QStringLiteral("asked")); }
    QByteArray askedText() const
    {
        QFile f(asked());
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    static QList<QMessageBox*> notices()
    {
        QList<QMessageBox*> out;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->objectName() == QLatin1String("ShellNotice") && w->isVisible())
                out.append(static_cast<QMessageBox*>(w));
        return out;
    }

    DesktopShellService::Setup setup(const QString& openerPath)
    {
        // A bus name nobody owns: no file manager answers, on any machine.
        return {openerPath, QStringLiteral("org.quillary.test.NoFileManager")};
    }

private slots:
    void init()
    {
        QFile::remove(asked());
        qDeleteAll(notices());
    }

    // The opener is handed the item as a URL; when it is missing or fails, one notice that is not modal names
    // the item and the reason.
    void open_data()
    {
        QTest::addColumn<int>("exitCode");   // -1: the opener is missing
        QTest::addColumn<QString>("reason"); // empty: no notice
        QTest::newRow("opened") << 0 << QString();
        QTest::newRow("opener missing") << -1 << QStringLiteral("is not installed");
        QTest::newRow("no program for it") << 3 << QStringLiteral("No program that opens it is installed.");
        QTest::newRow("the program failed") << 4 << QStringLiteral("ended with 4");
    }
    void open()
    {
        QFETCH(int, exitCode);
        QFETCH(QString, reason);
        DesktopShellService shell(setup(exitCode < 0 ? m_dir.filePath(QStringLiteral("none")) : opener(exitCode)));
        const QString item = m_dir.filePath(QStringLiteral("x y.txt"));
        QVERIFY(shell.open(item));
        if (reason.isEmpty()) {
            QTRY_COMPARE(askedText(), "file://" + QFile::encodeName(m_dir.path()) + "/x%20y.txt\n");
            QVERIFY(notices().isEmpty());
            return;
        }
        QTRY_COMPARE(notices().size(), 1);
        const QString text = notices().first()->text();
        QVERIFY2(text.contains(QLatin1Char('"') + item + QLatin1Char('"')), qPrintable(text));
        QVERIFY2(text.contains(reason), qPrintable(text));
        QVERIFY(!notices().first()->isModal());
    }

    // No file manager answers: the containing folder is opened instead, and only when that fails too is there
    // a notice, naming the item.
    void locateFallsBackToTheFolder()
    {
        {
            DesktopShellService shell(setup(opener(0)));
            QVERIFY(shell.locate(QStringLiteral("/tmp/folder/song.mp3")));
            // The stand-in makes its note before it writes it: wait for the whole line.
            QTRY_COMPARE(askedText(), QByteArray("file:///tmp/folder\n"));
            QVERIFY(notices().isEmpty());
        }
        DesktopShellService shell(setup(opener(4)));
        QVERIFY(shell.locate(QStringLiteral("/tmp/folder/song.mp3")));
        QTRY_COMPARE(notices().size(), 1);
        QVERIFY(notices().first()->text().contains(QStringLiteral("\"/tmp/folder/song.mp3\"")));
    }
};

QTEST_MAIN(TestDesktopShellService)
#include "tst_desktopshellservice.moc"
