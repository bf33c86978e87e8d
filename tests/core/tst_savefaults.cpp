// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListerRun.h"
#include "TreeBuilder.h"

#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTest>
#include <csignal>
#include <poll.h>
#include <sys/file.h>
#include <sys/inotify.h>

// Saves that fail for real, through quillary-list: whatever fails, every listing that was there before is
// still there, byte for byte, and the user is told why.
class TestSaveFaults : public QObject
{
    Q_OBJECT

    TreeBuilder m_tree;
    QTemporaryDir m_home;
    QString box() const { return m_home.path() + QStringLiteral("/Quillbox"); }
    QString root() const { return QFile::decodeName(m_tree.root()); }

    ListerRun list(const QStringList& prefix, const QStringList& args)
    {
        return ListerRun(m_home.path(), args, prefix);
    }

    QMap<QString, QByteArray> listings() const
    {
        QMap<QString, QByteArray> out;
        for (const QString& name : QDir(box()).entryList(QDir::Files | QDir::Hidden)) {
            QFile f(box() + QLatin1Char('/') + name);
            if (f.open(QIODevice::ReadOnly))
                out.insert(name, f.readAll());
        }
        return out;
    }

private slots:
    void initTestCase()
    {
        for (int i = 0; i < 3000; ++i)
            m_tree.file("folder " + QByteArray::number(i % 30) + "/a rather long file name number " +
                        QByteArray::number(i));
        ::chmod(m_tree.root().constData(), 0755);
        ::chmod(QFile::encodeName(m_home.path()).constData(), 0755);
        // A first set, on a tree half the size, to be kept intact by every failing save below.
        QCOMPARE(list({}, words("--name keep") << root()).code, 0);
        m_tree.file("one more/file");
    }

    void diskFullPartWay()
    {
        const auto before = listings();
        // A file-size limit of 20 kB: the bigger listings cannot be written whole.
        const ListerRun p = list(words("/bin/bash -c") << QStringLiteral("ulimit -f 20; exec \"$0\" \"$@\""),
                                 words("--yes --name keep") << root());
        QCOMPARE(p.status, QProcess::NormalExit);
        QCOMPARE(p.code, 3);
        QVERIFY2(p.err.contains("61\nDisk full"), "the disk-full box");
        const auto after = listings();
        QCOMPARE(after.keys(), before.keys()); // no temporary file left behind
        // What was written before the failure is new; the rest is exactly as it was.
        QCOMPARE(after[QStringLiteral("Files List WithPath keep.txt")],
                 before[QStringLiteral("Files List WithPath keep.txt")]);
    }

    // What a save killed part-way left (kill -9 gives no chance to clean up) goes with the next save; a temporary
    // file that a running save holds locked, and any other name, stay.
    void killedSaveCleanedUpByTheNext()
    {
        const auto before = listings();
        const QString stale = box() + QStringLiteral("/.quillary-Kq3x9Z"),
                      held = box() + QStringLiteral("/.quillary-h0LDme"),
                      other = box() + QStringLiteral("/.quillary-notours");
        for (const QString& name : {stale, held, other})
            QVERIFY(QFile(name).open(QIODevice::WriteOnly));
        QFile holder(held);
        QVERIFY(holder.open(QIODevice::ReadOnly));
        QCOMPARE(::flock(holder.handle(), LOCK_EX | LOCK_NB), 0);
        const ListerRun p = list({}, words("--name after") << root());
        QCOMPARE(p.code, 0);
        QVERIFY(!QFile::exists(stale));
        QVERIFY(QFile::exists(held));
        QVERIFY(QFile::exists(other));
        QFile::remove(held);
        QFile::remove(other);
        for (auto it = before.begin(); it != before.end(); ++it)
            QVERIFY(QFile::exists(box() + QLatin1Char('/') + it.key()));
    }

