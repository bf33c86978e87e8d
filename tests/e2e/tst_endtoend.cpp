// SPDX-License-Identifier: GPL-3.0-or-later

// The program as a person uses it: a real X server (Xvfb) with a window manager, real mouse clicks and key
// presses through xdotool, the real services. The program answers questions about what its windows show
// through its probe (QUILLARY_PROBE=1); everything it does is triggered from outside.
#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QLocale>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

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
    QString m_home, m_fixture, m_artifacts;

    QProcessEnvironment xEnv() const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DISPLAY"), m_display);
        return env;
    }

    void xdo(const QStringList& args)
    {
        QProcess p;
        p.setProcessEnvironment(xEnv());
        p.start(tool("xdotool"), args);
        QVERIFY(p.waitForFinished(10000));
    }

    QString ask(const QString& command)
    {
        m_app.write(command.toUtf8() + '\n');
        QElapsedTimer t;
        t.start();
        while (!m_app.canReadLine() && t.elapsed() < 10000)
            m_app.waitForReadyRead(200);
        return QString::fromUtf8(m_app.readLine()).chopped(1);
    }

    // The reply's text after "ok ", or an empty text with the error left in `error`.
    QString value(const QString& command, QString* error = nullptr)
    {
        const QString reply = ask(command);
        if (reply.startsWith(QLatin1String("ok ")))
            return reply.mid(3);
        if (error)
            *error = reply;
        return {};
    }

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

    QString textOf(const QString& name) { return value(QStringLiteral("text ") + name); }

    // In the middle of `rect`, or near its left edge where only the indicator and caption take clicks.
    void clickAt(const QString& rect, bool nearLeft = false)
    {
        const QStringList r = rect.split(QLatin1Char(' '));
        QCOMPARE(r.size(), 4);
        const int x = r[0].toInt() + (nearLeft ? 8 : r[2].toInt() / 2), y = r[1].toInt() + r[3].toInt() / 2;
        xdo({QStringLiteral("mousemove"), QStringLiteral("--sync"), QString::number(x), QString::number(y)});
        xdo({QStringLiteral("click"), QStringLiteral("1")});
    }

    // Where a control is once it stays put: the window manager may still be placing a window just shown.
    QString settledRect(const QString& command)
    {
        QString rect, before;
        waitFor([&] {
            before = rect;
            rect = value(command);
            return !rect.isEmpty() && rect == before;
        });
        return rect;
    }

    void click(const QString& name, bool nearLeft = false)
    {
        const QString rect = settledRect(QStringLiteral("geom ") + name);
        QVERIFY2(!rect.isEmpty(), qPrintable(name));
        clickAt(rect, nearLeft);
    }

    void answerBox(const QString& startsWith, const QString& button)
    {
        QString box;
        QVERIFY2(waitFor([&] {
                     return (box = value(QStringLiteral("modal"))).section(QLatin1Char('|'), 1).startsWith(startsWith);
                 }),
                 qPrintable(QStringLiteral("waiting for a box \"%1\", have \"%2\"").arg(startsWith, box)));
        const auto gone = [&] {
            return value(QStringLiteral("modal")).section(QLatin1Char('|'), 1) != box.section(QLatin1Char('|'), 1);
        };
        // A click that lands while the box is still being placed misses it; then the box is clicked again.
        for (int attempt = 0; attempt < 4; ++attempt) {
            const QString rect = settledRect(QStringLiteral("button ") + button);
            QVERIFY(!rect.isEmpty());
            clickAt(rect);
            if (waitFor(gone, 3000))
                return;
        }
        QFAIL(qPrintable(QStringLiteral("the box \"%1\" did not go").arg(startsWith)));
    }

    void typeText(const QString& text)
    {
        xdo({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("30"), text});
    }

    void shot(const QString& name)
    {
        QCOMPARE(ask(QStringLiteral("shot ") + m_artifacts + QLatin1Char('/') + name), QStringLiteral("ok "));
    }

    void chooseFixture()
    {
        const QString rect = settledRect(QStringLiteral("treeitem Dir1 ") + m_fixture);
        QVERIFY(!rect.isEmpty());
        clickAt(rect);
        QVERIFY2(waitFor([&] { return textOf(QStringLiteral("Label2")) == m_fixture; }),
                 qPrintable(textOf(QStringLiteral("Label2"))));
    }

    void listAll()
    {
        QVERIFY(waitFor([&] { return value(QStringLiteral("enabled List_Folders")) == QLatin1String("1"); }));
        click(QStringLiteral("List_Folders"));
        QVERIFY(waitFor([&] { return textOf(QStringLiteral("Label11")).startsWith(QLatin1String("Elapsed time: ")); }));
        QVERIFY(QRegularExpression(QStringLiteral("^Elapsed time: [0-9.]+ sec$"))
                    .match(textOf(QStringLiteral("Label11")))
                    .hasMatch());
    }

