// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"
#include "catalogue/SqliteCatalogue.h"

#include <QRegularExpression>

using namespace BrowserTestKit;

// What the windows hand the save flow: the name asked for, the header from their labels, which list each menu
// entry saves, the timing label; and the collection folder's label. The flow's questions and refusals are its
// own tests.
class TestSaving : public QObject
{
    Q_OBJECT

private:
    TestHome m_home;
    FakeServices m_fakes;
    TreeBuilder m_tree;

    static QString setName(int file, const QString& name)
    {
        static const char* const prefixes[] = {"", "Folders List WithPath ", "Folders List - ", "Files List WithPath ",
                                               "Files List - "};
        return collectionPath() + u'/' + QLatin1String(prefixes[file]) + name + u".txt"_s;
    }

private slots:
    void initTestCase()
    {
        m_fakes.volumes.list = {{u"/"_s, u"System"_s, DriveType::Fixed, true}};
        m_tree.file("A/a1.txt", 2048);
        m_tree.file("A/A1/a2.txt");
        m_tree.file("B/b.txt", 10);
        m_tree.file("r.txt", 5);
    }

    void init()
    {
        QDir(collectionPath()).removeRecursively();
        m_fakes.reset();
    }

    void setOfFour_data() { addFlavours(); }
    void setOfFour()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        auto* label12 = w->findChild<QLabel*>(u"Label12"_s);
        QCOMPARE(label12 != nullptr, longVersion);
        QString label12Seen; // what LongBrowser's Label12 shows while the report is up
        m_fakes.messages.onMessage = [&] {
            if (label12)
                label12Seen = label12->isVisible() ? label12->text() : u"<hidden>"_s;
        };
        m_fakes.input.answers = {u"Alpha"_s};
        QTest::mouseClick(w->controls().navigation.CreateTextFiles, Qt::LeftButton);

