// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "browser/FolderTreeModel.h"
#include "common/NativeText.h"
#include "controls/DriveCaptionLabel.h"
#include "controls/DriveSelector.h"
#include "platform/Twips.h"
#include "scan/ScanResultBuilder.h"

#include <QComboBox>
#include <QListView>
#include <QScopeGuard>
#include <QTreeView>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace BrowserTestKit;

// The browser window itself: what it shows on load, on a folder or drive change, the file-names toggle, the
// mode messages and the ways out.
class TestBrowserWindow : public QObject
{
    Q_OBJECT

private:
    TestHome m_home;
    FakeServices m_fakes;
    const QString m_fixed = m_home.path() + u"/fixed"_s, m_stick = m_home.path() + u"/stick"_s,
                  m_cd = m_home.path() + u"/cd"_s;

private slots:
    void initTestCase()
    {
        for (const QString& d : {m_fixed + u"/docs/a"_s, m_stick + u"/music"_s, m_cd})
            QVERIFY(QDir().mkpath(d));
    }

    void init()
    {
        QDir::setCurrent(m_fixed + u"/docs"_s);
        m_fakes.reset();
        m_fakes.volumes.list = {{m_fixed, u"System"_s, DriveType::Fixed, true},
                                {m_stick, u"MyStick"_s, DriveType::Removable, true},
                                {m_cd, {}, DriveType::CdDvd, false}};
    }

    void load_data() { addFlavours(); }
    void load()
    {
        QFETCH(bool, longVersion);
        auto w = window(m_fakes, longVersion);
        const BrowserControls& ui = w->controls();
        QCOMPARE(ui.navigation.Label2->text(), m_fixed + u"/docs"_s);
        QCOMPARE(ui.status.Label4[3]->text(), u" "_s + (m_fixed + u" [System]"_s).toUpper() + u": HD DRIVE "_s);
        QCOMPARE(w->driveText(), m_fixed + u" [System]"_s);
        QVERIFY(!ui.navigation.CreateTextFiles->isEnabled() && !ui.navigation.Label9Com->isEnabled());
        QVERIFY(ui.mode.Option2->isChecked() && !w->openMode());
        QVERIFY(ui.player.playerFrame->isHidden());
        QCOMPARE(ui.mode.Label10->text(),
                 (longVersion ? u" "_s : QString()) + u"Set Option &  Double Click Folder or File to open"_s);
    }

    // A folder or drive change clears what a listing left: the panes, their counts and path boxes, the search
    // string, its results and their count; it puts the search section away with its toggle, which stays disabled until
    // the next listing, and leaves no old result to click into the emptied panes.
    void folderOrDriveChangeClears_data() { addFlavours<bool>("drive", {{"folder", false}, {"drive", true}}); }
    void folderOrDriveChangeClears()
    {
        QFETCH(bool, longVersion);
        QFETCH(bool, drive);
        auto w = window(m_fakes, longVersion);
        const BrowserControls& ui = w->controls();
        const auto listResult = [&] {
            ScanResultBuilder b(QFile::encodeName(m_fixed + u"/docs"_s));
            b.addFile(b.addFolder("a", 1), "x");
            w->listResult(b.finish());
            QTest::mouseClick(ui.navigation.Label9Com, Qt::LeftButton);
        };
        listResult();
        ui.search.srchFolder->setText(u"a"_s);
        QTest::mouseClick(ui.search.SearchFolders, Qt::LeftButton);
        QCOMPARE(ui.search.List5->model()->rowCount(), 1);
        ui.paths.Text1->setText(u"a"_s);
        ui.paths.Text2->setText(u"b"_s);
        QVERIFY(ui.navigation.CreateTextFiles->isEnabled() && !ui.navigation.List_Folders->isEnabled());

        if (drive)
            ui.navigation.Drive1->setCurrentIndex(1);
        else
            w->setDir1Path(m_fixed + u"/docs/a"_s);
        QCOMPARE(ui.navigation.Label2->text(), drive ? m_stick : m_fixed + u"/docs/a"_s);
        for (int n = 1; n <= 4; ++n)
            QCOMPARE(pane(*w, n)->model()->rowCount(), 0);
        for (int i = 0; i <= 7; ++i)
            QCOMPARE(ui.status.Label1[i]->text(), QString());
        QCOMPARE(ui.paths.Text1->text() + ui.paths.Text2->text(), QString());
        QCOMPARE(ui.search.List5->model()->rowCount(), 0);
        QCOMPARE(ui.search.srchFolder->text(), QString());
        QVERIFY(ui.search.Frame1->isHidden() && !ui.navigation.Label9Com->isEnabled());
        QVERIFY(!ui.navigation.CreateTextFiles->isEnabled() && ui.navigation.List_Folders->isEnabled());
        QCOMPARE(ui.status.Label11->text(), u"Execution Time in msec"_s);
        if (longVersion)
            QVERIFY(ui.goTo.Frame5->isHidden() && !ui.goTo.Image1->isHidden());
        QTest::mouseClick(ui.search.List5->viewport(), Qt::LeftButton, {}, QPoint(5, 5));
        QVERIFY(m_fakes.messages.calls.isEmpty());

        listResult();
        QVERIFY(ui.search.Frame1->isVisible());
        QCOMPARE(ui.search.List5->model()->rowCount(), 0);
    }