private slots:
    void initTestCase()
    {
        if (tool("Xvfb").isEmpty() || tool("xdotool").isEmpty())
            QSKIP("no X server here: Xvfb and xdotool are needed (make test installs them on Debian)");
        QVERIFY(m_tmp.isValid());
        m_artifacts = QStringLiteral(QUILLARY_ARTIFACTS);
        QDir().mkpath(m_artifacts);
        ::chmod(QFile::encodeName(m_artifacts).constData(), 0777); // the program writes them as an ordinary user

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

        // A home and a fixture the program may read and write as an ordinary user.
        ::chmod(QFile::encodeName(m_tmp.path()).constData(), 0755);
        m_home = m_tmp.path() + QStringLiteral("/home");
        m_fixture = m_tmp.path() + QStringLiteral("/fixture");
        QDir().mkpath(m_home);
        ::chmod(QFile::encodeName(m_home).constData(), 0777);
        writeFile(m_fixture + QStringLiteral("/A/a1.txt"), 1536);
        writeFile(m_fixture + QStringLiteral("/A/A1/deep.txt"), 10);
        writeFile(m_fixture + QStringLiteral("/B/b.txt"), 2560);
        writeFile(m_fixture + QStringLiteral("/r.txt"), 7);
    }

    void cleanupTestCase()
    {
        if (m_app.state() != QProcess::NotRunning) {
            m_app.kill();
            m_app.waitForFinished();
        }
        m_wm.kill();
        m_wm.waitForFinished();
        m_xvfb.kill();
        m_xvfb.waitForFinished();
    }

    void aWholeSession()
    {
        // Started as an ordinary user, so the start-up question about administrator rights is asked.
        QStringList command{QStringLiteral(QUILLARY_BIN)};
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
        env.insert(QStringLiteral("QUILLARY_PROBE"), QStringLiteral("1"));
        env.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        env.remove(QStringLiteral("XDG_RUNTIME_DIR"));
        m_app.setProcessEnvironment(env);
        m_app.setWorkingDirectory(m_tmp.path());
        m_app.setProcessChannelMode(QProcess::SeparateChannels);
        m_app.start(command.first(), command.mid(1));
        QVERIFY(m_app.waitForStarted());

        answerBox(QStringLiteral("Administrator privileges are required to run this application."),
                  QStringLiteral("Yes"));
        QVERIFY(waitFor([&] { return textOf(QStringLiteral("Label3")) == QLatin1String(" Running as User "); }));
        shot(QStringLiteral("options.png"));

        // The Long window, on the fixture.
        click(QStringLiteral("Option1_1"), true);
        QVERIFY(waitFor([&] {
            return value(QStringLiteral("windows")).contains(QLatin1String("LongBrowser|QUILLARY (Long Version)"));
        }));
        chooseFixture();
        listAll();
        QCOMPARE(textOf(QStringLiteral("Label1_0")), QStringLiteral("Total Folders: 3"));
        QCOMPARE(textOf(QStringLiteral("Label1_3")), QStringLiteral("Total Files with path: 4"));
        QCOMPARE(textOf(QStringLiteral("Label1_4")), QStringLiteral("Total Files: 4"));
        QCOMPARE(value(QStringLiteral("rows MSFlexGrid2")), QStringLiteral("3"));
        QCOMPARE(value(QStringLiteral("cell MSFlexGrid2 0")), QStringLiteral("A1 (0kB)"));
        QCOMPARE(value(QStringLiteral("cell MSFlexGrid2 1")), QStringLiteral("A (2kB)"));
        QCOMPARE(value(QStringLiteral("cell MSFlexGrid4 2")), QStringLiteral("r.txt"));
        shot(QStringLiteral("long-browser.png"));

        // "Create Text Files" under a name: the four files, byte for byte.
        const QString source = textOf(QStringLiteral("Label4_3"));
        QVERIFY(!source.isEmpty());
        click(QStringLiteral("CreateTextFiles"));
        QString box;
        QVERIFY(waitFor([&] {
            return (box = value(QStringLiteral("modal"))).endsWith(QLatin1String("|Write a valid file name:"));
        }));
        typeText(QStringLiteral("e2e"));
        xdo({QStringLiteral("key"), QStringLiteral("Return")});
        answerBox(QStringLiteral("Following 4 Text Files created & saved successfully:"), QStringLiteral("OK"));
        const QByteArray f = QFile::encodeName(m_fixture);
        const QByteArray head =
            "Date: " + QLocale::c().toString(QDate::currentDate(), QStringLiteral("dd MMMM yyyy")).toUtf8() +
            "\r\nSOURCE:" + source.toUtf8() + "\r\n\r\nParent Folder: " + f + "\r\n";
        const QString box1 = m_home + QStringLiteral("/Quillbox/");
        const QList<QPair<QString, QByteArray>> expected = {
            {QStringLiteral("Folders List WithPath e2e.txt"), head + "LIST OF FOLDERS WITH THEIR PATHS (3):\r\n\r\n" +
                                                                  f + "/A/A1\r\n" + f + "/A\r\n" + f + "/B\r\n\r\n"},
            {QStringLiteral("Folders List - e2e.txt"),
             head + "LIST OF ALL FOLDERS & SUB FOLDERS (3):\r\n\r\nA1 (0kB)\r\nA (2kB)\r\nB (2kB)\r\n\r\n"},
            {QStringLiteral("Files List WithPath e2e.txt"), head + "LIST OF ALL FILES (4):\r\n\r\n" + f +
                                                                "/A/a1.txt\r\n" + f + "/A/A1/deep.txt\r\n" + f +
                                                                "/r.txt\r\n" + f + "/B/b.txt\r\n\r\n"},
            {QStringLiteral("Files List - e2e.txt"),
             head + "LIST OF ALL FILES (4):\r\n\r\na1.txt\r\ndeep.txt\r\nr.txt\r\nb.txt\r\n\r\n"}};
        for (const auto& [name, content] : expected) {
            QFile file(box1 + name);
            QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(name));
            QCOMPARE(file.readAll(), content);
        }

        // Search the file names.
        click(QStringLiteral("Label9Com"));
        click(QStringLiteral("srchFolder"));
        typeText(QStringLiteral("A1"));
        click(QStringLiteral("SearchFiles"));
        QVERIFY(waitFor([&] { return textOf(QStringLiteral("Label1_7")) == QLatin1String(" Files Found: 1 "); }));
        QCOMPARE(value(QStringLiteral("cell List5 0")), QStringLiteral("# 00001. a1.txt"));
        shot(QStringLiteral("long-browser-search.png"));

        // Back to Options, then the Short window on the same folder.
        click(QStringLiteral("Image6"));
        QVERIFY(
            waitFor([&] { return value(QStringLiteral("windows")).contains(QLatin1String("Options|QUILLARY 4.50")); }));
        click(QStringLiteral("Option1_0"), true);
        QVERIFY(waitFor([&] {
            return value(QStringLiteral("windows")).contains(QLatin1String("ShortBrowser|QUILLARY (Short Version)"));
        }));
        chooseFixture();
        listAll();
        QCOMPARE(textOf(QStringLiteral("Label1_0")), QStringLiteral("Total Folders: 3"));
        QCOMPARE(textOf(QStringLiteral("Label1_4")), QStringLiteral("Total Files: 4"));
        QCOMPARE(value(QStringLiteral("cell List3 0")), m_fixture + QStringLiteral("/A/a1.txt"));
        shot(QStringLiteral("short-browser.png"));

        // The close box ends the whole program, the hidden Long window included.
        if (tool("wmctrl").isEmpty())
            QSKIP("no wmctrl: cannot press a close box here");
        QProcess wm;
        wm.setProcessEnvironment(xEnv());
        wm.start(tool("wmctrl"), {QStringLiteral("-c"), QStringLiteral("QUILLARY (Short Version)")});
        QVERIFY(wm.waitForFinished(10000));
        QVERIFY(m_app.waitForFinished(15000));
        QCOMPARE(m_app.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_app.exitCode(), 0);
    }
};

QTEST_GUILESS_MAIN(TestEndToEnd)
#include "tst_endtoend.moc"
