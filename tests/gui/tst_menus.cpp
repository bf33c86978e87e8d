// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "panes/ResultList.h"
#include "scan/ScanResultBuilder.h"

#include <QApplication>
#include <string>

using namespace BrowserTestKit;

// The two pop-up menus of both windows: captions, right-click rules, information messages, and the copies of a
// file or a folder into the collection folder.
class TestMenus : public QObject
{
    Q_OBJECT

private:
    TestHome m_home;
    FakeServices m_fakes;
    TreeBuilder m_tree;

    static QStringList captions(const QMenu* menu)
    {
        QStringList out;
        for (const QAction* a : menu->actions())
            out.append(a->isSeparator() ? u"--"_s : a->text());
        return out;
    }
    static QMenu* openMenu()
    {
        for (QWidget* m : QApplication::topLevelWidgets()) {
            if (qobject_cast<QMenu*>(m) && m->isVisible())
                return static_cast<QMenu*>(m);
        }
        return nullptr;
    }
    static void closeMenus()
    {
        while (QMenu* m = openMenu())
            m->hide();
    }
    void trigger(const BrowserWindow& w, const QString& shortName, const QString& longName)
    {
        m_fakes.messages.calls.clear();
        entry(w, shortName, longName)->trigger();
    }

private slots:
    void initTestCase()
    {
        m_fakes.volumes.list = {{u"/"_s, u"System"_s, DriveType::Fixed, true}};
        // Folders (as listed): Alpha, Beta, Gamma; files: Alpha/one.txt, Beta/two.txt, Gamma/Three.txt.
        m_tree.file("Alpha/one.txt", 1024);
        m_tree.file("Beta/two.txt", 2048);
        m_tree.file("Gamma/Three.txt", 3);
    }

    void init()
    {
        QDir(collectionPath()).removeRecursively();
        m_fakes.reset();
    }

    void cleanup() { closeMenus(); }

    void menuCaptions()
    {
        const QString box = collectionPath();
        auto s = window(m_fakes, false);
        QCOMPARE(s->controls().menus.mnuPopUp2->title(), u"PopUpMenu2"_s);
        QCOMPARE(captions(s->controls().menus.mnuPopUp2),
                 QStringList({u"Open the Selected Folder"_s, u"Locate This Folder"_s, u"Show List Serial Number"_s,
                              u"Show Selected Folder Path"_s, u"--"_s, u"Save Contents of This List"_s,
                              u"Copy this Folder to "_s + box}));
        QCOMPARE(s->controls().menus.mnuPopUp->title(), u"Popup Menu"_s);
        QCOMPARE(captions(s->controls().menus.mnuPopUp),
                 QStringList({u"Open The Selected File"_s, u"Locate The Selected File"_s, u"Show List Serial Number"_s,
                              u"Show Absolute FileName"_s, u"--"_s, u"Save Contents of This List"_s,
                              u"Save This File to "_s + box}));

        auto l = window(m_fakes, true);
        QCOMPARE(l->controls().menus.mnuPopUp2->title(), u"PopupMenu2"_s);
        QCOMPARE(captions(l->controls().menus.mnuPopUp2),
                 QStringList({u"Open the Selected Folder"_s, u"Locate the Selected Folder"_s,
                              u"Show Item Serial Number"_s, u"ShowSelected Folder Path"_s,
                              u"SaveContents of this List"_s, u"Copy Selected Folder/ Sub-folders"_s}));
        QCOMPARE(l->controls().menus.mnuPopUp->title(), u"PopupMenu"_s);
        QCOMPARE(captions(l->controls().menus.mnuPopUp),
                 QStringList({u"Open the Selected File"_s, u"Locate the Selected File"_s, u"Show Item Serial Number"_s,
                              u"Show Absolute File Name"_s, u"--"_s, u"Save Contents of this List"_s,
                              u"Save this File to "_s + box}));
    }

    void shortRightClicks()
    {
        auto w = listedWindow(m_fakes, false, m_tree.root());
        const BrowserControls& ui = w->controls();
        auto* list3 = qobject_cast<ResultList*>(ui.panes.List[3]);
        qobject_cast<ResultList*>(ui.panes.List[2])->setListIndex(-1);
        list3->setListIndex(-1);

        // The folder list answers only once something is selected in it.
        clickRow(*w, 2, 1, Qt::RightButton);
        QVERIFY(!openMenu());
        QCOMPARE(w->panes().currentRow(2), -1);

        // The file list always does; the entry under the mouse is selected first, with its click handling (what
        // that fills in is the selection coupling's test, tst_listing).
        clickRow(*w, 3, 2, Qt::RightButton);
        QCOMPARE(openMenu(), ui.menus.mnuPopUp);
        QCOMPARE(w->panes().currentRow(3), 2);
        QCOMPARE(ui.status.Label1[6]->text(), u"Selected: 3"_s);
        closeMenus();

        clickRow(*w, 2, 0);
        clickRow(*w, 2, 2, Qt::RightButton);
        QCOMPARE(openMenu(), ui.menus.mnuPopUp2);
        QCOMPARE(ui.status.Label1[5]->text(), u"Selected: 3"_s);
        closeMenus();

        // Below the last entry: the first entry is taken.
        QTest::mouseClick(list3->viewport(), Qt::RightButton, {}, QPoint(5, list3->viewport()->height() - 2));
        QCOMPARE(openMenu(), ui.menus.mnuPopUp);
        QCOMPARE(w->panes().currentRow(3), 0);
        QCOMPARE(ui.status.Label1[6]->text(), u"Selected: 1"_s);
    }

