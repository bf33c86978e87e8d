// SPDX-License-Identifier: GPL-3.0-or-later

#include "TreeBuilder.h"
#include "common/RuntimeError.h"
#include "export/SaveFlow.h"
#include "platform/InputService.h"
#include "platform/MessageService.h"
#include "scan/FolderWalk.h"

#include <QDir>
#include <QScopeGuard>
#include <QTest>

namespace {

// Records every box and answers from a queue; the input box answers with `name`.
class FakeHost : public MessageService, public InputService
{
public:
    QString name;
    QList<Answer> answers;
    explicit FakeHost(QString n = {}, QList<Answer> a = {}) : name(std::move(n)), answers(std::move(a)) {}
    QStringList boxes; // style + ": " + text
    QStringList labels;
    int inputs = 0;

    QString inputBox(const QString& prompt, const QString&, const QString&) override
    {
        ++inputs;
        boxes.append(QStringLiteral("input: ") + prompt);
        return name;
    }
    Answer message(const QString& text, MessageStyle style, const QString&) override
    {
        boxes.append(QString::number(style.classic()) + QStringLiteral(": ") + text);
        return answers.isEmpty() ? Answer::Ok : answers.takeFirst();
    }
};

// The real file operations with faults injected: a fixed error for some steps, or one file that fails.
class FaultyOps : public SystemFileOps
{
public:
    RuntimeError::Number ensureError = RuntimeError::None;
    RuntimeError::Number probeError = RuntimeError::None;
    QByteArray failWriteOf; // a file name part; writing that file fails with `writeError`
    RuntimeError::Number writeError = RuntimeError::DiskFull;

    RuntimeError::Number ensureDirectory(const QByteArray& path) override
    {
        return ensureError ? ensureError : SystemFileOps::ensureDirectory(path);
    }
    RuntimeError::Number probe(const QByteArray& path) override
    {
        return probeError ? probeError : SystemFileOps::probe(path);
    }
    Pending prepare(const QByteArray& path, const std::function<bool(Output&)>& produce) override
    {
        if (!failWriteOf.isEmpty() && path.contains(failWriteOf))
            return {path, {}, writeError};
        return SystemFileOps::prepare(path, produce);
    }
};

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

} // namespace

class TestSaveFlow : public QObject
{
    Q_OBJECT

    TreeBuilder* m_tree = nullptr;
    std::unique_ptr<ScanResult> m_result;
    QTemporaryDir m_home;
    QString m_box;

    SaveSources sources(ScanResult::Flavour flavour) const
    {
        SaveSources s;
        s.result = m_result.get();
        s.flavour = flavour;
        s.driveCaption = QStringLiteral(" / [SYSTEM]: HD DRIVE ");
        s.parentFolder = QFile::decodeName(m_tree->root());
        return s;
    }
    SaveFlow::Outcome save(FakeHost& host, FileOps& ops, ScanResult::Flavour flavour = ScanResult::Flavour::Short,
                           SaveFlow::Kind kind = SaveFlow::Kind::Set)
    {
        SaveFlow flow(host, host, ops, CollectionFolder(m_box));
        flow.setWritingLabel([&host](const QString& caption, bool visible) {
            host.labels.append(caption + (visible ? QStringLiteral("|shown") : QStringLiteral("|hidden")));
        });
        flow.setClock([] { return QDate(2009, 3, 5); });
        return flow.run(kind, sources(flavour));
    }
    QString file(const QString& name) const { return m_box + QLatin1Char('/') + name; }
    QStringList setNames(const QString& n) const
    {
        return {file(QStringLiteral("Folders List WithPath ") + n + QStringLiteral(".txt")),
                file(QStringLiteral("Folders List - ") + n + QStringLiteral(".txt")),
                file(QStringLiteral("Files List WithPath ") + n + QStringLiteral(".txt")),
                file(QStringLiteral("Files List - ") + n + QStringLiteral(".txt"))};
    }
    QString report(const QString& n) const
    {
        const QStringList f = setNames(n);
        return QStringLiteral("64: Following 4 Text Files created & saved successfully:\t\t\r\n\r\n") +
               f.join(QStringLiteral("\r\n"));
    }
    QString question(const QString& path) const
    {
        return QStringLiteral("19: You are already having a file with the name ") + path +
               QStringLiteral(
                   " in the default folder.\r\nWould you still like to save by and replace the original file?");
    }

private slots:
    void init()
    {
        m_tree = new TreeBuilder;
        m_tree->file("A/a.txt", 1536);
        m_tree->file("A/A1/deep.txt");
        m_tree->file("r.txt");
        m_result = FolderWalk::run(m_tree->root());
        m_box = m_home.path() + QStringLiteral("/Quillbox");
        QDir(m_box).removeRecursively();
    }
    void cleanup()
    {
        delete m_tree;
        m_tree = nullptr;
    }