    void driveChange_data() { addFlavours(); }
    void driveChange()
    {
        QFETCH(bool, longVersion);
        auto w = window(m_fakes, longVersion);
        const BrowserControls& ui = w->controls();
        QCOMPARE(ui.navigation.Drive1->count(), 3);
        ui.navigation.Drive1->setCurrentIndex(1);
        QCOMPARE(ui.navigation.Label2->text(), m_stick);
        QCOMPARE(ui.status.Label4[3]->text(), u" CD/ DVD Volume: MYSTICK "_s);
        QVERIFY(!ui.navigation.Dir1->isHidden() && ui.navigation.List_Folders->isEnabled());

        // No medium: the tree goes away and listing is impossible, silently; the folder stays the last one.
        ui.navigation.Drive1->setCurrentIndex(2);
        QVERIFY(ui.navigation.Dir1->isHidden() && !ui.navigation.List_Folders->isEnabled());
        QCOMPARE(ui.status.Label4[3]->text(), u" CD/ DVD Volume: EMPTY "_s);
        QCOMPARE(ui.navigation.Label2->text(), m_stick);
        QVERIFY(m_fakes.messages.calls.isEmpty());

        ui.navigation.Drive1->setCurrentIndex(0);
        QVERIFY(!ui.navigation.Dir1->isHidden() && ui.navigation.List_Folders->isEnabled());
        QCOMPARE(ui.navigation.Label2->text(), m_fixed);

        // Opening the selector reads the volumes again: a stick mounted since is there, one taken away is gone,
        // and the current drive stays without a drive change.
        ui.paths.Text1->setText(u"kept"_s);
        m_fakes.volumes.list.removeAt(1);
        m_fakes.volumes.list.append({m_home.path() + u"/late"_s, u"Late"_s, DriveType::Removable, true});
        ui.navigation.Drive1->showPopup();
        ui.navigation.Drive1->hidePopup();
        QStringList listed;
        for (int i = 0; i < ui.navigation.Drive1->count(); ++i)
            listed.append(ui.navigation.Drive1->itemText(i));
        QCOMPARE(listed, (QStringList{m_fixed + u" [System]"_s, m_cd, m_home.path() + u"/late [Late]"_s}));
        QCOMPARE(ui.navigation.Drive1->currentText(), m_fixed + u" [System]"_s);
        QCOMPARE(ui.paths.Text1->text(), u"kept"_s);
    }

