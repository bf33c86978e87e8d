#include "BrowserTestKit.h"

#include "browser/SaveActions.h"

#include <QLabel>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QStandardPaths>
#include <unistd.h>

using namespace BrowserTestKit;

// "Create Text Files", the single-list saves of the menus and the collection folder's label, in both windows.
class TestSaving : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;
    FakeServices m_fakes;
    TreeBuilder m_tree;

    static QString setName(int file, const QString& name)
    {
        static const char* const prefixes[] = {"", "Folders List WithPath ", "Folders List - ", "Files List WithPath ",
                                               "Files List - "};
        return collectionPath() + QLatin1Char('/') + QLatin1String(prefixes[file]) + name + QStringLiteral(".txt");
    }
    static QString setReport(const QString& name)
    {
        return QStringLiteral("Following 4 Text Files created & saved successfully:\t\t\r\n\r\n") + setName(1, name) +
               QStringLiteral("\r\n") + setName(2, name) + QStringLiteral("\r\n") + setName(3, name) +
               QStringLiteral("\r\n") + setName(4, name);
    }
    QStringList texts() const
    {
        QStringList out;
        for (const auto& call : m_fakes.messages.calls)
            out.append(QString::number(call.style) + QLatin1Char('|') + call.text);
        return out;
    }
    void createTextFiles(BrowserWindow& w, const QString& name)
    {
        m_fakes.messages.calls.clear();
        m_fakes.input.answers = {name};
        QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("CreateTextFiles")), Qt::LeftButton);
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        qputenv("HOME", QFile::encodeName(m_home.path()));
        m_fakes.volumes.list = {{QStringLiteral("/"), QStringLiteral("System"), 2, true}};
        m_tree.file("A/a1.txt", 2048);
        m_tree.file("A/A1/a2.txt");
        m_tree.file("B/b.txt", 10);
        m_tree.file("r.txt", 5);
    }

    void init()
    {
        qputenv("HOME", QFile::encodeName(m_home.path()));
        QDir(collectionPath()).removeRecursively();
        m_fakes.messages.calls.clear();
        m_fakes.messages.answers.clear();
        m_fakes.messages.onMessage = nullptr;
        m_fakes.input.prompts.clear();
        m_fakes.shell.opened.clear();
        m_fakes.programEnd.count = 0;
    }

    void flavour_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::newRow("ShortBrowser") << false;
        QTest::newRow("LongBrowser") << true;
    }

    void setOfFour_data() { flavour_data(); }
    void setOfFour()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        auto* label12 = w->findChild<QLabel*>(QStringLiteral("Label12"));
        QCOMPARE(label12 != nullptr, longVersion);
        // What Label12 shows while each box is up.
        QStringList label12Seen;
        m_fakes.messages.onMessage = [&] {
            if (label12)
                label12Seen.append(label12->isVisible() ? label12->text() : QStringLiteral("<hidden>"));
        };

        // A fresh name: no question, four files, the report naming them 1, 2, 3, 4.
        createTextFiles(*w, QStringLiteral("Alpha"));
        QCOMPARE(m_fakes.input.prompts, QStringList{QStringLiteral("Write a valid file name:")});
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        const QString report = m_fakes.messages.calls.first().text;
        QCOMPARE(m_fakes.messages.calls.first().style, 64);
        QCOMPARE(m_fakes.messages.calls.first().title, QString());
        if (longVersion) {
            const QRegularExpression timing(QStringLiteral("^ \\d+(\\.\\d+)? sec $"));
            QVERIFY2(timing.match(label12Seen.value(0)).hasMatch(), qPrintable(label12Seen.value(0)));
            QCOMPARE(report, setReport(QStringLiteral("Alpha")) + QStringLiteral("\r\n\r\nFiles created in: ") +
                                 label12Seen.value(0));
            QVERIFY(!label12->isVisible());
        } else {
            QCOMPARE(report, setReport(QStringLiteral("Alpha")));
        }
        // The header comes from the window's labels.
        const QByteArray file1 = read(setName(1, QStringLiteral("Alpha")));
        const QByteArray header = "SOURCE:" + w->controls().Label4[3]->text().toUtf8() +
                                  "\r\n\r\nParent Folder: " + w->controls().Label2->text().toUtf8() +
                                  "\r\nLIST OF FOLDERS WITH THEIR PATHS (3):\r\n\r\n";
        QVERIFY2(file1.contains(header), file1.constData());
        const QByteArray file4 = read(setName(4, QStringLiteral("Alpha")));
        QVERIFY(file4.contains("LIST OF ALL FILES (4):\r\n\r\n"));
        QVERIFY(file4.contains("\r\na1.txt\r\n"));

        // The same name again: No keeps all four, Yes replaces them.
        write(setName(1, QStringLiteral("Alpha")), "mine");
        label12Seen.clear();
        m_fakes.messages.answers = {Answer::No};
        createTextFiles(*w, QStringLiteral("Alpha"));
        const QString question = QStringLiteral("19|You are already having a file with the name ") +
                                 setName(1, QStringLiteral("Alpha")) +
                                 QStringLiteral(" in the default folder.\r\n"
                                                "Would you still like to save by and replace the original file?");
        QCOMPARE(texts(),
                 QStringList({question, QStringLiteral("48|Folder List not saved, recommended to try again.")}));
        QCOMPARE(read(setName(1, QStringLiteral("Alpha"))), QByteArray("mine"));
        if (longVersion) {
            QCOMPARE(label12Seen.value(0), QStringLiteral(" Writing files.. "));
            QVERIFY(!label12->isVisible());
        }
        m_fakes.messages.answers = {Answer::Yes};
        createTextFiles(*w, QStringLiteral("Alpha"));
        QCOMPARE(texts().size(), 2);
        QCOMPARE(texts().first(), question);
        QVERIFY(texts().last().startsWith(QStringLiteral("64|") + setReport(QStringLiteral("Alpha"))));
        QCOMPARE(read(setName(1, QStringLiteral("Alpha"))), file1);

        // Cancel in the input box gives the empty name, used like any other.
        createTextFiles(*w, QString());
        QVERIFY(QFile::exists(collectionPath() + QStringLiteral("/Folders List WithPath .txt")));
        QCOMPARE(texts().size(), 1);
        QVERIFY(texts().first().startsWith(QStringLiteral("64|") + setReport(QString())));

        // A name leading into a folder that is not there.
        createTextFiles(*w, QStringLiteral("no/such"));
        QCOMPARE(texts(), QStringList({QStringLiteral("16|Invalid file name, choose different file name."),
                                       QStringLiteral("0|76\r\nPath not found")}));

        // File 1 there, a later one missing: the question, and Yes meets the file still open.
        write(setName(1, QStringLiteral("Beta")), "old");
        m_fakes.messages.answers = {Answer::Yes};
        createTextFiles(*w, QStringLiteral("Beta"));
        QCOMPARE(texts().size(), 2);
        QVERIFY(texts().first().startsWith(QStringLiteral("19|You are already having a file with the name ") +
                                           setName(1, QStringLiteral("Beta"))));
        QCOMPARE(texts().last(), QStringLiteral("0|55\r\nFile already open"));
        QCOMPARE(read(setName(1, QStringLiteral("Beta"))), QByteArray("old"));
        // No: the refusal, and the files are written all the same.
        m_fakes.messages.answers = {Answer::No};
        createTextFiles(*w, QStringLiteral("Beta"));
        QCOMPARE(texts().size(), 3);
        QCOMPARE(texts().at(1), QStringLiteral("48|Folder List not saved, recommended to try again."));
        QVERIFY(texts().at(2).startsWith(QStringLiteral("64|") + setReport(QStringLiteral("Beta"))));
        QVERIFY(read(setName(1, QStringLiteral("Beta"))).startsWith("Date: "));
        QVERIFY(QFile::exists(setName(3, QStringLiteral("Beta"))));
    }

    void refusedFolder_data() { flavour_data(); }
    void refusedFolder()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        // A collection folder that takes no files: read-only, or for root, where no mode stops it, a place the
        // kernel refuses to anyone.
        if (::geteuid() == 0) {
            qputenv("HOME", "/sys");
        } else {
            QVERIFY(QDir().mkpath(collectionPath()));
            QFile::setPermissions(collectionPath(), QFile::ReadOwner | QFile::ExeOwner);
        }
        createTextFiles(*w, QStringLiteral("Gamma"));
        QFile::setPermissions(collectionPath(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(texts(), QStringList{QStringLiteral(
                              "48|Change the SAVE Location. Access denied to Save in the application location.")});
        if (longVersion)
            QVERIFY(!w->findChild<QLabel*>(QStringLiteral("Label12"))->isVisible());
    }

    void singleLists_data() { flavour_data(); }
    void singleLists()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        const QString folders = collectionPath() + QStringLiteral("/Folder List WithPath One.txt");
        const QString files = collectionPath() + QStringLiteral("/Files List WithPath One.txt");

        m_fakes.input.answers = {QStringLiteral("One")};
        entry(*w, longVersion ? QStringLiteral("SaveMSFlexGrid2Contents") : QStringLiteral("SaveList2Contents"))
            ->trigger();
        QCOMPARE(
            texts(),
            QStringList{QStringLiteral("64|Following Text File created & saved successfully:\t\t\r\n\r\n") + folders});
        const QByteArray folderList = read(folders);
        QVERIFY2(folderList.contains("LIST OF FOLDERS WITH THEIR PATHS (3):\r\n\r\n" + m_tree.path("A/A1") + "\r\n" +
                                     m_tree.path("A") + "\r\n"),
                 folderList.constData());
        QVERIFY(folderList.endsWith(longVersion ? "B\r\n\r\n" : "B\r\n\r\n\r\n"));

        m_fakes.messages.calls.clear();
        m_fakes.input.answers = {QStringLiteral("One")};
        entry(*w, longVersion ? QStringLiteral("SaveMSFlexGrid3Contents") : QStringLiteral("SaveList3Contents"))
            ->trigger();
        QCOMPARE(
            texts(),
            QStringList{QStringLiteral("64|Following Text File created & saved successfully:\t\t\r\n\r\n") + files});
        QVERIFY(read(files).contains("LIST OF ALL FILES (4):\r\n\r\n"));
        QVERIFY(read(files).contains("\r\n" + m_tree.path("A/a1.txt") + "\r\n"));
    }

    void collectionLabel()
    {
        auto w = std::make_unique<BrowserWindow>(BrowserFlavour::shortBrowser(), m_fakes.services(), nullptr);
        w->show();
        const auto& labels = w->controls().Label4;
        for (int i : {0, 2, 3})
            QTest::mouseClick(labels[i], Qt::LeftButton, {}, QPoint(3, 3));
        QVERIFY(m_fakes.messages.calls.isEmpty());

        m_fakes.messages.answers = {Answer::No, Answer::Yes};
        QTest::mouseClick(labels[1], Qt::LeftButton, {}, QPoint(3, 3));
        QVERIFY(m_fakes.shell.opened.isEmpty());
        QTest::mouseClick(labels[1], Qt::LeftButton, {}, QPoint(3, 3));
        const QString question = QStringLiteral("68|Listed files are saved in the folder ") + collectionPath() +
                                 QStringLiteral("/. Would you like to open this Folder?");
        QCOMPARE(texts(), QStringList({question, question}));
        QCOMPARE(m_fakes.shell.opened, QStringList{collectionPath()});
    }
};

QTEST_MAIN(TestSaving)
#include "tst_saving.moc"
