// SPDX-License-Identifier: GPL-3.0-or-later

// The program as a person uses it, on a real X server (Xvfb) with a window manager and the real services. The
// test sees the windows the way a screen reader does, through the desktop's accessibility bus: it finds each
// control by its role and name, reads texts and states there, and clicks and types through the X server
// (xdotool) where the control is on the screen. The program does nothing for the test that it would not do for
// a screen reader.
#include "AccessibleDesktop.h"

#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QLocale>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

// A step that failed ends the session there, instead of waiting out every later step.
#define STEP(...)                                                                                                      \
    do {                                                                                                               \
        __VA_ARGS__;                                                                                                   \
        if (QTest::currentTestFailed())                                                                                \
            return;                                                                                                    \
    } while (false)

namespace {

QString tool(const char* name)
{
    return QStandardPaths::findExecutable(QString::fromLatin1(name));
}

void writeFile(const QString& path, qint64 size)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(size, 'x'));
}

} // namespace

class TestEndToEnd : public QObject
{
    Q_OBJECT

    QProcess m_xvfb, m_wm, m_app;
    QString m_display;
    QTemporaryDir m_tmp;
    QString m_home, m_fixture, m_artifacts, m_busAddressFile;
    AccessibleNode m_quillary;

    QProcessEnvironment xEnv() const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DISPLAY"), m_display);
        return env;
    }

    // Runs one of the X tools on the test's display and gives what it printed.
    QByteArray x(const char* name, const QStringList& args)
    {
        QProcess p;
        p.setProcessEnvironment(xEnv());
        p.start(tool(name), args);
        QTest::qVerify(p.waitForFinished(20000), "waitForFinished", name, __FILE__, __LINE__);
        return p.readAllStandardOutput();
    }
    void xdo(const QStringList& args) { x("xdotool", args); }

    bool waitFor(const std::function<bool()>& done, int ms = 20000)
    {
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < ms) {
            if (done())
                return true;
            QTest::qWait(100);
        }
        return done();
    }

    // A shown window of the program (a main window, a message box or an input box) by its title.
    AccessibleNode window(const QString& title)
    {
        for (const AccessibleNode& w : m_quillary.children()) {
            if (w.name() == title && w.showing())
                return w;
        }
        return {};
    }

    AccessibleNode waitForWindow(const QString& title)
    {
        AccessibleNode w;
        waitFor([&] { return !(w = window(title)).isNull(); });
        return w;
    }

    // The shown box whose message starts with `text`.
    AccessibleNode box(const QString& text)
    {
        for (const AccessibleNode& w : m_quillary.children()) {
            const QString role = w.role();
            if ((role == QLatin1String("alert") || role == QLatin1String("dialog")) && w.showing() &&
                !w.find([&](const AccessibleNode& n) {
                      return n.role() == QLatin1String("label") && n.name().startsWith(text);
                  }).isNull())
                return w;
        }
        return {};
    }

    static AccessibleNode label(const AccessibleNode& in, const std::function<bool(const QString&)>& says)
    {
        return in.find([&](const AccessibleNode& n) {
            return n.role() == QLatin1String("label") && n.showing() && says(n.name());
        });
    }

    // Where a control is once it stays put: the window manager may still be placing a window just shown.
    QRect settledPlace(const AccessibleNode& control)
    {
        QRect place, before;
        waitFor([&] {
            before = place;
            place = control.extents();
            return place.isValid() && place == before;
        });
        return place;
    }

    // A click in the middle of the control, or near its left edge where only an option's mark and caption
    // take clicks.
    void click(const AccessibleNode& control, bool nearLeft = false)
    {
        QVERIFY(!control.isNull());
        const QRect r = settledPlace(control);
        QVERIFY2(r.isValid(), qPrintable(control.name()));
        const QPoint at(r.x() + (nearLeft ? 8 : r.width() / 2), r.y() + r.height() / 2);
        xdo({QStringLiteral("mousemove"), QStringLiteral("--sync"), QString::number(at.x()), QString::number(at.y())});
        xdo({QStringLiteral("click"), QStringLiteral("1")});
    }

    void answerBox(const QString& startsWith, const QString& button)
    {
        AccessibleNode shown;
        QVERIFY2(waitFor([&] { return !(shown = box(startsWith)).isNull(); }),
                 qPrintable(QStringLiteral("waiting for a box \"%1\"").arg(startsWith)));
        // A click that lands while the box is still being placed misses it; then the box is clicked again.
        for (int attempt = 0; attempt < 4; ++attempt) {
            click(shown.find(QStringLiteral("push button"), button));
            if (waitFor([&] { return box(startsWith).isNull(); }, 3000))
                return;
        }
        QFAIL(qPrintable(QStringLiteral("the box \"%1\" did not go").arg(startsWith)));
    }

    void typeText(const QString& text)
    {
        xdo({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("30"), text});
    }

    void key(const QString& name) { xdo({QStringLiteral("key"), name}); }

    void shot(const QString& name)
    {
        const QString file = m_artifacts + QLatin1Char('/') + name;
        x("import", {QStringLiteral("-window"), QStringLiteral("root"), file});
        QVERIFY2(!QImage(file).isNull(), "import gave no picture of the screen");
    }

    // Dir1 starts in the program's current folder, the fixture's parent: open that row and step down into it.
    void chooseFixture(const AccessibleNode& browser)
    {
        const AccessibleNode tree = browser.find(QStringLiteral("tree"), QStringLiteral("Folders of the drive"));
        QVERIFY(!tree.isNull());
        const QString parent = QFileInfo(m_tmp.path()).fileName();
        AccessibleNode row;
        QVERIFY(waitFor([&] {
            row = tree.find([&](const AccessibleNode& n) { return n.name() == parent && n.showing(); }, true);
            return !row.isNull();
        }));
        click(row);
        key(QStringLiteral("Right"));
        QVERIFY(waitFor([&] {
            return !tree.find([](const AccessibleNode& n) { return n.name() == QLatin1String("fixture"); }, true)
                        .isNull();
        }));
        key(QStringLiteral("Down"));
        QVERIFY2(waitFor([&] { return !label(browser, [&](const QString& s) { return s == m_fixture; }).isNull(); }),
                 "the fixture folder was not chosen");
    }

    void listAll(const AccessibleNode& browser)
    {
        const AccessibleNode list =
            browser.find(QStringLiteral("push button"), QStringLiteral("List All Folders & Files"));
        QVERIFY(waitFor([&] { return list.enabled(); }));
        click(list);
        AccessibleNode timing;
        QVERIFY(waitFor([&] {
            return !(timing = label(browser, [](const QString& s) {
                         return s.startsWith(QLatin1String("Elapsed time: "));
                     })).isNull();
        }));
        QVERIFY2(QRegularExpression(QStringLiteral("^Elapsed time: [0-9.]+ sec$")).match(timing.name()).hasMatch(),
                 qPrintable(timing.name()));
    }

    // Whether every window whose title matches `titlePattern` (a regular expression, as xdotool takes it) carries
    // the program's icon. The program offers its scalable icon in several sizes; openbox puts a single 48-pixel
    // icon of its own on a window that has none.
    bool carriesIcon(const QString& titlePattern)
    {
        const QStringList ids =
            QString::fromLatin1(x("xdotool", {QStringLiteral("search"), QStringLiteral("--name"), titlePattern}))
                .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (const QString& id : ids) {
            if (x("xprop", {QStringLiteral("-id"), id, QStringLiteral("_NET_WM_ICON")}).count("Icon (") < 2)
                return false;
        }
        return !ids.isEmpty();
    }

    // The two options share the caption "Quillary"; their descriptions tell the versions apart.
    static AccessibleNode versionOption(const AccessibleNode& options, const QString& version)
    {
        return options.find([&](const AccessibleNode& n) {
            return n.role() == QLatin1String("radio button") && n.description().contains(version);
        });
    }

    static bool shows(const AccessibleNode& browser, const QString& text)
    {
        return !label(browser, [&](const QString& s) { return s == text; }).isNull();
    }