    // The tree (Dir1) on the folders' own bytes: only folders, links left out, in the walk's order; a name that is
    // not UTF-8 is there and lists. Renamed outside, a chosen folder keeps its node and stays chosen, and Label2
    // with it; a folder made later is found by its path, or when its parent is read again.
    void folderTree_data() { addFlavours(); }
    void folderTree()
    {
        QFETCH(bool, longVersion);
        const QByteArray docs = QFile::encodeName(m_fixed) + "/docs", odd = docs + "/\xE9t\xE9";
        QCOMPARE(::mkdir(odd.constData(), 0755), 0);
        QCOMPARE(::symlink(odd.constData(), QByteArray(docs + "/link").constData()), 0);
        ::close(::open(QByteArray(odd + "/f.txt").constData(), O_WRONLY | O_CREAT, 0644));
        const auto cleanup = qScopeGuard([&] {
            for (const char* made : {"/link", "/\xE9t\xE9/f.txt", "/later/", "/latest/", "/\xE9t\xE9/"})
                ::remove(QByteArray(docs + made).chopped(QByteArray(made).endsWith('/') ? 1 : 0).constData());
        });
        auto w = window(m_fakes, longVersion);
        const BrowserControls& ui = w->controls();
        auto* model = qobject_cast<FolderTreeModel*>(ui.navigation.Dir1->model());
        new QAbstractItemModelTester(model, QAbstractItemModelTester::FailureReportingMode::QtTest, w.get());
        const QString oddName = NativeText::toDisplay(QByteArray("\xE9t\xE9")), shown = NativeText::toDisplay(odd);
        const auto names = [&] {
            QStringList out;
            for (int row = 0; row < model->rowCount(model->index(docs)); ++row)
                out.append(model->index(row, 0, model->index(docs)).data().toString());
            return out;
        };
        w->setDir1Path(shown);
        QCOMPARE(names(), (QStringList{u"a"_s, oddName}));
        QVERIFY(!model->index(odd + "/f.txt").isValid() && !model->index(QByteArray("/elsewhere")).isValid());
        QCOMPARE(ui.navigation.Dir1->currentIndex().data().toString(), oddName);
        scan(*w);
        QCOMPARE(entries(*w, 3), QStringList{shown + u"/f.txt"_s});

        QCOMPARE(::rename(odd.constData(), QByteArray(odd + "-gone").constData()), 0);
        QCoreApplication::processEvents();
        QCOMPARE(model->index(odd), ui.navigation.Dir1->currentIndex());
        QCOMPARE(ui.navigation.Label2->text(), shown);
        QCOMPARE(ui.navigation.Dir1->currentIndex().data().toString(), oddName);
        QCOMPARE(::rename(QByteArray(odd + "-gone").constData(), odd.constData()), 0);

        QCOMPARE(::mkdir(QByteArray(docs + "/later").constData(), 0755), 0);
        QVERIFY(model->index(docs + "/later").isValid());
        QCOMPARE(::mkdir(QByteArray(docs + "/latest").constData(), 0755), 0);
        model->readAgain(model->index(docs));
        QCOMPARE(names(), (QStringList{u"a"_s, u"later"_s, u"latest"_s, oddName}));
    }