    void longRightClicks()
    {
        auto w = listedWindow(m_fakes, true, m_tree.root());
        for (int pane : {2, 3}) {
            clickRow(*w, pane, 1);
            clickRow(*w, pane, 2, Qt::RightButton);
            QCOMPARE(openMenu(), pane == 2 ? w->controls().menus.mnuPopUp2 : w->controls().menus.mnuPopUp);
            // The menu acts on the row current before the click.
            QCOMPARE(w->panes().currentRow(pane), 1);
            QVERIFY(w->panes().isSelected(pane, 1));
            closeMenus();
        }
        w->controls().menus.mnuPopUp->actions().at(2)->trigger();
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"0|List Serial Number of the Selected Item is 2"_s});
    }

    // Which text each entry takes in each window, and the messages the windows compose from it.
    void messagesAndShell_data() { addFlavours(); }
    void messagesAndShell()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        clickRow(*w, 2, 1); // Beta
        clickRow(*w, 3, 2); // Gamma/Three.txt
        const QString beta = QFile::decodeName(m_tree.path("Beta"));
        const QString three = QFile::decodeName(m_tree.path("Gamma/Three.txt"));

        trigger(*w, u"ShowSerialNo2"_s, u"ShowSerialNo2"_s);
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"0|List Serial Number of the Selected Item is 2"_s});
        trigger(*w, u"ShowSerialNo"_s, u"ShowSerialNo3"_s);
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"0|List Serial Number of the Selected Item is 3"_s});
        trigger(*w, u"ShowFolderPath"_s, u"ShowFolderPath"_s);
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"0|Selected Folder Path is:\r\n\r\n"_s + beta.toUpper()});
        trigger(*w, u"AbsoluteFileName"_s, u"FolderPathName"_s);
        QCOMPARE(m_fakes.messages.texts(), QStringList{(longVersion ? u"0|Aboslute FileName is:\r\n\r\n"_s
                                                                    : u"0|Aboslute File Name is:\r\n\r\n"_s) +
                                                       u"THREE.TXT"_s});
        QCOMPARE(m_fakes.messages.calls.first().title, QString());

        trigger(*w, u"OpenFolder"_s, u"OpenFolder"_s);
        trigger(*w, u"OpenThisFile"_s, u"OpenThisFile"_s);
        QCOMPARE(m_fakes.shell.opened, QStringList({beta, three}));
        // Locating the folder takes the folder path box, which ShortBrowser fills with the name as listed.
        trigger(*w, u"LocateThisFolder"_s, u"LocateThisFolder"_s);
        trigger(*w, u"LocateThisFile"_s, u"LocateThisFile"_s);
        QCOMPARE(m_fakes.shell.located, QStringList({longVersion ? beta : w->panes().text(2, 1), three}));
        QVERIFY(m_fakes.messages.calls.isEmpty());
    }

    // The serial-number message and the selection label near the top of a long folder list: list boxes work them
    // out in 16 bits, so past 32,767 the message overflows (nothing traps it and the program ends) and the label,
    // whose handler skips what fails, keeps what it showed; grids count on in 32 bits.
    void serialNumber_sixteenBitInListBoxes_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("label");
        QTest::newRow("Short, last 16-bit")
            << false << 32766 << u"0|List Serial Number of the Selected Item is 32767"_s << u"Selected: 32767"_s;
        QTest::newRow("Short, past it") << false << 32767 << u"16|Run-time error '6':\r\n\r\nOverflow"_s
                                        << u"Selected: 1"_s;
        QTest::newRow("Long, past it") << true << 32999 << u"0|List Serial Number of the Selected Item is 33000"_s
                                       << u"Selected: 33000"_s;
    }
    void serialNumber_sixteenBitInListBoxes()
    {
        QFETCH(bool, longVersion);
        QFETCH(int, row);
        QFETCH(QString, box);
        QFETCH(QString, label);
        ScanResultBuilder b("/many");
        for (int i = 0; i < 33000; ++i) {
            std::string name = "d"; // appended, not "d" + ...: GCC 12 warns falsely about that form (-Wrestrict)
            name += std::to_string(i);
            b.addFolder(name, 0);
        }
        auto w = windowWith(m_fakes, longVersion, b.finish());
        w->panes().setCurrentRow(2, row);
        w->panes().click(2);
        QCOMPARE(w->controls().status.Label1[5]->text(), label);
        trigger(*w, u"ShowSerialNo2"_s, u"ShowSerialNo2"_s);
        QCOMPARE(m_fakes.messages.texts(), QStringList{box});
        QCOMPARE(m_fakes.programEnd.count, box.startsWith(u"16|"_s) ? 1 : 0);
    }

    // The copy's texts in each window, the question before a replace, and the unhandled error that ends the
    // program when the copy fails, the source gone or nothing selected.
    void fileCopy_data() { addFlavours(); }
    void fileCopy()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        QVERIFY(QDir().mkpath(collectionPath()));
        const QString box = collectionPath().toUpper();
        clickRow(*w, 3, 2);
        trigger(*w, u"SaveFile_3"_s, u"SaveFileTo_MSF3"_s);
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"64|File THREE.TXT saved successfully in "_s + box + u"."_s});
        QVERIFY(QFile::exists(collectionPath() + u"/Three.txt"_s));

        const QString question = (longVersion ? u"52|File THREE.TXT exists in the Folder '"_s
                                              : u"52|File of this name exists in the Folder '"_s) +
                                 collectionPath() + u"'. Would you like to replace this file?"_s;
        m_fakes.messages.answers = {Answer::No};
        trigger(*w, u"SaveFile_3"_s, u"SaveFileTo_MSF3"_s);
        QCOMPARE(m_fakes.messages.texts(), QStringList{question});
        trigger(*w, u"SaveFile_3"_s, u"SaveFileTo_MSF3"_s);
        QCOMPARE(m_fakes.messages.texts(),
                 QStringList({question, u"64|File THREE.TXT replaced successfully in "_s + box + u"."_s}));
        QCOMPARE(m_fakes.programEnd.count, 0);

        // Yes to replacing, then the source is gone: the file already there stays as it was.
        clickRow(*w, 3, 0);
        QVERIFY(QFile::remove(QFile::decodeName(m_tree.path("Alpha/one.txt"))));
        write(collectionPath() + u"/one.txt"_s, "mine");
        trigger(*w, u"SaveFile_3"_s, u"SaveFileTo_MSF3"_s);
        QCOMPARE(m_fakes.messages.texts().last(), u"16|Run-time error '53':\r\n\r\nFile not found"_s);
        QCOMPARE(m_fakes.programEnd.count, 1);
        QCOMPARE(read(collectionPath() + u"/one.txt"_s), QByteArray("mine"));
        QVERIFY(QFile::remove(collectionPath() + u"/one.txt"_s));
        m_tree.file("Alpha/one.txt", 1024);

        if (longVersion)
            w->controls().paths.Text2->clear();
        else
            qobject_cast<ResultList*>(w->controls().panes.List[3])->setListIndex(-1);
        trigger(*w, u"SaveFile_3"_s, u"SaveFileTo_MSF3"_s);
        QCOMPARE(m_fakes.messages.texts().size(), 1);
        QVERIFY(m_fakes.messages.texts().first().startsWith(u"16|Run-time error '"_s));
        QCOMPARE(m_fakes.programEnd.count, 2);
    }

    // The folder copy asks through the copy window's service and reports in each window's words. ShortBrowser's
    // folder path box holds the name as listed, which is no folder: the copy says so in its own window, and the
    // report follows all the same.
    void folderCopy()
    {
        auto w = listedWindow(m_fakes, true, m_tree.root());
        clickRow(*w, 2, 1); // Beta, whose one file is already in the collection folder
        const QString existing = collectionPath() + u"/Beta/two.txt"_s;
        write(existing, "mine");
        m_fakes.copyProgress.replies = {ItemCopy::Reply::No};
        trigger(*w, QString(), u"CopyFolders"_s);
        QCOMPARE(m_fakes.copyProgress.asked, QStringList{existing});
        QCOMPARE(m_fakes.copyProgress.finishes, 1);
        QCOMPARE(m_fakes.messages.texts(),
                 QStringList{u"64|Folder/ Sub-Folders of "_s + w->panes().text(2, 1).toUpper() + u" copied to '"_s +
                             collectionPath().toUpper() + u"' folder"_s});

        auto s = listedWindow(m_fakes, false, m_tree.root());
        clickRow(*s, 2, 2);
        trigger(*s, u"CopyFolders"_s, QString());
        QCOMPARE(m_fakes.copyProgress.problems, QStringList{s->panes().text(2, 2)});
        QCOMPARE(m_fakes.messages.texts(),
                 QStringList{u"64|Folder/ Sub-Folders of the Folder '"_s + s->panes().text(2, 2).toUpper() +
                             u"' copied to '"_s + collectionPath().toUpper() + u"' folder"_s});
        QCOMPARE(m_fakes.programEnd.count, 0);
    }
};

QTEST_MAIN(TestMenus)
#include "tst_menus.moc"
