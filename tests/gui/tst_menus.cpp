#include "BrowserTestKit.h"

#include "browser/ResultList.h"

#include <QLabel>
#include <QLineEdit>
#include <QStandardPaths>

using namespace BrowserTestKit;
using namespace Qt::StringLiterals;

// The two pop-up menus of both windows: captions, right-click rules, information messages, and the copies of a
// file or a folder into the collection folder.
class TestMenus : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;
    FakeServices m_fakes;
    TreeBuilder m_tree;

    QStringList texts() const
    {
        QStringList out;
        for (const auto& call : m_fakes.messages.calls)
            out.append(QString::number(call.style) + QLatin1Char('|') + call.text);
        return out;
    }
    static QStringList captions(const QMenu* menu)
    {
        QStringList out;
        for (const QAction* a : menu->actions())
            out.append(a->isSeparator() ? QStringLiteral("--") : a->text());
        return out;
    }
    static QString label(const BrowserWindow& w, const QString& name) { return w.findChild<QLabel*>(name)->text(); }
    static QMenu* openMenu()
    {
        const auto menus = QApplication::topLevelWidgets();
        for (QWidget* m : menus) {
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
        entry(w, w.flavour().panes == BrowserFlavour::Panes::Grids ? longName : shortName)->trigger();
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        qputenv("HOME", QFile::encodeName(m_home.path()));
        m_fakes.volumes.list = {{QStringLiteral("/"), QStringLiteral("System"), 2, true}};
        // Folders (as listed): Alpha, Beta, Gamma; files: Alpha/one.txt, Beta/two.txt, Gamma/Three.txt.
        m_tree.file("Alpha/one.txt", 1024);
        m_tree.file("Beta/two.txt", 2048);
        m_tree.file("Gamma/Three.txt", 3);
    }

    void init()
    {
        QDir(collectionPath()).removeRecursively();
        m_fakes.messages.calls.clear();
        m_fakes.messages.answers.clear();
        m_fakes.shell.opened.clear();
        m_fakes.shell.located.clear();
        m_fakes.programEnd.count = 0;
        m_fakes.copyProgress = FakeCopyProgress();
    }

    void cleanup() { closeMenus(); }

    void menuCaptions()
    {
        const QString box = collectionPath();
        auto s = std::make_unique<BrowserWindow>(BrowserFlavour::shortBrowser(), m_fakes.services(), nullptr);
        QCOMPARE(s->controls().mnuPopUp2->title(), QStringLiteral("PopUpMenu2"));
        QCOMPARE(captions(s->controls().mnuPopUp2),
                 QStringList({u"Open the Selected Folder"_s, u"Locate This Folder"_s, u"Show List Serial Number"_s,
                              u"Show Selected Folder Path"_s, u"--"_s, u"Save Contents of This List"_s,
                              u"Copy this Folder to "_s + box}));
        QCOMPARE(s->controls().mnuPopUp->title(), QStringLiteral("Popup Menu"));
        QCOMPARE(captions(s->controls().mnuPopUp),
                 QStringList({u"Open The Selected File"_s, u"Locate The Selected File"_s, u"Show List Serial Number"_s,
                              u"Show Absolute FileName"_s, u"--"_s, u"Save Contents of This List"_s,
                              u"Save This File to "_s + box}));

        auto l = std::make_unique<BrowserWindow>(BrowserFlavour::longBrowser(), m_fakes.services(), nullptr);
        QCOMPARE(l->controls().mnuPopUp2->title(), QStringLiteral("PopupMenu2"));
        QCOMPARE(captions(l->controls().mnuPopUp2),
                 QStringList({u"Open the Selected Folder"_s, u"Locate the Selected Folder"_s,
                              u"Show Item Serial Number"_s, u"ShowSelected Folder Path"_s,
                              u"SaveContents of this List"_s, u"Copy Selected Folder/ Sub-folders"_s}));
        QCOMPARE(l->controls().mnuPopUp->title(), QStringLiteral("PopupMenu"));
        QCOMPARE(captions(l->controls().mnuPopUp),
                 QStringList({u"Open the Selected File"_s, u"Locate the Selected File"_s, u"Show Item Serial Number"_s,
                              u"Show Absolute File Name"_s, u"--"_s, u"Save Contents of this List"_s,
                              u"Save this File to "_s + box}));
    }

    void shortRightClicks()
    {
        auto w = listedWindow(m_fakes, false, m_tree.root());
        auto* list2 = qobject_cast<ResultList*>(w->controls().List[2]);
        auto* list3 = qobject_cast<ResultList*>(w->controls().List[3]);
        list2->setListIndex(-1);
        list3->setListIndex(-1);

        // The folder list answers only once something is selected in it.
        clickRow(*w, 2, 1, Qt::RightButton);
        QVERIFY(!openMenu());
        QCOMPARE(w->panes().currentRow(2), -1);

        // The file list always does; the entry under the mouse is selected first, with its click handling.
        clickRow(*w, 3, 2, Qt::RightButton);
        QCOMPARE(openMenu(), w->controls().mnuPopUp);
        QCOMPARE(w->panes().currentRow(3), 2);
        QCOMPARE(label(*w, QStringLiteral("Label1_6")), QStringLiteral("Selected: 3"));
        QCOMPARE(w->controls().Text2->text(), QFile::decodeName(m_tree.path("Gamma/Three.txt")));
        closeMenus();

        clickRow(*w, 2, 0);
        clickRow(*w, 2, 2, Qt::RightButton);
        QCOMPARE(openMenu(), w->controls().mnuPopUp2);
        QCOMPARE(w->panes().currentRow(2), 2);
        QCOMPARE(label(*w, QStringLiteral("Label1_5")), QStringLiteral("Selected: 3"));
        QCOMPARE(w->controls().Text1->text(), w->panes().text(2, 2));
        closeMenus();

        // Below the last entry: the first entry is taken.
        QTest::mouseClick(list3->viewport(), Qt::RightButton, {}, QPoint(5, list3->viewport()->height() - 2));
        QCOMPARE(openMenu(), w->controls().mnuPopUp);
        QCOMPARE(w->panes().currentRow(3), 0);
        QCOMPARE(label(*w, QStringLiteral("Label1_6")), QStringLiteral("Selected: 1"));
    }

    void longRightClicks()
    {
        auto w = listedWindow(m_fakes, true, m_tree.root());
        for (int pane : {2, 3}) {
            clickRow(*w, pane, 1);
            clickRow(*w, pane, 2, Qt::RightButton);
            QCOMPARE(openMenu(), pane == 2 ? w->controls().mnuPopUp2 : w->controls().mnuPopUp);
            // The menu acts on the row current before the click.
            QCOMPARE(w->panes().currentRow(pane), 1);
            QVERIFY(w->panes().isSelected(pane, 1));
            closeMenus();
        }
        m_fakes.messages.calls.clear();
        w->controls().mnuPopUp->actions().at(2)->trigger();
        QCOMPARE(texts(), QStringList{QStringLiteral("0|List Serial Number of the Selected Item is 2")});
    }

    void messagesAndShell_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::newRow("ShortBrowser") << false;
        QTest::newRow("LongBrowser") << true;
    }
    void messagesAndShell()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        clickRow(*w, 2, 1); // Beta
        clickRow(*w, 3, 2); // Gamma/Three.txt
        const QString beta = QFile::decodeName(m_tree.path("Beta"));
        const QString three = QFile::decodeName(m_tree.path("Gamma/Three.txt"));

        trigger(*w, QStringLiteral("ShowSerialNo2"), QStringLiteral("ShowSerialNo2"));
        QCOMPARE(texts(), QStringList{QStringLiteral("0|List Serial Number of the Selected Item is 2")});
        trigger(*w, QStringLiteral("ShowSerialNo"), QStringLiteral("ShowSerialNo3"));
        QCOMPARE(texts(), QStringList{QStringLiteral("0|List Serial Number of the Selected Item is 3")});
        trigger(*w, QStringLiteral("ShowFolderPath"), QStringLiteral("ShowFolderPath"));
        QCOMPARE(texts(), QStringList{QStringLiteral("0|Selected Folder Path is:\r\n\r\n") + beta.toUpper()});
        trigger(*w, QStringLiteral("AbsoluteFileName"), QStringLiteral("FolderPathName"));
        QCOMPARE(texts(), QStringList{(longVersion ? QStringLiteral("0|Aboslute FileName is:\r\n\r\n")
                                                   : QStringLiteral("0|Aboslute File Name is:\r\n\r\n")) +
                                      QStringLiteral("THREE.TXT")});
        QCOMPARE(m_fakes.messages.calls.first().title, QString());

        trigger(*w, QStringLiteral("OpenFolder"), QStringLiteral("OpenFolder"));
        trigger(*w, QStringLiteral("OpenThisFile"), QStringLiteral("OpenThisFile"));
        QCOMPARE(m_fakes.shell.opened, QStringList({beta, three}));
        // Locating the folder takes the folder path box, which ShortBrowser fills with the name as listed.
        trigger(*w, QStringLiteral("LocateThisFolder"), QStringLiteral("LocateThisFolder"));
        trigger(*w, QStringLiteral("LocateThisFile"), QStringLiteral("LocateThisFile"));
        QCOMPARE(m_fakes.shell.located, QStringList({longVersion ? beta : w->panes().text(2, 1), three}));
        QVERIFY(m_fakes.messages.calls.isEmpty());
    }

    void fileCopy_data() { messagesAndShell_data(); }
    void fileCopy()
    {
        QFETCH(bool, longVersion);
        const QString copyName = longVersion ? QStringLiteral("SaveFileTo_MSF3") : QStringLiteral("SaveFile_3");
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        QVERIFY(QDir().mkpath(collectionPath()));
        const QString target = collectionPath() + QStringLiteral("/Three.txt");
        const QString box = collectionPath().toUpper();
        write(QFile::decodeName(m_tree.path("Gamma/Three.txt")), "new");
        clickRow(*w, 3, 2);

        trigger(*w, copyName, copyName);
        QCOMPARE(texts(), QStringList{u"64|File THREE.TXT saved successfully in "_s + box + u"."_s});
        QCOMPARE(read(target), QByteArray("new"));

        const QString question = longVersion ? u"52|File THREE.TXT exists in the Folder '"_s + collectionPath() +
                                                   u"'. Would you like to replace this file?"_s
                                             : u"52|File of this name exists in the Folder '"_s + collectionPath() +
                                                   u"'. Would you like to replace this file?"_s;
        write(target, "mine");
        m_fakes.messages.answers = {Answer::No};
        trigger(*w, copyName, copyName);
        QCOMPARE(texts(), QStringList{question});
        QCOMPARE(read(target), QByteArray("mine"));

        m_fakes.messages.answers = {Answer::Yes};
        trigger(*w, copyName, copyName);
        QCOMPARE(texts(), QStringList({question, u"64|File THREE.TXT replaced successfully in "_s + box + u"."_s}));
        QCOMPARE(read(target), QByteArray("new"));
        QCOMPARE(m_fakes.programEnd.count, 0);

        // The source gone: an unhandled run-time error, and the program ends.
        clickRow(*w, 3, 0);
        QVERIFY(QFile::remove(QFile::decodeName(m_tree.path("Alpha/one.txt"))));
        trigger(*w, copyName, copyName);
        QCOMPARE(texts(), QStringList{QStringLiteral("16|Run-time error '53':\r\n\r\nFile not found")});
        QCOMPARE(m_fakes.programEnd.count, 1);
        QVERIFY(!QFile::exists(collectionPath() + QStringLiteral("/one.txt")));
        m_tree.file("Alpha/one.txt", 1024);
    }

    void nothingSelectedEnds_data() { messagesAndShell_data(); }
    void nothingSelectedEnds()
    {
        QFETCH(bool, longVersion);
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        QVERIFY(QDir().mkpath(collectionPath()));
        if (longVersion)
            w->controls().Text2->clear();
        else
            qobject_cast<ResultList*>(w->controls().List[3])->setListIndex(-1);
        trigger(*w, QStringLiteral("SaveFile_3"), QStringLiteral("SaveFileTo_MSF3"));
        QCOMPARE(texts().size(), 1);
        QVERIFY(texts().first().startsWith(QStringLiteral("16|Run-time error '")));
        QCOMPARE(m_fakes.programEnd.count, 1);
    }

    void folderCopy()
    {
        auto w = listedWindow(m_fakes, true, m_tree.root());
        clickRow(*w, 2, 1); // Beta, whose one file is already in the collection folder
        m_tree.file("Beta/more.txt", 5);
        const QString existing = collectionPath() + QStringLiteral("/Beta/two.txt");
        write(existing, "mine");
        m_fakes.copyProgress.replies = {ItemCopy::Reply::No};

        trigger(*w, QString(), QStringLiteral("CopyFolders"));
        QCOMPARE(m_fakes.copyProgress.asked, QStringList{existing});
        QCOMPARE(read(existing), QByteArray("mine"));
        QVERIFY(QFile::exists(collectionPath() + QStringLiteral("/Beta/more.txt")));
        QCOMPARE(m_fakes.copyProgress.lastDone, m_fakes.copyProgress.lastTotal);
        QCOMPARE(m_fakes.copyProgress.finishes, 1);
        QCOMPARE(texts(), QStringList{u"64|Folder/ Sub-Folders of "_s + w->panes().text(2, 1).toUpper() +
                                      u" copied to '"_s + collectionPath().toUpper() + u"' folder"_s});
        QVERIFY(QFile::remove(QFile::decodeName(m_tree.path("Beta/more.txt"))));

        // ShortBrowser's folder path box holds the name as listed, which is no folder: the copy says so in its
        // own window, and the report follows all the same.
        auto s = listedWindow(m_fakes, false, m_tree.root());
        clickRow(*s, 2, 2);
        trigger(*s, QStringLiteral("CopyFolders"), QString());
        QCOMPARE(m_fakes.copyProgress.problems, QStringList{s->panes().text(2, 2)});
        QCOMPARE(texts(), QStringList{u"64|Folder/ Sub-Folders of the Folder '"_s + s->panes().text(2, 2).toUpper() +
                                      u"' copied to '"_s + collectionPath().toUpper() + u"' folder"_s});
        QCOMPARE(m_fakes.programEnd.count, 0);
    }
};

QTEST_MAIN(TestMenus)
#include "tst_menus.moc"
