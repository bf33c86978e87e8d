// SPDX-License-Identifier: GPL-3.0-or-later

#include "TreeBuilder.h"
#include "export/ItemCopy.h"

#include <QScopeGuard>
#include <QTest>
#include <sys/mount.h>

using ItemCopy::Reply;

namespace {

QByteArray read(const QByteArray& path)
{
    const int fd = ::open(path.constData(), O_RDONLY);
    if (fd < 0)
        return "<missing>";
    char buf[256];
    const ssize_t n = ::read(fd, buf, sizeof buf);
    ::close(fd);
    return QByteArray(buf, qsizetype(std::max<ssize_t>(n, 0)));
}

void write(const QByteArray& path, const QByteArray& data)
{
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    QVERIFY(fd >= 0);
    QCOMPARE(::write(fd, data.constData(), size_t(data.size())), ssize_t(data.size()));
    ::close(fd);
}

QStringList temporaries(const QByteArray& folder)
{
    return QDir(QFile::decodeName(folder))
        .entryList(QDir::Files | QDir::Hidden | QDir::System)
        .filter(QStringLiteral(".quillary"));
}

constexpr time_t OldTime = 978307200; // 1 January 2001

enum Fault { OntoItself, HardLink, LinkToIt, Unreadable, FullDisk };

qint64 sizeOf(const QByteArray& path)
{
    struct stat st;
    return ::lstat(path.constData(), &st) == 0 ? qint64(st.st_size) : -1;
}

} // namespace

class TestItemCopy : public QObject
{
    Q_OBJECT

private slots:
    void copyOneFile()
    {
        TreeBuilder src, box;
        write(src.path("odd\xff name.txt"), "fresh");
        QCOMPARE(ItemCopy::copyFile(src.path("odd\xff name.txt"), box.path("odd\xff name.txt")), 0);
        QCOMPARE(read(box.path("odd\xff name.txt")), QByteArray("fresh"));
        QVERIFY(ItemCopy::fileExists(box.path("odd\xff name.txt")));

        write(box.path("old.txt"), "old content");
        write(src.path("old.txt"), "new");
        QCOMPARE(ItemCopy::copyFile(src.path("old.txt"), box.path("old.txt")), 0);
        QCOMPARE(read(box.path("old.txt")), QByteArray("new"));

        QCOMPARE(ItemCopy::copyFile(src.path("gone.txt"), box.path("gone.txt")), 53);
        QCOMPARE(ItemCopy::copyFile(src.path("old.txt"), box.path("no/such/folder.txt")), 76);
        box.dir("adir");
        QCOMPARE(ItemCopy::copyFile(src.path("old.txt"), box.path("adir")), 75);
        QVERIFY(!ItemCopy::fileExists(box.path("adir")));
        QCOMPARE(ItemCopy::copyFile(src.path(""), box.path("x")), 75); // a folder is not a file

        // A set-user-ID program copied (by root, say) loses the bit, and keeps its date.
        write(src.path("tool"), "#!/bin/sh\n");
        QCOMPARE(::chmod(src.path("tool").constData(), 06755), 0);
        QVERIFY(TreeBuilder::setTime(src.path("tool"), OldTime));
        QCOMPARE(ItemCopy::copyFile(src.path("tool"), box.path("tool")), 0);
        struct stat st;
        QCOMPARE(::stat(box.path("tool").constData(), &st), 0);
        QCOMPARE(st.st_mode & 07700, mode_t(0700));
        QCOMPARE(st.st_mtim.tv_sec, OldTime);

        // A link is copied as a link; a pipe is never opened.
        QCOMPARE(::symlink("old.txt", src.path("link").constData()), 0);
        QCOMPARE(ItemCopy::copyFile(src.path("link"), box.path("link")), 0);
        char target[64] = {};
        QCOMPARE(::readlink(box.path("link").constData(), target, sizeof target - 1), qsizetype(7));
        QCOMPARE(QByteArray(target), QByteArray("old.txt"));
        QCOMPARE(::mkfifo(src.path("pipe").constData(), 0644), 0);
        QCOMPARE(ItemCopy::copyFile(src.path("pipe"), box.path("pipe")), 75);
        QVERIFY(!ItemCopy::fileExists(box.path("pipe")));
        QCOMPARE(temporaries(box.root()), QStringList()); // no temporary file left behind
    }