    void freshSetShortLayout()
    {
        FakeHost host(QStringLiteral("run"));
        SystemFileOps ops;
        const auto out = save(host, ops);
        QCOMPARE(out.error, 0);
        QCOMPARE(host.boxes,
                 QStringList({QStringLiteral("input: Write a valid file name:"), report(QStringLiteral("run"))}));
        QVERIFY(host.labels.isEmpty()); // the Short window has no writing label

        const QByteArray root = m_tree->root();
        const QByteArray head =
            "Date: 05 March 2009\r\nSOURCE: / [SYSTEM]: HD DRIVE \r\n\r\nParent Folder: " + root + "\r\n";
        const QStringList f = setNames(QStringLiteral("run"));
        QCOMPARE(readAll(f[0]),
                 head + "LIST OF FOLDERS WITH THEIR PATHS (2):\r\n\r\n" + root + "/A/A1\r\n" + root + "/A\r\n\r\n\r\n");
        QCOMPARE(readAll(f[1]), head + "LIST OF ALL FOLDERS & SUB FOLDERS (2):\r\n\r\nA1 (0kB)\r\nA (2kB)\r\n\r\n\r\n");
        QCOMPARE(readAll(f[2]), head + "LIST OF ALL FILES (3):\r\n\r\n" + root + "/A/a.txt\r\n" + root +
                                    "/A/A1/deep.txt\r\n" + root + "/r.txt\r\n\r\n\r\n");
        QCOMPARE(readAll(f[3]), head + "LIST OF ALL FILES (3):\r\n\r\na.txt\r\ndeep.txt\r\nr.txt\r\n\r\n\r\n");
    }

    void longLayoutAndTiming()
    {
        FakeHost host(QStringLiteral("grid"));
        SystemFileOps ops;
        save(host, ops, ScanResult::Flavour::Long);
        QCOMPARE(host.labels.size(), 3);
        QCOMPARE(host.labels[0], QStringLiteral(" Writing files.. |shown"));
        const QString caption = host.labels[1].section(QLatin1Char('|'), 0, 0);
        QVERIFY2(QRegularExpression(QStringLiteral("^ [0-9]+(\\.[0-9]+)? sec $")).match(caption).hasMatch(),
                 qPrintable(caption));
        QCOMPARE(host.labels[2], caption + QStringLiteral("|hidden"));
        QCOMPARE(host.boxes.last(),
                 report(QStringLiteral("grid")) + QStringLiteral("\r\n\r\nFiles created in: ") + caption);
        QVERIFY(readAll(setNames(QStringLiteral("grid"))[3]).endsWith("a.txt\r\ndeep.txt\r\nr.txt\r\n\r\n"));
        QVERIFY(!readAll(setNames(QStringLiteral("grid"))[3]).endsWith("\r\n\r\n\r\n"));
    }