        QCOMPARE(m_fakes.input.prompts, QStringList{u"Write a valid file name:"_s});
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        QCOMPARE(m_fakes.messages.calls.first().title, QString());
        QString report = u"64|Following 4 Text Files created & saved successfully:\t\t\r\n\r\n"_s;
        for (int file = 1; file <= 4; ++file)
            report += setName(file, u"Alpha"_s) + (file < 4 ? u"\r\n"_s : QString());
        if (longVersion) {
            const QRegularExpression timing(u"^ \\d+(\\.\\d+)? sec $"_s);
            QVERIFY2(timing.match(label12Seen).hasMatch(), qPrintable(label12Seen));
            report += u"\r\n\r\nFiles created in: "_s + label12Seen;
            QVERIFY(!label12->isVisible());
        }
        QCOMPARE(m_fakes.messages.texts(), QStringList{report});
        const QByteArray file1 = read(setName(1, u"Alpha"_s));
        const QByteArray header = "SOURCE:" + w->controls().status.Label4[3]->text().toUtf8() +
                                  "\r\n\r\nParent Folder: " + w->controls().navigation.Label2->text().toUtf8() +
                                  "\r\nLIST OF FOLDERS WITH THEIR PATHS (3):\r\n\r\n";
        QVERIFY2(file1.contains(header), file1.constData());
        const QByteArray file4 = read(setName(4, u"Alpha"_s));
        QVERIFY(file4.contains("LIST OF ALL FILES (4):\r\n\r\n"));
        QVERIFY(file4.contains("\r\na1.txt\r\n"));
    }

    void singleLists_data() { addFlavours(); }
    void singleLists()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        const QString folders = collectionPath() + u"/Folder List WithPath One.txt"_s;
        const QString files = collectionPath() + u"/Files List WithPath One.txt"_s;
        const QString saved = u"64|Following Text File created & saved successfully:\t\t\r\n\r\n"_s;

        m_fakes.input.answers = {u"One"_s};
        entry(*w, longVersion ? u"SaveMSFlexGrid2Contents"_s : u"SaveList2Contents"_s)->trigger();
        QCOMPARE(m_fakes.messages.texts(), QStringList{saved + folders});
        const QByteArray folderList = read(folders);
        QVERIFY2(folderList.contains("LIST OF FOLDERS WITH THEIR PATHS (3):\r\n\r\n" + m_tree.path("A/A1") + "\r\n" +
                                     m_tree.path("A") + "\r\n"),
                 folderList.constData());
        QVERIFY(folderList.endsWith(longVersion ? "B\r\n\r\n" : "B\r\n\r\n\r\n"));

        m_fakes.messages.calls.clear();
        m_fakes.input.answers = {u"One"_s};
        entry(*w, longVersion ? u"SaveMSFlexGrid3Contents"_s : u"SaveList3Contents"_s)->trigger();
        QCOMPARE(m_fakes.messages.texts(), QStringList{saved + files});
        QVERIFY(read(files).contains("LIST OF ALL FILES (4):\r\n\r\n"));
        QVERIFY(read(files).contains("\r\n" + m_tree.path("A/a1.txt") + "\r\n"));
    }

    // A saved set is recorded in the catalogue, found there with the folder renamed away; the save's boxes stay
    // as they were. A catalogue that cannot be written leaves the listing standing and says so once, without a
    // modal box. Single-list saves record nothing.
    void recordedInCatalogue_data() { addFlavours(); }
    void recordedInCatalogue()
    {
        QFETCH(bool, longVersion);
        const QString catalogue = collectionPath() + u"/catalogue.sqlite"_s;
        QDir().mkpath(catalogue); // a folder where the database should be: it cannot be opened
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        m_fakes.input.answers = {u"Broken"_s};
        QTest::mouseClick(w->controls().navigation.CreateTextFiles, Qt::LeftButton);
        QTRY_COMPARE(m_fakes.notices.shown.size(), 1);
        QVERIFY(m_fakes.notices.shown.first().startsWith(
            u"The listing files are saved, but the scan was not recorded in the catalogue: "_s));
        QCOMPARE(m_fakes.messages.calls.size(), 1); // the save's own report, nothing more
        QVERIFY(QFile::exists(setName(4, u"Broken"_s)));
        QVERIFY(QDir().rmdir(catalogue));

        m_fakes.input.answers = {u"One"_s};
        entry(*w, longVersion ? u"SaveMSFlexGrid3Contents"_s : u"SaveList3Contents"_s)->trigger();
        m_fakes.input.answers = {u"Kept"_s};
        QTest::mouseClick(w->controls().navigation.CreateTextFiles, Qt::LeftButton);
        w.reset(); // waits for the recording under way
        QCOMPARE(m_fakes.notices.shown.size(), 1);

        const QByteArray renamed = m_tree.root() + "-away";
        QCOMPARE(::rename(m_tree.root().constData(), renamed.constData()), 0);
        const auto back = qScopeGuard([&] { ::rename(renamed.constData(), m_tree.root().constData()); });
        const auto store = SqliteCatalogue::open(catalogue);
        QVERIFY(store);
        const auto scans = store->scans();
        QVERIFY(scans && scans->size() == 1);
        QCOMPARE(scans->front().listingName, u"Kept"_s);
        QCOMPARE(scans->front().fileCount, 4);
        FindQuery query;
        query.text = u"A1.TXT"_s;
        std::vector<FindHit> hits;
        QVERIFY(store->find(query, [&](std::vector<FindHit>& batch) {
            hits.insert(hits.end(), batch.begin(), batch.end());
            return true;
        }));
        QCOMPARE(hits.size(), size_t(1));
        QCOMPARE(hits.front().path, m_tree.path("A/a1.txt"));
        QCOMPARE(hits.front().bytes, 2048);
    }

    void collectionLabel()
    {
        auto w = window(m_fakes, false);
        const auto& labels = w->controls().status.Label4;
        for (int i : {0, 2, 3})
            QTest::mouseClick(labels[i], Qt::LeftButton, {}, QPoint(3, 3));
        QVERIFY(m_fakes.messages.calls.isEmpty());

        m_fakes.messages.answers = {Answer::No, Answer::Yes};
        QTest::mouseClick(labels[1], Qt::LeftButton, {}, QPoint(3, 3));
        QVERIFY(m_fakes.shell.opened.isEmpty());
        QTest::mouseClick(labels[1], Qt::LeftButton, {}, QPoint(3, 3));
        const QString question = u"68|Listed files are saved in the folder "_s + collectionPath() +
                                 u"/. Would you like to open this Folder?"_s;
        QCOMPARE(m_fakes.messages.texts(), QStringList({question, question}));
        QCOMPARE(m_fakes.shell.opened, QStringList{collectionPath()});
    }
};

QTEST_MAIN(TestSaving)
#include "tst_saving.moc"
