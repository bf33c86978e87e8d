// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListerRun.h"
#include "TreeBuilder.h"

#include <QTest>

// quillary-catalogue as a user runs it: HOME of its own, so the catalogue is the collection folder's.
class TestCatalogueCommand : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

    using Run = ListerRun;
    Run run(const QStringList& args, const QString& program = QStringLiteral(QUILLARY_CATALOGUE))
    {
        return ListerRun::of(program, m_home.path(), args);
    }

private slots:
    void init()
    {
        // Each case starts from an empty catalogue, so scan ids start at 1.
        for (const char* suffix : {"", "-wal", "-shm"})
            QFile::remove(m_home.path() + QStringLiteral("/Quillbox/catalogue.sqlite") + QLatin1String(suffix));
    }

    void exitCodes_data()
    {
        QTest::addColumn<QString>("args");
        QTest::addColumn<int>("code");
        const auto row = [](const char* tag, const char* args, int code) {
            QTest::newRow(tag) << QString::fromUtf8(args) << code;
        };
        row("options but no command", "--tsv", 2);
        row("unknown command", "frobnicate", 2);
        row("find without text", "find", 2);
        row("bad size", "find --min-size lots x", 2);
        row("bad date", "find --newer yesterday x", 2);
        row("option of another command", "scans --encoding cp1252", 2);
        row("add a file", "add /etc/hostname", 2);
        row("nothing found", "find nothing-like-it", 1);
        row("unknown scan", "remove 999", 3);
        row("diff of unknown scans", "diff 1 2", 3);
        row("import of no listing", "import /etc/hostname", 3);
        row("help", "--help", 0);
    }

    void exitCodes()
    {
        QFETCH(QString, args);
        QFETCH(int, code);
        const Run r = run(words(args.toUtf8().constData()));
        QCOMPARE(r.code, code);
        if (code == 2)
            QVERIFY(r.err.contains("Usage: quillary-catalogue"));
    }

    void findsARecordedTreeAfterItIsGone()
    {
        TreeBuilder t;
        t.file("tree/docs/Report 2024.txt", 1500);
        t.file("tree/docs/notes\nline.txt", 3); // a line break in a name: -0 keeps it whole
        t.file("tree/x\xff.bin", 9);
        QVERIFY(TreeBuilder::setTime(t.path("tree/docs/Report 2024.txt"), 1700000000));
        const QString live = QFile::decodeName(t.path("tree"));

        Run r = run({QStringLiteral("add"), live});
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.startsWith("Recorded scan 1: 1 folders, 3 files, 1512 bytes"));

        // Offline: the folder is renamed away, the catalogue still finds what was in it.
        const QString away = QFile::decodeName(t.root()) + QStringLiteral("/moved");
        QVERIFY(QDir().rename(live, away));
        const QByteArray livePath = QFile::encodeName(live);

        r = run(words("find --tsv report"));
        QCOMPARE(r.code, 0);
        QList<QByteArray> f = r.out.trimmed().split('\t');
        QCOMPARE(f.size(), 7);
        QCOMPARE(f.mid(0, 3) + f.mid(5, 1),
                 QByteArrayList({livePath + "/docs/Report 2024.txt", "1500", "2023-11-14T22:13:20Z", "1"}));
        QVERIFY(f[6].endsWith('Z'));

        r = run(words("find -0 --files") << QString());
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.endsWith('\0'));
        QList<QByteArray> records = r.out.split('\0');
        records.removeLast();
        QCOMPARE(records.size(), 3);
        for (const QByteArray& start : {livePath + "/docs/notes\nline.txt\t3\t", livePath + "/x\xff.bin\t9\t"})
            QVERIFY(std::any_of(records.begin(), records.end(),
                                [&](const QByteArray& rec) { return rec.startsWith(start); }));

        r = run(words("find --min-size 1k") << QString());
        QCOMPARE(r.code, 0);
        QList<QByteArray> lines = r.out.trimmed().split('\n');
        QCOMPARE(lines.size(), 3); // header, the docs folder, the report
        QVERIFY(lines[0].startsWith("NAME"));
        QVERIFY(lines[0].contains("MOUNTED"));
        QVERIFY(lines[2].startsWith("Report 2024.txt"));
        QVERIFY(lines[2].endsWith("no"));

        r = run(words("scans --tsv"));
        QCOMPARE(r.code, 0);
        f = r.out.trimmed().split('\t');
        QCOMPARE(f.size(), 11);
        QCOMPARE(f.mid(0, 1) + f.mid(5), QByteArrayList({"1", livePath, "3", "1", "1512", "yes", "no"}));
    }

    void listerRecordsWhatItWrote()
    {
        TreeBuilder t;
        t.file("sub/seen.txt", 4);
        const QString list = QStringLiteral(QUILLARY_LIST);
        const QString root = QFile::decodeName(t.root());
        QCOMPARE(run(words("--no-catalogue --name skip") << root, list).code, 0);
        QCOMPARE(run(words("find seen")).code, 1);
        QCOMPARE(run(words("--name kept") << root, list).code, 0);
        QCOMPARE(run(words("scans --tsv")).out.count('\n'), 1);
        QCOMPARE(run(words("find seen")).code, 0);
    }

    void aCatalogueThatCannotBeWrittenNeverFailsTheListing()
    {
        TreeBuilder t;
        t.file("a.txt", 1);
        const QString catalogue = m_home.path() + QStringLiteral("/Quillbox/catalogue.sqlite");
        QFile::remove(catalogue);
        QVERIFY(QDir().mkpath(catalogue)); // a folder where the database should be
        const Run r = run(words("--name blocked") << QFile::decodeName(t.root()), QStringLiteral(QUILLARY_LIST));
        QVERIFY(QDir(catalogue).removeRecursively());
        QCOMPARE(r.code, 0);
        QVERIFY(r.err.contains("the scan was not recorded in the catalogue"));
        QVERIFY(QFile::exists(m_home.path() + QStringLiteral("/Quillbox/Files List - blocked.txt")));
    }

    void aStartFolderPastPathMaxRecordedByItsRealPath()
    {
        // Given through a link, a start folder longer than PATH_MAX is recorded under its one absolute path, which
        // diff finds again. (That path, from a current folder as deep too, is the walk's and the lister's tests'.)
        TreeBuilder t;
        const QByteArrayList names = TreeBuilder::longNames(40);
        const int bottom = t.chain(names);
        QVERIFY(bottom >= 0);
        TreeBuilder::fileAt(bottom, "f.txt", 7);
        ::close(bottom);
        QCOMPARE(::symlink(names[0].constData(), t.path("hop").constData()), 0);
        const QByteArray start = t.root() + '/' + names.join('/');
        for (int i = 0; i < 2; ++i)
            QCOMPARE(run({QStringLiteral("add"), QFile::decodeName(t.path("hop/" + names.mid(1).join('/')))}).code, 0);
        const Run scans = run(words("scans --tsv"));
        QCOMPARE(scans.out.count('\n'), 2);
        for (const QByteArray& line : scans.out.trimmed().split('\n'))
            QCOMPARE(line.split('\t').value(5), start);
        const Run diff = run(words("diff --tsv") << QFile::decodeName(start));
        QCOMPARE(diff.code, 0);
        QCOMPARE(diff.out, QByteArray("totals\t0\t0\t0\t0\t0\n"));
    }

    void diffShowsAChangedFile()
    {
        TreeBuilder t;
        t.file("keep.txt", 10);
        t.file("grow.txt", 10);
        t.file("old.txt", 1);
        QCOMPARE(run({QStringLiteral("add"), QFile::decodeName(t.root())}).code, 0);
        t.file("grow.txt", 25);
        t.file("new.txt", 2);
        QVERIFY(QFile::remove(QFile::decodeName(t.path("old.txt"))));
        QCOMPARE(run({QStringLiteral("add"), QFile::decodeName(t.root())}).code, 0);

        Run r = run(words("diff --tsv") << QFile::decodeName(t.root()));
        QCOMPARE(r.code, 0);
        QList<QByteArray> lines = r.out.trimmed().split('\n');
        for (QByteArray& l : lines) // the times are the files' own, not fixed
            l = l.split('\t').mid(0, 4).join('\t');
        QCOMPARE(lines,
                 QList<QByteArray>({"added\t" + t.path("new.txt") + "\t\t2", "removed\t" + t.path("old.txt") + "\t1\t",
                                    "changed\t" + t.path("grow.txt") + "\t10\t25", "totals\t1\t1\t1"}));

        r = run(words("diff 1 2"));
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.startsWith("CHANGE"));
        QVERIFY(r.out.contains("1 files added, 1 removed, 1 changed; 0 folders changed in size; 16 bytes difference"));
    }
};

QTEST_GUILESS_MAIN(TestCatalogueCommand)
#include "tst_cataloguecommand.moc"