    // Command1 names the kind of the current drive. The caption for each kind is the drive caption's own test.
    void driveTypeMessage_data()
    {
        QTest::addColumn<DriveType>("type");
        QTest::addColumn<QString>("typeText");
        QTest::newRow("fixed") << DriveType::Fixed << u"Fixed"_s;
        QTest::newRow("removable") << DriveType::Removable << u"Removable"_s;
        QTest::newRow("cd") << DriveType::CdDvd << u"CD/ DVD"_s;
        QTest::newRow("network") << DriveType::Network << u"Network"_s;
        QTest::newRow("ram disk") << DriveType::RamDisk << u"RAM Disk"_s;
        QTest::newRow("unknown code") << DriveType(7) << QString();
    }
    void driveTypeMessage()
    {
        QFETCH(DriveType, type);
        QFETCH(QString, typeText);
        m_fakes.volumes.list = {{m_fixed, u"Data"_s, type, true}};
        auto w = window(m_fakes, false);
        w->controls().navigation.Command1->click();
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"0|The drive is of the type "_s + typeText});
    }

    // A caption too long for its label keeps the kind of drive in view and leaves out the middle of the drive
    // text or volume label; the label's text and tool tip hold it whole.
    void driveCaptionReadable_data()
    {
        QTest::addColumn<DriveType>("type");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("kept"); // the start or the end the label must show
        QTest::newRow("hard drive") << DriveType::Fixed << u"A LONG VOLUME LABEL"_s << u": HD DRIVE "_s;
        QTest::newRow("labelled stick") << DriveType::Removable << u"A RATHER LONG VOLUME LABEL"_s
                                        << u" CD/ DVD Volume: "_s;
    }
    void driveCaptionReadable()
    {
        QFETCH(DriveType, type);
        QFETCH(QString, label);
        QFETCH(QString, kept);
        m_fakes.volumes.list = {{m_fixed, label, type, true}};
        auto w = window(m_fakes, false);
        auto* caption = qobject_cast<DriveCaptionLabel*>(w->controls().status.Label4[3]);
        QVERIFY(caption);
        const QString whole = caption->text();
        QVERIFY(whole.startsWith(kept) || whole.endsWith(kept));
        QCOMPARE(caption->toolTip(), whole);
        const QString shown = caption->shownText();
        QVERIFY2(shown.startsWith(kept) || shown.endsWith(kept), qPrintable(shown));
        QVERIFY(shown.contains(QChar(0x2026)));
        QVERIFY(caption->fontMetrics().horizontalAdvance(shown) <= caption->contentsRect().width());

        // Wide enough, it shows whole.
        caption->resize(caption->fontMetrics().horizontalAdvance(whole) + 10, caption->height());
        QCOMPARE(caption->shownText(), whole);
    }

    void fileNamesToggle_data() { addFlavours(); }
    void fileNamesToggle()
    {
        QFETCH(bool, longVersion);
        auto w = window(m_fakes, longVersion);
        const BrowserControls& ui = w->controls();
        const int height = w->height();
        QCOMPARE(ui.paths.Label8->text(), u"Show File Names only"_s);
        QTest::mouseClick(ui.paths.Label8, Qt::LeftButton);
        QCOMPARE(w->frameGeometry().width(), Twips::toPx(13560));
        QCOMPARE(ui.paths.Label8->text(), u"Hide File Names only"_s);
        QTest::mouseClick(ui.paths.Label8, Qt::LeftButton);
        QCOMPARE(w->frameGeometry().width(), Twips::toPx(10530));
        QCOMPARE(ui.paths.Label8->text(), u"Show File Names only"_s);
        QCOMPARE(w->height(), height);

        // Maximised, the window's width is the layout's: tst_maximisedlayout.
    }

    void messagesAndExits()
    {
        auto w = window(m_fakes, false);
        const BrowserControls& ui = w->controls();
        QTest::mouseClick(ui.mode.Option1, Qt::LeftButton, {}, QPoint(6, 6));
        QVERIFY(w->openMode());
        QTest::mouseClick(ui.mode.Option2, Qt::LeftButton, {}, QPoint(6, 6));
        QVERIFY(!w->openMode());
        QTest::mouseClick(ui.mode.Image2, Qt::LeftButton);
        QCOMPARE(m_fakes.messages.calls.size(), 3);
        QCOMPARE(m_fakes.messages.calls.at(0).text, u"By choosing this option, you can directly open any FILE/ FOLDER "
                                                    "from\r\nthe generated FILE/ FOLDER lists item."_s);
        QCOMPARE(m_fakes.messages.calls.at(1).text, u"By choosing this option, you can locate any FILE/ FOLDER by "
                                                    "double\r\nclicking the generated FILE/ FOLDER lists item."_s);
        QVERIFY(
            m_fakes.messages.calls.at(2).text.startsWith(u"This Software can be used to create text files & "
                                                         "display:\r\n\r\n1. LIST OF FOLDERS WITH THEIR SIZE\r\n"_s));
        for (const auto& call : m_fakes.messages.calls)
            QVERIFY(call.style == 64 && call.title.isEmpty());

        // The emergency exit works only while the listing's wait text shows, exactly (tst_listing's wayOutMidWalk).
        QTest::mouseDClick(ui.status.Label11, Qt::LeftButton);
        ui.status.Label11->setText(u"Pl wait..."_s);
        QTest::mouseDClick(ui.status.Label11, Qt::LeftButton);
        QCOMPARE(m_fakes.programEnd.count, 0);
    }
};

QTEST_MAIN(TestBrowserWindow)
#include "tst_browserwindow.moc"
