// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListerRun.h"
#include "TreeBuilder.h"

#include <QDir>
#include <QProcess>
#include <QTest>

namespace {

} // namespace

class TestListCommand : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

    ListerRun list(const QStringList& args) { return ListerRun(m_home.path(), args); }
    QString box() const { return m_home.path() + QStringLiteral("/Quillbox"); }

private slots:
    void listsAndWritesTheFourFiles()
    {
        TreeBuilder t;
        t.file("A/a.txt", 2048);
        t.file("top.txt");
        const QString root = QFile::decodeName(t.root());
        ListerRun r = list({root, QStringLiteral("--name"), QStringLiteral("mine")});
        QCOMPARE(r.code, 0);
        const QList<QByteArray> out = r.out.split('\n');
        QCOMPARE(out[0], QByteArray("Total Folders: 1"));
        QCOMPARE(out[1], QByteArray("Total Files: 2"));
        QVERIFY(QRegularExpression(QStringLiteral("^Elapsed time: [0-9.]+ sec$"))
                    .match(QString::fromUtf8(out[2]))
                    .hasMatch());
        QVERIFY(r.out.contains("Following 4 Text Files created & saved successfully:\n"));
        for (const char* name : {"Folders List WithPath mine.txt", "Folders List - mine.txt",
                                 "Files List WithPath mine.txt", "Files List - mine.txt"}) {
            const QString path = box() + QLatin1Char('/') + QLatin1String(name);
            QVERIFY2(r.out.contains(path.toUtf8()), name);
            QVERIFY(QFile::exists(path));
        }
        QFile f(box() + QStringLiteral("/Files List - mine.txt"));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray text = f.readAll();
        QVERIFY(text.contains("\r\nSOURCE: "));
        QVERIFY(text.contains("\r\nParent Folder: " + t.root() +
                              "\r\nLIST OF ALL FILES (2):\r\n\r\na.txt\r\ntop.txt\r\n\r\n"));

        // Again: refused without --yes, replaced with it.
        r = list({root, QStringLiteral("--name"), QStringLiteral("mine")});
        QCOMPARE(r.code, 1);
        QVERIFY(r.err.contains("Folder List not saved, recommended to try again."));
        r = list({QStringLiteral("--yes"), QStringLiteral("--name"), QStringLiteral("mine"), root});
        QCOMPARE(r.code, 0);

        // The default name is the folder's own; --out writes elsewhere.
        const QString elsewhere = m_home.path() + QStringLiteral("/out/deeper");
        r = list({root, QStringLiteral("--out"), elsewhere});
        QCOMPARE(r.code, 0);
        QVERIFY(QFile::exists(elsewhere + QStringLiteral("/Files List - ") + QFileInfo(root).fileName() +
                              QStringLiteral(".txt")));
    }

    void searchFromTheCommandLine()
    {
        TreeBuilder t;
        t.file("My Photos/a.JPG", 3072);
        t.file("PHOTOGRAPHS/b.jpg");
        t.file("music/photo.mp3");
        const QString root = QFile::decodeName(t.root());
        ListerRun r = list({QStringLiteral("--search"), QStringLiteral("photo"), QStringLiteral("--in"),
                            QStringLiteral("folders"), root});
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, QByteArray("# 00002. My Photos (3kB)\n# 00003. PHOTOGRAPHS (0kB)\n Folders Found: 2 \n"));
        r = list({QStringLiteral("--search"), QStringLiteral(".JPG"), root});
        QCOMPARE(r.out, QByteArray("# 00002. a.JPG\n# 00003. b.jpg\n Files Found: 2 \n"));
        r = list({QStringLiteral("--search"), QString(), root});
        QCOMPARE(r.out, QByteArray());
        r = list(
            {QStringLiteral("--search"), QStringLiteral("x"), QStringLiteral("--in"), QStringLiteral("rows"), root});
        QCOMPARE(r.code, 2);
        QVERIFY(
            !QDir(box()).exists(QStringLiteral("Files List - ") + QFileInfo(root).fileName() + QStringLiteral(".txt")));
    }

    void badInput()
    {
        TreeBuilder t;
        t.file("plain.txt");
        const QString root = QFile::decodeName(t.root());
        const QStringList names = QDir(box()).entryList(QDir::Files);
        ListerRun r = list({});
        QCOMPARE(r.code, 2);
        QVERIFY(r.err.contains("no FOLDER"));
        r = list({root + QStringLiteral("/nope")});
        QCOMPARE(r.code, 2);
        QVERIFY(r.err.contains("no such folder"));
        r = list({root + QStringLiteral("/plain.txt")});
        QCOMPARE(r.code, 2);
        QVERIFY(r.err.contains("not a folder"));
        r = list({QStringLiteral("--frobnicate"), root});
        QCOMPARE(r.code, 2);
        QVERIFY(r.err.contains("unknown option --frobnicate"));
        r = list({root, QStringLiteral("--name")});
        QCOMPARE(r.code, 2);
        QCOMPARE(QDir(box()).entryList(QDir::Files), names); // nothing written by any of these

        // A name holding a path separator takes the save's own error path.
        r = list({root, QStringLiteral("--name"), QStringLiteral("a/b")});
        QCOMPARE(r.code, 3);
        QCOMPARE(r.err, QByteArray("Invalid file name, choose different file name.\n76\nPath not found\n"));

        r = list({QStringLiteral("--help")});
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.startsWith("Usage: quillary-list [--short] [--name NAME] [--out DIR] [--yes] FOLDER"));
    }
};

QTEST_GUILESS_MAIN(TestListCommand)
#include "tst_listcommand.moc"