    // A set saved again under its name, with files of the old set gone or not and each answer to the question;
    // the tree has grown in between, so a written set names the new file. In `boxes`, Q stands for the question,
    // NO for the refusal and OK for the report.
    void replaceQuestion_data()
    {
        QTest::addColumn<int>("gone"); // which of the old set's four files is removed first, or -1
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<ScanResult::Flavour>("flavour");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<int>("error");
        QTest::addColumn<bool>("written");
        const auto L = ScanResult::Flavour::Long, S = ScanResult::Flavour::Short;
        const QString q = QStringLiteral("Q"), no = QStringLiteral("NO"), ok = QStringLiteral("OK");
        QTest::newRow("No, Long") << -1 << Answer::No << L << QStringList{q, no} << 0 << false;
        QTest::newRow("Cancel") << -1 << Answer::Cancel << S << QStringList{q, no} << 0 << false;
        QTest::newRow("Yes") << -1 << Answer::Yes << S << QStringList{q, ok} << 0 << true;
        // A later file gone while the first is there: the earlier ones count as open.
        QTest::newRow("file 3 gone, Yes")
            << 2 << Answer::Yes << S << QStringList{q, QStringLiteral("0: 55\r\nFile already open")} << 55 << false;
        QTest::newRow("file 2 gone, Cancel") << 1 << Answer::Cancel << S << QStringList{q, no, ok} << 0 << true;
        QTest::newRow("file 3 gone, No: written all the same")
            << 2 << Answer::No << S << QStringList{q, no, ok} << 0 << true;
        QTest::newRow("file 1 gone: no question") << 0 << Answer::No << S << QStringList{ok} << 0 << true;
    }
    void replaceQuestion()
    {
        QFETCH(int, gone);
        QFETCH(Answer, answer);
        QFETCH(ScanResult::Flavour, flavour);
        QFETCH(QStringList, boxes);
        QFETCH(int, error);
        QFETCH(bool, written);
        SystemFileOps ops;
        FakeHost seed(QStringLiteral("again"));
        save(seed, ops);
        const QStringList f = setNames(QStringLiteral("again"));
        if (gone >= 0)
            QVERIFY(QFile::remove(f[gone]));
        QMap<QString, QByteArray> before;
        for (const QString& p : f)
            before[p] = readAll(p);
        m_tree->file("new.txt");
        m_result = FolderWalk::run(m_tree->root());

        FakeHost host(QStringLiteral("again"), {answer});
        const auto out = save(host, ops, flavour);
        for (QString& b : boxes)
            b = b == QLatin1String("Q")    ? question(f[0])
                : b == QLatin1String("NO") ? QStringLiteral("48: Folder List not saved, recommended to try again.")
                : b == QLatin1String("OK") ? report(QStringLiteral("again"))
                                           : b;
        QCOMPARE(host.boxes.mid(1), boxes);
        QCOMPARE(out.error, error);
        QCOMPARE(out.refused, !written && error == 0);
        if (written)
            QVERIFY(readAll(f[2]).contains("new.txt") && readAll(f[3]).contains("new.txt"));
        for (const QString& p : f)
            QVERIFY(written || readAll(p) == before[p]);
        if (flavour == ScanResult::Flavour::Long)
            QCOMPARE(host.labels.last(), QStringLiteral("|hidden"));
    }

    void emptyAndBadNames()
    {
        FakeHost empty; // Cancel in the input box gives the empty name, used as any other
        SystemFileOps ops;
        save(empty, ops);
        QVERIFY(QFile::exists(file(QStringLiteral("Folders List WithPath .txt"))));
        QVERIFY(QFile::exists(file(QStringLiteral("Files List - .txt"))));

        FakeHost bad(QStringLiteral("no/such"));
        const auto out = save(bad, ops);
        QCOMPARE(out.error, 76);
        QCOMPARE(bad.boxes.mid(1), QStringList({QStringLiteral("16: Invalid file name, choose different file name."),
                                                QStringLiteral("0: 76\r\nPath not found")}));
        QVERIFY(out.written.isEmpty());
    }

    void accessAndDiskErrorsLoseNothing()
    {
        SystemFileOps real;
        FakeHost seed(QStringLiteral("keep"));
        save(seed, real);
        const QStringList f = setNames(QStringLiteral("keep"));
        QList<QByteArray> before;
        for (const QString& p : f)
            before.append(readAll(p));

        FaultyOps locked;
        locked.probeError = RuntimeError::PathFileAccess;
        FakeHost host(QStringLiteral("keep"));
        auto out = save(host, locked);
        QCOMPARE(out.error, 75);
        QCOMPARE(host.boxes.last(),
                 QStringLiteral("48: Change the SAVE Location. Access denied to Save in the application location."));

        FaultyOps noFolder;
        noFolder.ensureError = RuntimeError::PathFileAccess;
        FakeHost early;
        out = save(early, noFolder);
        QCOMPARE(early.inputs, 0); // the folder is checked before the name is asked
        QCOMPARE(out.error, 75);

        // The disk fills while file 4 is written (after files 1 and 2): 1 and 2 are new, 4 and 3 as they were.
        m_tree->file("extra.txt");
        m_result = FolderWalk::run(m_tree->root());
        FaultyOps full;
        full.failWriteOf = "Files List - ";
        FakeHost disk(QStringLiteral("keep"), {Answer::Yes});
        out = save(disk, full);
        QCOMPARE(out.error, 61);
        QCOMPARE(disk.boxes.last(), QStringLiteral("0: 61\r\nDisk full"));
        QCOMPARE(out.written, QStringList({f[0], f[1]}));
        QVERIFY(readAll(f[1]).contains("LIST OF ALL FOLDERS"));
        QCOMPARE(readAll(f[3]), before[3]);
        QCOMPARE(readAll(f[2]), before[2]);
        QCOMPARE(QDir(m_box).entryList(QDir::Files | QDir::Hidden).size(), 4); // no temporary file left behind
    }

