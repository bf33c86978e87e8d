// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListerRun.h"
#include "TreeBuilder.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

// Saves that fail for real, through quillary-list: whatever fails, every listing that was there before is
// still there, byte for byte, and the user is told why.
class TestSaveFaults : public QObject
{
    Q_OBJECT

    TreeBuilder m_tree;
    QTemporaryDir m_home;
    QString box() const { return m_home.path() + QStringLiteral("/Quillbox"); }

    ListerRun list(const QStringList& prefix, const QStringList& args)
    {
        return ListerRun(m_home.path(), args, prefix);
    }

    QMap<QString, QByteArray> listings() const
    {
        QMap<QString, QByteArray> out;
        for (const QString& name : QDir(box()).entryList(QDir::Files | QDir::Hidden)) {
            QFile f(box() + QLatin1Char('/') + name);
            if (f.open(QIODevice::ReadOnly))
                out.insert(name, f.readAll());
        }
        return out;
    }

private slots:
    void initTestCase()
    {
        for (int i = 0; i < 3000; ++i)
            m_tree.file("folder " + QByteArray::number(i % 30) + "/a rather long file name number " +
                        QByteArray::number(i));
        ::chmod(m_tree.root().constData(), 0755);
        ::chmod(QFile::encodeName(m_home.path()).constData(), 0755);
        // A first set, on a tree half the size, to be kept intact by every failing save below.
        const ListerRun p =
            list({}, {QStringLiteral("--name"), QStringLiteral("keep"), QFile::decodeName(m_tree.root())});
        QCOMPARE(p.code, 0);
        m_tree.file("one more/file");
    }

    void diskFullPartWay()
    {
        const auto before = listings();
        // A file-size limit of 20 kB: the bigger listings cannot be written whole.
        const ListerRun p = list(
            {QStringLiteral("/bin/bash"), QStringLiteral("-c"), QStringLiteral("ulimit -f 20; exec \"$0\" \"$@\"")},
            {QStringLiteral("--yes"), QStringLiteral("--name"), QStringLiteral("keep"),
             QFile::decodeName(m_tree.root())});
        QCOMPARE(p.status, QProcess::NormalExit);
        QCOMPARE(p.code, 3);
        QVERIFY2(p.err.contains("61\nDisk full"), "the disk-full box");
        const auto after = listings();
        QCOMPARE(after.keys(), before.keys()); // no temporary file left behind
        // What was written before the failure is new; the rest is exactly as it was.
        QCOMPARE(after[QStringLiteral("Files List WithPath keep.txt")],
                 before[QStringLiteral("Files List WithPath keep.txt")]);
    }

    void targetMadeAFolder()
    {
        const auto before = listings();
        QVERIFY(QDir().mkpath(box() + QStringLiteral("/Files List - blocked.txt")));
        const ListerRun p =
            list({}, {QStringLiteral("--name"), QStringLiteral("blocked"), QFile::decodeName(m_tree.root())});
        QCOMPARE(p.code, 3);
        QVERIFY(p.err.contains("Change the SAVE Location. Access denied to Save in the application location."));
        // Files 1 and 2 of the new set were written before file 4 failed, and stay; nothing else changed.
        const auto after = listings();
        for (auto it = before.begin(); it != before.end(); ++it)
            QCOMPARE(after.value(it.key()), it.value());
        QCOMPARE(after.size(), before.size() + 2);
        QVERIFY(after.contains(QStringLiteral("Folders List - blocked.txt")));
        QDir(box() + QStringLiteral("/Files List - blocked.txt")).removeRecursively();
    }

    void readOnlyCollectionFolder()
    {
        // As an ordinary user; root may write anywhere.
        QStringList prefix;
        if (::geteuid() == 0) {
            const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
            if (setpriv.isEmpty())
                QSKIP("running as root without setpriv");
            prefix = {setpriv, QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                      QStringLiteral("--clear-groups"), QStringLiteral("--")};
        }
        ::chmod(QFile::encodeName(box()).constData(), 0755);
        const auto before = listings();
        const ListerRun p = list(prefix, {QStringLiteral("--yes"), QStringLiteral("--name"), QStringLiteral("keep"),
                                          QFile::decodeName(m_tree.root())});
        QCOMPARE(p.code, 3);
        QVERIFY(p.err.contains("Change the SAVE Location. Access denied to Save in the application location."));
        QCOMPARE(listings(), before);
    }
};

QTEST_GUILESS_MAIN(TestSaveFaults)
#include "tst_savefaults.moc"
