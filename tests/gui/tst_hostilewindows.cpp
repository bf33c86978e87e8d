// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "common/NativeText.h"
#include "scan/FolderWalk.h"

#include <fcntl.h>
#include <unistd.h>

using namespace BrowserTestKit;

// Both windows on a tree made to break them: names that are not UTF-8 or hold line breaks, a link loop, a pipe,
// a chain of folders whose paths pass PATH_MAX. The panes show exactly what the walk found, byte for byte, and
// an odd name can be opened, located, copied and written to a listing as it is on disk.
class TestHostileWindows : public QObject
{
    Q_OBJECT

    TestHome m_home;
    TreeBuilder m_tree;
    FakeServices m_fakes;
    const QByteArray m_odd = "bad\xff\xfe name";

private slots:
    void initTestCase()
    {
        m_fakes.volumes.list = {{u"/"_s, QString(), DriveType::Fixed, true}};
        for (const QByteArray& n : {m_odd, QByteArray("line\nbreak"), QByteArray("-rf"), QByteArray(255, 'L')})
            m_tree.file("odd\xe9/" + n, 3);
        QCOMPARE(::symlink("..", m_tree.path("odd\xe9/loop").constData()), 0);
        QCOMPARE(::mkfifo(m_tree.path("odd\xe9/pipe").constData(), 0644), 0);
        int fd = ::open(m_tree.root().constData(), O_RDONLY | O_DIRECTORY);
        for (int i = 0; i < 2500; ++i) { // 5,000 bytes of path
            QCOMPARE(::mkdirat(fd, "d", 0755), 0);
            const int next = ::openat(fd, "d", O_RDONLY | O_DIRECTORY);
            ::close(fd);
            fd = next;
        }
        ::close(::openat(fd, "bottom", O_CREAT | O_WRONLY, 0644));
        ::close(fd);
    }

    void listsActsAndSaves_data() { addFlavours(); }
    void listsActsAndSaves()
    {
        QFETCH(bool, longVersion);
        m_fakes.reset();
        auto w = listedWindow(m_fakes, longVersion, m_tree.root());
        const auto walked = FolderWalk::run(m_tree.root());
        using L = ScanResult::List;
        int oddRow = -1;
        for (const auto& [n, list] :
             {std::pair{1, L::FolderPaths}, {2, L::FolderNames}, {3, L::FilePaths}, {4, L::FileNames}}) {
            QCOMPARE(qint64(w->panes().rowCount(n)), walked->count(list));
            for (int row = 0; row < w->panes().rowCount(n); ++row) {
                const QByteArray shown = NativeText::fromDisplay(w->panes().text(n, row));
                QCOMPARE(shown, walked->entry(list, row));
                if (n == 4 && shown == m_odd)
                    oddRow = row;
            }
        }
        QVERIFY(oddRow >= 0);
        const QByteArray oddPath = m_tree.path("odd\xe9/" + m_odd);

        // Open and locate hand the shell the name's own bytes.
        w->controls().mode.Option1->setChecked(true);
        doubleClickRow(*w, 3, oddRow);
        w->controls().mode.Option2->setChecked(true);
        doubleClickRow(*w, 3, oddRow);
        QCOMPARE(m_fakes.shell.opened.size(), 1);
        QCOMPARE(NativeText::fromDisplay(m_fakes.shell.opened.first()), oddPath);
        QCOMPARE(NativeText::fromDisplay(m_fakes.shell.located.last()), oddPath);

        // Copied into the collection folder under the same bytes.
        QDir(collectionPath()).removeRecursively();
        QDir().mkpath(collectionPath());
        clickRow(*w, 3, oddRow);
        entry(*w, longVersion ? u"SaveFileTo_MSF3"_s : u"SaveFile_3"_s)->trigger();
        QCOMPARE(::access((QFile::encodeName(collectionPath()) + '/' + m_odd).constData(), F_OK), 0);
        QCOMPARE(m_fakes.programEnd.count, 0);

        // And written to a listing as it is.
        m_fakes.input.answers = {u"odd"_s};
        QTest::mouseClick(w->controls().navigation.CreateTextFiles, Qt::LeftButton);
        const QByteArray listing = read(collectionPath() + u"/Files List WithPath odd.txt"_s);
        QVERIFY(listing.contains("\r\n" + oddPath + "\r\n"));
        QVERIFY(listing.contains("\r\n" + m_tree.path("odd\xe9/line\nbreak") + "\r\n"));
        QVERIFY(read(collectionPath() + u"/Files List - odd.txt"_s).contains("\r\nbottom\r\n"));
    }
};

QTEST_MAIN(TestHostileWindows)
#include "tst_hostilewindows.moc"