    void copyATree()
    {
        TreeBuilder src, box;
        src.file("Album/a.jpg", 10);
        src.file("Album/b.jpg", 20);
        src.file("Album/c.jpg", 30);
        src.file("Album/deeper/d.jpg", 40);
        box.file("Album/a.jpg");
        box.file("Album/b.jpg");
        box.file("Album/c.jpg");
        QCOMPARE(::mkfifo(src.path("Album/pipe").constData(), 0644), 0);
        QVERIFY(TreeBuilder::setTime(src.path("Album/deeper"), OldTime));

        QList<QByteArray> asked, problems;
        QList<Reply> replies{Reply::No, Reply::Yes, Reply::No};
        qint64 lastDone = -1, lastTotal = -1;
        ItemCopy::TreeCallbacks cb;
        cb.confirmReplace = [&](const QByteArray& target) {
            asked.append(target);
            return replies.takeFirst();
        };
        cb.progress = [&](qint64 done, qint64 total, const QByteArray&) {
            lastDone = done;
            lastTotal = total;
            return true;
        };
        cb.problem = [&](const QByteArray& path, int) { problems.append(path); };
        auto out = ItemCopy::copyTree(src.path("Album"), box.root(), cb);
        QCOMPARE(asked.size(), 3); // each file in the way, merged into the folder already there
        QCOMPARE(out.copied, 2);   // one replaced, deeper/d.jpg new
        QCOMPARE(out.skipped, 3);  // two answered No, the pipe
        QCOMPARE(problems, QList<QByteArray>({src.path("Album/pipe")}));
        QCOMPARE(lastDone, lastTotal);
        QCOMPARE(sizeOf(box.path("Album/deeper/d.jpg")), 40);
        struct stat st;
        QCOMPARE(::stat(box.path("Album/deeper").constData(), &st), 0);
        QCOMPARE(st.st_mtim.tv_sec, OldTime); // the folder's date, not the copy's
        int replaced = 0;
        for (const char* f : {"Album/a.jpg", "Album/b.jpg", "Album/c.jpg"})
            replaced += sizeOf(box.path(f)) > 0;
        QCOMPARE(replaced, 1);

        // Yes to All: no further questions; Cancel: stops there.
        asked.clear();
        replies = {Reply::YesToAll};
        out = ItemCopy::copyTree(src.path("Album"), box.root(), cb);
        QCOMPARE(asked.size(), 1);
        QCOMPARE(out.copied, 4);
        replies = {Reply::Cancel};
        asked.clear();
        out = ItemCopy::copyTree(src.path("Album"), box.root(), cb);
        QVERIFY(out.cancelled);
        QCOMPARE(asked.size(), 1);
        QCOMPARE(out.copied, 0);

        // A source that is not there is a problem and leaves nothing behind.
        problems.clear();
        out = ItemCopy::copyTree(src.path("Gone"), box.root(), cb);
        QCOMPARE(problems, QList<QByteArray>({src.path("Gone")}));
        QCOMPARE(out.copied, 0);
        QCOMPARE(sizeOf(box.path("Gone")), -1);
    }

    // Replacing a file in the collection folder never costs the user the file that was there.
    void replaceKeepsTheOldTarget_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<int>("error");
        QTest::newRow("onto itself") << int(OntoItself) << 0;
        QTest::newRow("hard link to the target") << int(HardLink) << 0;
        QTest::newRow("symbolic link to the target") << int(LinkToIt) << 0;
        QTest::newRow("unreadable source") << int(Unreadable) << 75;
        QTest::newRow("full file system") << int(FullDisk) << 61;
    }
    void replaceKeepsTheOldTarget()
    {
        QFETCH(int, fault);
        QFETCH(int, error);
        TreeBuilder src, box;
        QByteArray root = box.root();
        if (fault == FullDisk) {
            if (::geteuid() != 0)
                QSKIP("mounting a small file system needs root");
            QVERIFY(::mount("tmpfs", root.constData(), "tmpfs", 0, "size=64k") == 0);
        }
        const auto unmount = qScopeGuard([&] {
            if (fault == FullDisk)
                ::umount2(root.constData(), MNT_DETACH);
        });
        const QByteArray target = root + "/mine.txt";
        write(target, "the user's only copy");
        struct stat before;
        QCOMPARE(::stat(target.constData(), &before), 0);
        QByteArray source = src.path("new.txt");
        write(source, QByteArray(1 << 20, 'n'));
        if (fault == OntoItself)
            source = target;
        if (fault == HardLink)
            QCOMPARE(::link(target.constData(), (source = root + "/another name.txt").constData()), 0);
        if (fault == LinkToIt)
            QCOMPARE(::symlink(target.constData(), (source = src.path("mine.txt")).constData()), 0);
        if (fault == Unreadable)
            QCOMPARE(::chmod(source.constData(), 0), 0);

        // Root reads anything: the unreadable source is copied as an ordinary user.
        const bool asUser = fault == Unreadable && ::geteuid() == 0;
        if (asUser) {
            QCOMPARE(::chmod(root.constData(), 0777), 0);
            QCOMPARE(::seteuid(65534), 0);
        }
        const int got = ItemCopy::copyFile(source, target);
        if (asUser)
            QCOMPARE(::seteuid(0), 0);
        QCOMPARE(got, error);
        QCOMPARE(read(target), QByteArray("the user's only copy"));
        struct stat after;
        QCOMPARE(::stat(target.constData(), &after), 0);
        QCOMPARE(after.st_ino, before.st_ino); // the very file, not a copy of it
        QCOMPARE(temporaries(root), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestItemCopy)
#include "tst_itemcopy.moc"