private slots:
    void initTestCase()
    {
        for (const char* needed : {"Xvfb", "xdotool", "import", "xprop", "dbus-run-session", "dbus-send"}) {
            if (tool(needed).isEmpty())
                QSKIP(qPrintable(QStringLiteral("%1 is not installed (make test installs it on Debian)")
                                     .arg(QLatin1String(needed))));
        }
        QVERIFY(m_tmp.isValid());
        m_artifacts = QStringLiteral(QUILLARY_ARTIFACTS);
        QDir().mkpath(m_artifacts);

        // Xvfb picks a free display and tells us which.
        m_xvfb.start(tool("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                                    QStringLiteral("0"), QStringLiteral("1400x1000x24"), QStringLiteral("-ac"),
                                    QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        QVERIFY(m_xvfb.waitForReadyRead(15000));
        m_display = QLatin1Char(':') + QString::fromLatin1(m_xvfb.readAllStandardOutput()).trimmed();
        if (!tool("openbox").isEmpty()) { // a window manager, so windows have close boxes
            m_wm.setProcessEnvironment(xEnv());
            m_wm.start(tool("openbox"), {});
            QTest::qWait(500);
        }

        // A home, a fixture and a session folder the program may use as an ordinary user.
        ::chmod(QFile::encodeName(m_tmp.path()).constData(), 0755);
        m_home = m_tmp.path() + QStringLiteral("/home");
        m_fixture = m_tmp.path() + QStringLiteral("/fixture");
        const QString session = m_home + QStringLiteral("/session");
        QDir().mkpath(session);
        ::chmod(QFile::encodeName(m_home).constData(), 0777);
        ::chmod(QFile::encodeName(session).constData(), 0777);
        m_busAddressFile = session + QStringLiteral("/a11y-bus");
        writeFile(m_fixture + QStringLiteral("/A/a1.txt"), 1536);
        writeFile(m_fixture + QStringLiteral("/A/A1/deep.txt"), 10);
        writeFile(m_fixture + QStringLiteral("/B/b.txt"), 2560);
        writeFile(m_fixture + QStringLiteral("/r.txt"), 7);
    }

    void cleanupTestCase()
    {
        if (m_app.state() != QProcess::NotRunning) {
            ::kill(-pid_t(m_app.processId()), SIGKILL); // the session's bus and launcher too
            m_app.waitForFinished();
        }
        m_wm.kill();
        m_wm.waitForFinished();
        m_xvfb.kill();
        m_xvfb.waitForFinished();
    }

    void aWholeSession()
    {
        // Started as an ordinary user, so the start-up question about administrator rights is asked; in a
        // session of its own whose accessibility is on.
        QStringList command{QStringLiteral(QUILLARY_A11Y_SESSION), m_busAddressFile, QStringLiteral(QUILLARY_BIN)};
        if (::geteuid() == 0) {
            if (tool("setpriv").isEmpty())
                QSKIP("running as root without setpriv: the start-up question would not be asked");
            command = QStringList{tool("setpriv"), QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                                  QStringLiteral("--clear-groups"), QStringLiteral("--")} +
                      command;
        }
        QProcessEnvironment env = xEnv();
        env.insert(QStringLiteral("HOME"), m_home);
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        env.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        env.remove(QStringLiteral("XDG_RUNTIME_DIR"));
        env.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        m_app.setProcessEnvironment(env);
        m_app.setWorkingDirectory(m_tmp.path());
        m_app.setChildProcessModifier([] { ::setpgid(0, 0); });
        m_app.start(command.first(), command.mid(1));
        QVERIFY(m_app.waitForStarted());

        // The accessibility bus of the program's session, then the program on it.
        QVERIFY2(waitFor([&] { return QFile::exists(m_busAddressFile); }), qPrintable(m_app.readAllStandardError()));
        QFile address(m_busAddressFile);
        QVERIFY(address.open(QIODevice::ReadOnly));
        qputenv("AT_SPI_BUS_ADDRESS", address.readAll().trimmed());
        QVERIFY2(
            waitFor([&] { return !(m_quillary = AccessibleNode::application(QStringLiteral("Quillary"))).isNull(); }),
            "Quillary did not show on the accessibility bus");

        STEP(answerBox(QStringLiteral("Administrator privileges are required to run this application."),
                       QStringLiteral("Yes")));
        const AccessibleNode options = waitForWindow(QStringLiteral("QUILLARY 4.50"));
        QVERIFY(waitFor([&] { return shows(options, QStringLiteral(" Running as User ")); }));
        QVERIFY(carriesIcon(QStringLiteral("^QUILLARY 4.50$")));
        STEP(shot(QStringLiteral("options.png")));

        // The Long window, on the fixture.
        STEP(click(versionOption(options, QStringLiteral("Long")), true));
        const AccessibleNode longBrowser = waitForWindow(QStringLiteral("QUILLARY (Long Version)"));
        QVERIFY(!longBrowser.isNull());
        STEP(chooseFixture(longBrowser));
        STEP(listAll(longBrowser));
        QVERIFY(shows(longBrowser, QStringLiteral("Total Files: 4")));
        QCOMPARE(longBrowser.find(QStringLiteral("table"), QStringLiteral("Folder names with their sizes")).cell(1),
                 QStringLiteral("A (2kB)"));
        QVERIFY(carriesIcon(QStringLiteral("Long Version")));
        STEP(shot(QStringLiteral("long-browser.png")));

        // "Create Text Files" under a name: the four files, under the real date and the real drive's caption.
        const AccessibleNode drive =
            label(longBrowser, [](const QString& s) { return s.endsWith(QLatin1String(" DRIVE ")); });
        QVERIFY(!drive.isNull());
        STEP(click(longBrowser.find(QStringLiteral("push button"), QStringLiteral("Create Text Files"))));
        QVERIFY(waitFor([&] { return !box(QStringLiteral("Write a valid file name:")).isNull(); }));
        typeText(QStringLiteral("e2e"));
        key(QStringLiteral("Return"));
        STEP(answerBox(QStringLiteral("Following 4 Text Files created & saved successfully:"), QStringLiteral("OK")));
        const QString box1 = m_home + QStringLiteral("/Quillbox/");
        for (const char* name :
             {"Folders List WithPath e2e.txt", "Files List WithPath e2e.txt", "Files List - e2e.txt"})
            QVERIFY2(QFile::exists(box1 + QLatin1String(name)), name);
        QFile names(box1 + QStringLiteral("Folders List - e2e.txt"));
        QVERIFY(names.open(QIODevice::ReadOnly));
        QCOMPARE(names.readAll(),
                 "Date: " + QLocale::c().toString(QDate::currentDate(), QStringLiteral("dd MMMM yyyy")).toUtf8() +
                     "\r\nSOURCE:" + drive.name().toUtf8() + "\r\n\r\nParent Folder: " + QFile::encodeName(m_fixture) +
                     "\r\nLIST OF ALL FOLDERS & SUB FOLDERS (3):\r\n\r\nA1 (0kB)\r\nA (2kB)\r\nB (2kB)\r\n\r\n");

        // Search the file names.
        STEP(click(longBrowser.find(QStringLiteral("push button"), QStringLiteral("Show/ Hide Search Section"))));
        const AccessibleNode searchString = longBrowser.find(QStringLiteral("text"), QStringLiteral("Search string"));
        QVERIFY(waitFor([&] { return searchString.showing(); }));
        STEP(click(searchString));
        typeText(QStringLiteral("A1")); // the X server hands the keys over before the click below
        STEP(click(longBrowser.find(QStringLiteral("push button"), QStringLiteral("Search Files"))));
        QVERIFY(waitFor([&] { return shows(longBrowser, QStringLiteral(" Files Found: 1 ")); }));
        QCOMPARE(longBrowser.find(QStringLiteral("list"), QStringLiteral("Search results")).cell(0),
                 QStringLiteral("# 00001. a1.txt"));
        STEP(shot(QStringLiteral("long-browser-search.png")));

        // The close box ends the whole program, the hidden Options window included.
        if (tool("wmctrl").isEmpty())
            QSKIP("no wmctrl: cannot press a close box here");
        STEP(x("wmctrl", {QStringLiteral("-c"), QStringLiteral("QUILLARY (Long Version)")}));
        QVERIFY(m_app.waitForFinished(15000));
        QCOMPARE(m_app.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_app.exitCode(), 0);
    }
};

QTEST_GUILESS_MAIN(TestEndToEnd)
#include "tst_endtoend.moc"