    // A save stopped by a signal it can catch takes its temporary files with it. The signal is sent while one is
    // there: the lister is stopped as soon as one appears, and signalled if it is still there; a save that finished
    // first is run again.
    void signalledSaveLeavesNothing_data()
    {
        QTest::addColumn<int>("sig");
        QTest::newRow("TERM") << int(SIGTERM);
        QTest::newRow("INT") << int(SIGINT);
        QTest::newRow("HUP") << int(SIGHUP);
        QTest::newRow("KILL, then a save") << int(SIGKILL); // no handler: the next save cleans up
    }
    void signalledSaveLeavesNothing()
    {
        QFETCH(int, sig);
        const QByteArray folder = QFile::encodeName(box());
        bool landed = false;
        for (int run = 0; run < 20 && !landed; ++run) {
            const int watch = ::inotify_init1(IN_CLOEXEC);
            const auto closeWatch = qScopeGuard([&] { ::close(watch); });
            QVERIFY(::inotify_add_watch(watch, folder.constData(), IN_CREATE) >= 0);
            QProcess p;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("HOME"), m_home.path());
            p.setProcessEnvironment(env);
            p.start(QStringLiteral(QUILLARY_LIST),
                    {QStringLiteral("--yes"), QStringLiteral("--no-catalogue"), QStringLiteral("--name"),
                     QStringLiteral("signalled"), QFile::decodeName(m_tree.root())});
            QByteArray temp;
            alignas(inotify_event) char events[4096];
            while (temp.isEmpty()) {
                pollfd ready{watch, POLLIN, 0};
                QVERIFY2(::poll(&ready, 1, 60000) == 1, "no temporary file was ever made");
                const ssize_t n = ::read(watch, events, sizeof events);
                for (ssize_t off = 0; off < n;) {
                    const auto* e = reinterpret_cast<const inotify_event*>(events + off);
                    if (e->len && QByteArray(e->name).startsWith(".quillary-"))
                        temp = folder + '/' + e->name;
                    off += qsizetype(sizeof(inotify_event) + e->len);
                }
            }
            const pid_t pid = pid_t(p.processId());
            ::kill(pid, SIGSTOP);
            landed = ::access(temp.constData(), F_OK) == 0;
            if (landed)
                ::kill(pid, sig);
            ::kill(pid, SIGCONT);
            QVERIFY(p.waitForFinished(120000));
            QCOMPARE(p.exitStatus(), landed ? QProcess::CrashExit : QProcess::NormalExit);
            const auto left = [&] {
                return QDir(box()).entryList(QDir::Files | QDir::Hidden).filter(QStringLiteral(".quillary-")).size();
            };
            if (sig == SIGKILL && landed) {
                QVERIFY(left() > 0);
                QCOMPARE(list({}, {QStringLiteral("--yes"), QStringLiteral("--no-catalogue"), QStringLiteral("--name"),
                                   QStringLiteral("signalled"), QFile::decodeName(m_tree.root())})
                             .code,
                         0);
            }
            QCOMPARE(left(), 0);
        }
        QVERIFY(landed);
    }

    // A collection folder that is not the user's own: nothing written, the reason on stderr, before any walk.
    void refusedCollectionFolder_data()
    {
        QTest::addColumn<QString>("home");
        QTest::addColumn<QString>("box"); // "link" or "foreign"; empty: none made
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("HOME unset") << QString() << QString() << QByteArray("HOME is not set");
        QTest::newRow("HOME empty") << QStringLiteral("") << QString() << QByteArray("HOME is not set");
        QTest::newRow("a symbolic link") << QStringLiteral("home") << QStringLiteral("link")
                                         << QByteArray("Quillbox' is a symbolic link");
        QTest::newRow("another user's") << QStringLiteral("home") << QStringLiteral("foreign")
                                        << QByteArray("Quillbox' belongs to another user");
    }
    void refusedCollectionFolder()
    {
        QFETCH(QString, home);
        QFETCH(QString, box);
        QFETCH(QByteArray, reason);
        if (box == QLatin1String("foreign") && ::geteuid() != 0)
            QSKIP("giving a folder to another user needs root");
        QTemporaryDir dir;
        const QString target = dir.path() + QStringLiteral("/target");
        QVERIFY(QDir().mkpath(target));
        if (home == QLatin1String("home")) {
            home = dir.path() + QStringLiteral("/home");
            QVERIFY(QDir().mkpath(home));
            if (box == QLatin1String("link"))
                QVERIFY(QFile::link(target, home + QStringLiteral("/Quillbox")));
            else
                QVERIFY(QDir().mkpath(home + QStringLiteral("/Quillbox")));
            if (box == QLatin1String("foreign"))
                QCOMPARE(::chown(QFile::encodeName(home + QStringLiteral("/Quillbox")).constData(), 65534, 65534), 0);
        }
        const bool rootBoxBefore = QFileInfo::exists(QStringLiteral("/Quillbox"));
        const ListerRun p(home, {root()});
        QCOMPARE(p.code, 3);
        QVERIFY2(p.err.startsWith("quillary-list: will not write into the collection folder: "), p.err.constData());
        QVERIFY2(p.err.contains(reason), p.err.constData());
        QCOMPARE(p.out, QByteArray()); // refused before the walk
        QCOMPARE(QFileInfo::exists(QStringLiteral("/Quillbox")), rootBoxBefore);
        QCOMPARE(QDir(target).entryList(QDir::Files | QDir::Hidden), QStringList());
        if (box == QLatin1String("foreign"))
            QCOMPARE(QDir(home + QStringLiteral("/Quillbox")).entryList(QDir::Files | QDir::Hidden), QStringList());
    }

    void readOnlyCollectionFolder()
    {
        // As an ordinary user; root may write anywhere.
        QStringList prefix;
        if (::geteuid() == 0) {
            const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
            if (setpriv.isEmpty())
                QSKIP("running as root without setpriv");
            prefix = QStringList{setpriv} + words("--reuid=65534 --regid=65534 --clear-groups --");
        }
        ::chmod(QFile::encodeName(box()).constData(), 0755);
        const auto before = listings();
        const ListerRun p = list(prefix, words("--yes --name keep") << root());
        QCOMPARE(p.code, 3);
        QVERIFY(p.err.contains("Change the SAVE Location. Access denied to Save in the application location."));
        QCOMPARE(listings(), before);
    }
};

QTEST_GUILESS_MAIN(TestSaveFaults)
#include "tst_savefaults.moc"
