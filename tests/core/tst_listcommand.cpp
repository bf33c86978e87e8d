// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListerRun.h"
#include "TreeBuilder.h"
#include "common/Version.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

// The listing file's text after its date line, which changes at midnight.
QByteArray afterDate(const QString& path)
{
    const QByteArray text = readAll(path);
    return text.mid(text.indexOf("\r\n") + 2);
}

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
        // The set's text is the save flow's own (its tests pin it byte for byte; the lister's header and
        // Parent Folder line are pinned below, past PATH_MAX): here what the lister says and where it writes.
        TreeBuilder t;
        t.file("A/a.txt", 2048);
        t.file("top.txt");
        const QString root = QFile::decodeName(t.root());
        ListerRun r = list(QStringList{root} + words("--name mine"));
        QCOMPARE(r.code, 0);
        QVERIFY2(QRegularExpression(QStringLiteral("^Total Folders: 1\nTotal Files: 2\nElapsed time: [0-9.]+ sec\n"))
                     .match(QString::fromUtf8(r.out))
                     .hasMatch(),
                 r.out.constData());
        QVERIFY(r.out.contains("Following 4 Text Files created & saved successfully:\n"));
        for (const char* name : {"Folders List WithPath mine.txt", "Folders List - mine.txt",
                                 "Files List WithPath mine.txt", "Files List - mine.txt"}) {
            const QString path = box() + QLatin1Char('/') + QLatin1String(name);
            QVERIFY2(r.out.contains(path.toUtf8()) && QFile::exists(path), name);
        }

        // Again: refused without --yes, replaced with it; also when only some of the four are there.
        const QString second = box() + QStringLiteral("/Folders List - mine.txt");
        QVERIFY(QFile::remove(second));
        r = list(QStringList{root} + words("--name mine"));
        QCOMPARE(r.code, 1);
        QVERIFY(r.err.contains("Folder List not saved, recommended to try again."));
        QCOMPARE(r.out, QByteArray()); // refused before the walk
        QVERIFY(!QFile::exists(second));
        t.file("more.txt");
        QCOMPARE(list(words("--yes --name mine") << root).code, 0);
        QVERIFY(readAll(box() + QStringLiteral("/Files List WithPath mine.txt")).contains("more.txt"));

        // The default name is the folder's own; --out writes into exactly the folder given, bytes and all.
        const QString elsewhere = m_home.path() + QStringLiteral("/out");
        r = ListerRun(m_home.path(), {elsewhere, root},
                      words("/bin/bash -c") << QStringLiteral("exec \"$0\" --out \"$1\"$'/d\\xff\\xfe/deeper' \"$2\""));
        QCOMPARE(r.code, 0);
        const QByteArray written = QFile::encodeName(elsewhere) + "/d\xff\xfe/deeper/Files List - " +
                                   QFile::encodeName(QFileInfo(root).fileName()) + ".txt";
        QVERIFY2(::access(written.constData(), F_OK) == 0, r.out.constData());
        QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-rf"), elsewhere}); // beyond QTemporaryDir
    }

    void searchFromTheCommandLine()
    {
        TreeBuilder t;
        t.file("My Photos/a.JPG", 3072);
        t.file("PHOTOGRAPHS/b.jpg");
        t.file("music/photo.mp3");
        const QString root = QFile::decodeName(t.root());
        QCOMPARE(list(words("--search photo --in folders") << root).out,
                 QByteArray("# 00002. My Photos (3kB)\n# 00003. PHOTOGRAPHS (0kB)\n Folders Found: 2 \n"));
        QCOMPARE(list(words("--search .JPG") << root).out,
                 QByteArray("# 00002. a.JPG\n# 00003. b.jpg\n Files Found: 2 \n"));
        QCOMPARE(list({QStringLiteral("--search"), QString(), root}).out, QByteArray());
    }

    // Arguments as other command-line tools take them, and messages that name the program, the path and the
    // reason. FOLDER in `args` stands for the tree's root; nothing is written by any of these but the first.
    void commandLines_data()
    {
        QTest::addColumn<QString>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("output"); // the start of stdout, or of stderr when the code is not 0
        const auto row = [](const char* tag, const char* args, int code, const QByteArray& output) {
            QTest::newRow(tag) << QString::fromUtf8(args) << code << output;
        };
        row("--name=X", "--name=joined FOLDER", 0, "NO FOLDER FOUND\nTotal Files: 1\n");
        row("-- ends the options", "-- --yes", 2, "quillary-list: cannot read '--yes': No such file");
        row("--version", "--version", 0, "quillary-list " QUILLARY_VERSION "\n");
        row("-h", "-h", 0,
            "Usage: quillary-list [--short] [--name NAME] [--out DIR] [--yes] [--no-catalogue] [--] FOLDER");
        row("no folder", "", 2, "quillary-list: no FOLDER given");
        row("missing folder", "FOLDER/nope", 2, "quillary-list: cannot read '");
        row("not a folder", "FOLDER/plain.txt", 2, "quillary-list: cannot list '");
        row("unknown option", "--frobnicate FOLDER", 2, "quillary-list: Unknown option 'frobnicate'.");
        row("value missing", "FOLDER --name", 2, "quillary-list: Missing value after '--name'.");
        row("--in of no list", "--search x --in rows FOLDER", 2, "quillary-list: --in takes folders or files");
        row("unwritable --out", "--out FOLDER/plain.txt/x FOLDER", 3, "quillary-list: cannot write into '");
        // A name holding a path separator takes the save's own error path.
        row("name with a slash", "FOLDER --name a/b", 3,
            "Invalid file name, choose different file name.\n76\nPath not found\n");
    }
    void commandLines()
    {
        QFETCH(QString, args);
        QFETCH(int, code);
        QFETCH(QByteArray, output);
        TreeBuilder t;
        t.file("plain.txt");
        QStringList argv = words(args.toUtf8().constData());
        argv.replaceInStrings(QStringLiteral("FOLDER"), QFile::decodeName(t.root()));
        const QStringList before = QDir(box()).entryList(QDir::Files);
        const ListerRun r = list(argv);
        QCOMPARE(r.code, code);
        QVERIFY2((code == 0 ? r.out : r.err).startsWith(output), (r.out + r.err).constData());
        if (output.startsWith("quillary-list: "))
            QCOMPARE(r.out, QByteArray()); // refused before the walk, which prints the totals
        if (code != 0)
            QCOMPARE(QDir(box()).entryList(QDir::Files), before);
        else if (args.startsWith(QLatin1String("--name=")))
            QVERIFY(QFile::exists(box() + QStringLiteral("/Files List - joined.txt")));
    }

    void startFolderPastPathMaxNamedInFull()
    {
        // A start folder whose path is longer than the system takes in one call is listed under its absolute
        // path, given whole or relative to a current folder as deep, through ".", ".." and a link, exactly as a
        // short one is.
        TreeBuilder t;
        const QByteArrayList names = TreeBuilder::longNames(40);
        const int bottom = t.chain(names);
        QVERIFY(bottom >= 0);
        QVERIFY(::mkdirat(bottom, "sub", 0755) == 0);
        TreeBuilder::fileAt(bottom, "one.txt", 3000);
        const int sub = ::openat(bottom, "sub", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        TreeBuilder::fileAt(sub, "three.txt");
        ::close(sub);
        ::close(bottom);
        const int cwd = t.chain(names.mid(0, 38));
        QVERIFY(::symlinkat(names[38].constData(), cwd, "via") == 0);
        t.file("short/one.txt", 3000); // the same tree on the same volume, at an ordinary length
        t.file("short/sub/three.txt");

        const QByteArray start = t.root() + '/' + names.join('/');
        QVERIFY(start.size() > PATH_MAX);
        // The short tree's listing gives the line that names the volume, which a long path must not change.
        const ListerRun shortRun =
            list(words("--yes --no-catalogue --name short") << QFile::decodeName(t.path("short")));
        QCOMPARE(shortRun.code, 0);
        const QByteArray shortText = afterDate(box() + QStringLiteral("/Files List WithPath short.txt"));
        const QByteArray sourceLine = shortText.left(shortText.indexOf("\r\n") + 2);
        QVERIFY(sourceLine.startsWith("SOURCE: "));

        const int back = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        QVERIFY(::fchdir(cwd) == 0);
        const QByteArray relative = "./via/../" + names[38] + "/./" + names[39] + "/";
        const ListerRun fromDeep = list(words("--name rel") << QFile::decodeName(relative));
        QVERIFY(::fchdir(back) == 0);
        ::close(back);
        ::close(cwd);
        const ListerRun whole = list(words("--name abs") << QFile::decodeName(start));
        for (const auto& [run, name] : {std::pair{&fromDeep, "rel"}, std::pair{&whole, "abs"}}) {
            QCOMPARE(run->err, QByteArray());
            QCOMPARE(run->code, 0);
            const QString suffix = QLatin1String(name) + QStringLiteral(".txt");
            const QByteArray head = sourceLine + "\r\nParent Folder: " + start + "\r\n";
            QCOMPARE(afterDate(box() + QStringLiteral("/Files List WithPath ") + suffix),
                     head + "LIST OF ALL FILES (2):\r\n\r\n" + start + "/sub/three.txt\r\n" + start +
                         "/one.txt\r\n\r\n");
            QCOMPARE(afterDate(box() + QStringLiteral("/Folders List WithPath ") + suffix),
                     head + "LIST OF FOLDERS WITH THEIR PATHS (1):\r\n\r\n" + start + "/sub\r\n\r\n");
            QCOMPARE(afterDate(box() + QStringLiteral("/Files List - ") + suffix),
                     head + "LIST OF ALL FILES (2):\r\n\r\nthree.txt\r\none.txt\r\n\r\n");
        }
    }

    void unreadableFolderNamedAndListingWritten()
    {
        // Permissions bind only an ordinary user, so the lister runs as one.
        if (QStandardPaths::findExecutable(QStringLiteral("setpriv")).isEmpty())
            QSKIP("setpriv is needed to run the lister as an ordinary user");
        TreeBuilder t;
        t.file("a/locked/secret.txt");
        t.file("a/open.txt");
        const QByteArray out = t.root() + "/out";
        QVERIFY(QDir().mkdir(QFile::decodeName(out)));
        for (const QByteArray& p : {t.root(), out})
            ::chmod(p.constData(), 0777);
        ::chmod(t.path("a/locked").constData(), 0);
        const ListerRun r(m_home.path(),
                          words("--no-catalogue --out") << QFile::decodeName(out) << QFile::decodeName(t.root()),
                          words("setpriv --reuid=65534 --regid=65534 --clear-groups"));
        ::chmod(t.path("a/locked").constData(), 0755);
        if (r.code == 0 && ::geteuid() != 0)
            QSKIP("permissions do not bind here");
        QCOMPARE(r.code, 4);
        QCOMPARE(r.err, "quillary-list: cannot read '" + t.path("a/locked") + "': Permission denied\n");
        QCOMPARE(QDir(QFile::decodeName(out)).entryList(QDir::Files).size(), 4);
    }
};

QTEST_GUILESS_MAIN(TestListCommand)
#include "tst_listcommand.moc"
