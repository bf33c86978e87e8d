#include "FakeServices.h"

#include "browser/BrowserWindow.h"
#include "browser/ClickableLabel.h"
#include "startup/OptionsWindow.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

class TestOptionsWindow : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;
    FakeServices m_fakes;

    QString label3(const OptionsWindow& w) { return w.findChild<QLabel*>(QStringLiteral("Label3"))->text(); }
    void clickOption(OptionsWindow& w, int index)
    {
        auto* option = w.findChild<QRadioButton*>(QStringLiteral("Option1_") + QString::number(index));
        QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(8, option->height() / 2));
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        qputenv("HOME", m_home.path().toLocal8Bit());
        QDir().mkpath(m_home.path() + QStringLiteral("/disk"));
        QDir::setCurrent(m_home.path() + QStringLiteral("/disk"));
    }

    void init()
    {
        m_fakes.messages.calls.clear();
        m_fakes.messages.answers.clear();
        m_fakes.programEnd.count = 0;
        m_fakes.volumes.list = {{m_home.path(), QStringLiteral("HOME"), 2, true}};
    }

    void startUp()
    {
        // Administrator: no question, the window shows.
        {
            m_fakes.admin.admin = true;
            OptionsWindow w(m_fakes.services());
            w.start();
            QVERIFY(m_fakes.messages.calls.isEmpty());
            QCOMPARE(label3(w), QStringLiteral(" Running as Administrator "));
            QVERIFY(w.isVisible());
            QCOMPARE(w.windowTitle(), QStringLiteral("QUILLARY 4.50"));
        }
        // A user answering Yes goes on with reduced rights.
        {
            m_fakes.admin.admin = false;
            m_fakes.messages.answers = {Answer::Yes};
            OptionsWindow w(m_fakes.services());
            w.start();
            QCOMPARE(m_fakes.messages.calls.size(), 1);
            const FakeMessages::Call call = m_fakes.messages.calls.first();
            QCOMPARE(call.text, QStringLiteral("Administrator privileges are required to run this application.\r\n"
                                               "Restart this application as Administrator. Users with administrator\r\n"
                                               "rights have access to all system files.\r\n"
                                               "\r\n"
                                               "Would you still like to open the program as a 'User'?"));
            QCOMPARE(call.style, 36);
            QCOMPARE(call.title, QStringLiteral("Quillary 4.50"));
            QCOMPARE(label3(w), QStringLiteral(" Running as User "));
            QVERIFY(w.isVisible());
            QVERIFY(!m_fakes.programEnd.ended());
            // The load step runs once only: showing the window again asks nothing.
            w.hide();
            w.start();
            QCOMPARE(m_fakes.messages.calls.size(), 1);
        }
        // No ends the program before the window is ever shown.
        {
            m_fakes.messages.calls.clear();
            m_fakes.messages.answers = {Answer::No};
            OptionsWindow w(m_fakes.services());
            w.start();
            QCOMPARE(m_fakes.programEnd.count, 1);
            QVERIFY(!w.isVisible());
            QCOMPARE(label3(w), QStringLiteral(" Running as User "));
        }
    }

    void goAndPictureMessages()
    {
        m_fakes.admin.admin = true;
        OptionsWindow w(m_fakes.services());
        w.start();
        w.findChild<QToolButton*>(QStringLiteral("OptionSelect"))->click();
        w.findChild<QToolButton*>(QStringLiteral("OptionSelect"))->click();
        QCOMPARE(m_fakes.messages.calls.size(), 2);
        QCOMPARE(m_fakes.messages.calls.at(1).text, QStringLiteral("You have not selected any option."));
        QCOMPARE(m_fakes.messages.calls.at(1).style, 48);
        QVERIFY(!w.shortBrowser() && !w.longBrowser());
        QVERIFY(w.isVisible());

        QTest::mouseClick(w.findChild<ClickableLabel*>(QStringLiteral("Image1")), Qt::LeftButton);
        const FakeMessages::Call about = m_fakes.messages.calls.last();
        QCOMPARE(about.style, 64);
        QVERIFY(about.text.startsWith(QStringLiteral("Visit our website ")));
        QVERIFY(about.text.contains(QStringLiteral(" for more.\r\n") + QString(13, QLatin1Char(' ')) +
                                    QStringLiteral("Email: ")));
    }

    void optionsOpenBrowsersOnce()
    {
        m_fakes.admin.admin = true;
        OptionsWindow w(m_fakes.services());
        w.start();
        auto* option0 = w.findChild<QRadioButton*>(QStringLiteral("Option1_0"));
        auto* option1 = w.findChild<QRadioButton*>(QStringLiteral("Option1_1"));

        clickOption(w, 0);
        BrowserWindow* shortBrowser = w.shortBrowser();
        QVERIFY(shortBrowser);
        QVERIFY(!w.longBrowser());
        QCOMPARE(shortBrowser->windowTitle(), QStringLiteral("QUILLARY (Short Version)"));
        QVERIFY(shortBrowser->isVisible());
        QVERIFY(!w.isVisible());
        QVERIFY(!option0->isChecked() && !option1->isChecked());

        // Back to Options through the browser's picture: the browser stays loaded, with what it holds.
        shortBrowser->findChild<QLineEdit*>(QStringLiteral("Text1"))->setText(QStringLiteral("kept"));
        QTest::mouseClick(shortBrowser->findChild<ClickableLabel*>(QStringLiteral("Image6")), Qt::LeftButton);
        QVERIFY(!shortBrowser->isVisible());
        QVERIFY(w.isVisible());
        QVERIFY(!option0->isChecked() && !option1->isChecked());

        clickOption(w, 1);
        QVERIFY(w.longBrowser());
        QCOMPARE(w.longBrowser()->windowTitle(), QStringLiteral("QUILLARY (Long Version)"));
        QVERIFY(w.longBrowser()->isVisible());
        QVERIFY(!shortBrowser->isVisible());

        QTest::mouseClick(w.longBrowser()->findChild<ClickableLabel*>(QStringLiteral("Image6")), Qt::LeftButton);
        clickOption(w, 0);
        QCOMPARE(w.shortBrowser(), shortBrowser);
        QCOMPARE(shortBrowser->findChild<QLineEdit*>(QStringLiteral("Text1"))->text(), QStringLiteral("kept"));
        QVERIFY(m_fakes.messages.calls.isEmpty());
        QCOMPARE(m_fakes.programEnd.count, 0);
    }

    void closeBoxEndsProgram()
    {
        m_fakes.admin.admin = true;
        OptionsWindow w(m_fakes.services());
        w.start();
        clickOption(w, 1);
        QTest::mouseClick(w.longBrowser()->findChild<ClickableLabel*>(QStringLiteral("Image6")), Qt::LeftButton);
        // Options closed while a browser is loaded but hidden: the whole program ends, nothing is asked.
        w.close();
        QCOMPARE(m_fakes.programEnd.count, 1);
        QVERIFY(m_fakes.messages.calls.isEmpty());
        // The browsers' close boxes do the same.
        w.longBrowser()->close();
        QCOMPARE(m_fakes.programEnd.count, 2);
    }
};

QTEST_MAIN(TestOptionsWindow)
#include "tst_optionswindow.moc"
