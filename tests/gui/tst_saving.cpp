// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"
#include "catalogue/SqliteCatalogue.h"

using namespace BrowserTestKit;

// What the windows hand the save flow: the header from their labels, their layout and timing label, which list
// each menu entry saves; the catalogue record of a saved set; and the collection folder's label. The flow's
// questions, refusals, texts and file layouts are its own tests.
class TestSaving : public QObject
{
    Q_OBJECT

private:
    TestHome m_home;
    FakeServices m_fakes;
    TreeBuilder m_tree;

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

    // The set of four takes its header from the drive caption and Label2, and the window's layout: LongBrowser's
    // files end in one blank line less, and its Label12 shows the timing while the report is up.
    void setOfFour_data() { addFlavours(); }
    void setOfFour()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        auto* label12 = w->findChild<QLabel*>(u"Label12"_s);
        QCOMPARE(label12 != nullptr, longVersion);
        QString label12Seen;
        m_fakes.messages.onMessage = [&] {
            if (label12 && label12->isVisible())
                label12Seen = label12->text();
        };
        m_fakes.input.answers = {u"Alpha"_s};
        QTest::mouseClick(w->controls().navigation.CreateTextFiles, Qt::LeftButton);

        QCOMPARE(m_fakes.messages.calls.size(), 1);
        const QString report = m_fakes.messages.calls.first().text;
        QVERIFY2(report.startsWith(u"Following 4 Text Files created"_s), qPrintable(report));
        if (longVersion) {
            QVERIFY(!label12Seen.isEmpty() && !label12->isVisible());
            QVERIFY2(report.endsWith(u"Files created in: "_s + label12Seen), qPrintable(report));
        }
        const QByteArray file1 = read(collectionPath() + u"/Folders List WithPath Alpha.txt"_s);
        const QByteArray header = "SOURCE:" + w->controls().status.Label4[3]->text().toUtf8() +
                                  "\r\n\r\nParent Folder: " + w->controls().navigation.Label2->text().toUtf8() + "\r\n";
        QVERIFY2(file1.contains(header), file1.constData());
        QCOMPARE(file1.endsWith("\r\n\r\n\r\n"), !longVersion);
    }

    // A saved set is recorded in the catalogue under its name; the save's boxes stay as they were. A catalogue
    // that cannot be written leaves the listing standing and says so once, without a modal box. Single-list
    // saves, each pane's entry saving its own list, record nothing.
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
        QVERIFY(QFile::exists(collectionPath() + u"/Files List - Broken.txt"_s));
        QVERIFY(QDir().rmdir(catalogue));

        // Each pane's menu entry saves its own list.
        m_fakes.input.answers = {u"One"_s, u"One"_s, u"Kept"_s};
        entry(*w, u"SaveList2Contents"_s, u"SaveMSFlexGrid2Contents"_s)->trigger();
        entry(*w, u"SaveList3Contents"_s, u"SaveMSFlexGrid3Contents"_s)->trigger();
        QVERIFY(read(collectionPath() + u"/Folder List WithPath One.txt"_s)
                    .contains("LIST OF FOLDERS WITH THEIR PATHS (3):\r\n\r\n" + m_tree.path("A/A1") + "\r\n"));
        QVERIFY(read(collectionPath() + u"/Files List WithPath One.txt"_s)
                    .contains("LIST OF ALL FILES (4):\r\n\r\n" + m_tree.path("A/a1.txt") + "\r\n"));
        QTest::mouseClick(w->controls().navigation.CreateTextFiles, Qt::LeftButton);
        w.reset(); // waits for the recording under way
        QCOMPARE(m_fakes.notices.shown.size(), 1);

        const auto store = SqliteCatalogue::open(catalogue);
        QVERIFY(store);
        const auto scans = store->scans();
        QVERIFY(scans && scans->size() == 1);
        QCOMPARE(scans->front().listingName, u"Kept"_s);
        QCOMPARE(scans->front().startPath, m_tree.root());
        QCOMPARE(scans->front().fileCount, 4);
    }

    // Only the second status label answers a click, with a question before the collection folder is opened.
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