    void singleListSaves()
    {
        SystemFileOps ops;
        FakeHost folders(QStringLiteral("one"));
        save(folders, ops, ScanResult::Flavour::Long, SaveFlow::Kind::SingleFolders);
        const QString folderFile = file(QStringLiteral("Folder List WithPath one.txt"));
        QCOMPARE(folders.boxes.last(),
                 QStringLiteral("64: Following Text File created & saved successfully:\t\t\r\n\r\n") + folderFile);
        QVERIFY(folders.labels.isEmpty()); // no timing for single lists
        const QByteArray root = m_tree->root();
        QVERIFY(
            readAll(folderFile)
                .endsWith("LIST OF FOLDERS WITH THEIR PATHS (2):\r\n\r\n" + root + "/A/A1\r\n" + root + "/A\r\n\r\n"));

        // The single files save writes the set's file 3, and refuses with its own text.
        FakeHost files(QStringLiteral("one"));
        save(files, ops, ScanResult::Flavour::Short, SaveFlow::Kind::SingleFiles);
        const QString filesFile = setNames(QStringLiteral("one"))[2];
        QVERIFY(readAll(filesFile).endsWith(root + "/r.txt\r\n\r\n\r\n"));
        FakeHost again(QStringLiteral("one"), {Answer::No});
        save(again, ops, ScanResult::Flavour::Short, SaveFlow::Kind::SingleFiles);
        QCOMPARE(
            again.boxes.mid(1),
            QStringList({question(filesFile), QStringLiteral("48: File List not saved, recommended to try again.")}));
    }

    // No home folder: nothing asked, error 76 with the reason (the other refused folders are the lister's tests).
    void refusedCollectionFolder()
    {
        const QByteArray home = qgetenv("HOME");
        const auto restore = qScopeGuard([&] { qputenv("HOME", home); });
        qunsetenv("HOME");
        SystemFileOps ops;
        FakeHost unset;
        const auto out = SaveFlow(unset, unset, ops).run(SaveFlow::Kind::Set, sources(ScanResult::Flavour::Short));
        QCOMPARE(out.error, 76);
        QCOMPARE(unset.inputs, 0);
        QCOMPARE(unset.boxes, QStringList({QStringLiteral("16: Invalid file name, choose different file name."),
                                           QStringLiteral("0: 76\r\nPath not found (HOME is not set, so there is no "
                                                          "home folder to keep Quillbox in)")}));
    }

    void emptyListsAndNoFolder()
    {
        TreeBuilder empty;
        m_result = FolderWalk::run(empty.root());
        SystemFileOps ops;
        FakeHost s(QStringLiteral("e")), l(QStringLiteral("g"));
        save(s, ops);
        save(l, ops, ScanResult::Flavour::Long);
        const QStringList shortSet = setNames(QStringLiteral("e")), longSet = setNames(QStringLiteral("g"));
        QVERIFY(readAll(shortSet[3]).endsWith("(0):\r\n\r\n\r\n\r\n"));
        QVERIFY(readAll(shortSet[1]).endsWith("(1):\r\n\r\nNO FOLDER FOUND\r\n\r\n\r\n"));
        QVERIFY(readAll(longSet[3]).endsWith("\r\nLIST OF ALL FILES (0):\r\n\r\n\r\n"));
        QVERIFY(!readAll(longSet[3]).endsWith("(0):\r\n\r\n\r\n\r\n"));
    }

    void fileOperations()
    {
        SystemFileOps ops;
        QVERIFY(QDir().mkpath(m_box + QStringLiteral("/adir")));
        const QByteArray box = QFile::encodeName(m_box);
        QCOMPARE(ops.probe(box + "/missing.txt"), 53);
        QCOMPARE(ops.probe(box + "/nofolder/x.txt"), 76);
        QCOMPARE(ops.probe(box + "/adir"), 75);
        QCOMPARE(ops.writeFile(box + "/adir", [](FileOps::Output&) { return true; }), 75);
        QCOMPARE(ops.ensureDirectory(box + "/adir"), 0);
        QCOMPARE(ops.ensureDirectory(box + "/no/such"), 76);

        // A writer that gives up half-way leaves the old file as it was.
        QCOMPARE(ops.writeFile(box + "/f.txt", [](FileOps::Output& o) { return o.write("old", 3); }), 0);
        const RuntimeError::Number error = ops.writeFile(box + "/f.txt", [](FileOps::Output& o) {
            o.write("new and partial", 15);
            return false;
        });
        QVERIFY(error != 0);
        QCOMPARE(readAll(m_box + QStringLiteral("/f.txt")), QByteArray("old"));
        QCOMPARE(QDir(m_box).entryList(QDir::Files | QDir::Hidden), QStringList({QStringLiteral("f.txt")}));
    }
};

QTEST_GUILESS_MAIN(TestSaveFlow)
#include "tst_saveflow.moc"
