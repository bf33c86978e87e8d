// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "platform/Twips.h"
#include "startup/OptionsWindow.h"

#include <QToolButton>

using namespace BrowserTestKit;

// The Options window: the administrator question, the picture messages, the browsers it opens once each, and the
// close box that ends the program.
class TestOptionsWindow : public QObject
{
    Q_OBJECT

private:
    TestHome m_home;
    FakeServices m_fakes;

    static QString label3(const OptionsWindow& w) { return w.findChild<QLabel*>(u"Label3"_s)->text(); }
    // As a classic option button, the whole 3660 x 285 twips band answers, not only the circle and the caption:
    // the click lands at the band's far corner.
    static void clickOption(OptionsWindow& w, int index)
    {
        auto* option = w.findChild<QRadioButton*>(u"Option1_"_s + QString::number(index));
        QCOMPARE(option->geometry(), Twips::toPx(QRect(270, index == 0 ? 1140 : 1875, 3660, 285)));
        QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(option->width() - 2, option->height() - 2));
    }
    static ClickableLabel* picture(const QWidget& w, const char* name)
    {
        return w.findChild<ClickableLabel*>(QLatin1String(name));
    }

private slots:
    void initTestCase()
    {
        QDir().mkpath(m_home.path() + u"/disk"_s);
        QDir::setCurrent(m_home.path() + u"/disk"_s);
    }

    void init()
    {
        m_fakes.reset();
        m_fakes.admin.admin = true;
        m_fakes.volumes.list = {{m_home.path(), u"HOME"_s, DriveType::Fixed, true}};
    }

    // An administrator is not asked; a user is, and No ends the program before the window is ever shown.
    void startUp_data()
    {
        QTest::addColumn<bool>("admin");
        QTest::addColumn<Answer>("answer");
        QTest::newRow("administrator") << true << Answer::Yes;
        QTest::newRow("user going on") << false << Answer::Yes;
        QTest::newRow("user stopping") << false << Answer::No;
    }
    void startUp()
    {
        QFETCH(bool, admin);
        QFETCH(Answer, answer);
        m_fakes.admin.admin = admin;
        m_fakes.messages.answers = {answer};
        OptionsWindow w(m_fakes.services());
        w.start();
        QCOMPARE(w.windowTitle(), u"QUILLARY 4.50"_s);
        QCOMPARE(label3(w), admin ? u" Running as Administrator "_s : u" Running as User "_s);
        QCOMPARE(w.isVisible(), answer == Answer::Yes);
        QCOMPARE(m_fakes.programEnd.count, answer == Answer::Yes ? 0 : 1);
        QCOMPARE(m_fakes.messages.texts(),
                 admin ? QStringList()
                       : QStringList{u"36|Administrator privileges are required to run this application.\r\n"
                                     "Restart this application as Administrator. Users with administrator\r\n"
                                     "rights have access to all system files.\r\n\r\n"
                                     "Would you still like to open the program as a 'User'?"_s});
        if (!admin)
            QCOMPARE(m_fakes.messages.calls.first().title, u"Quillary 4.50"_s);
        // The load step runs once only: showing the window again asks nothing.
        if (answer == Answer::Yes) {
            w.hide();
            w.start();
            QCOMPARE(m_fakes.messages.calls.size(), admin ? 0 : 1);
        }
    }

    void goAndPictureMessages()
    {
        OptionsWindow w(m_fakes.services());
        w.start();
        w.findChild<QToolButton*>(u"OptionSelect"_s)->click();
        w.findChild<QToolButton*>(u"OptionSelect"_s)->click();
        QCOMPARE(m_fakes.messages.texts().value(1), u"48|You have not selected any option."_s);
        QCOMPARE(m_fakes.messages.calls.size(), 2);
        QVERIFY(!w.shortBrowser() && !w.longBrowser());
        QVERIFY(w.isVisible());

        QTest::mouseClick(picture(w, "Image1"), Qt::LeftButton);
        const FakeMessages::Call about = m_fakes.messages.calls.last();
        QCOMPARE(about.style, 64);
        QVERIFY(about.text.startsWith(u"Visit our website "_s));
        QVERIFY(about.text.contains(u" for more.\r\n"_s + QString(13, u' ') + u"Email: "_s));
    }

    void optionsOpenBrowsersOnceAndCloseEnds()
    {
        OptionsWindow w(m_fakes.services());
        w.start();
        auto* option0 = w.findChild<QRadioButton*>(u"Option1_0"_s);
        auto* option1 = w.findChild<QRadioButton*>(u"Option1_1"_s);

        clickOption(w, 0);
        BrowserWindow* shortBrowser = w.shortBrowser();
        QVERIFY(shortBrowser && !w.longBrowser());
        QCOMPARE(shortBrowser->windowTitle(), u"QUILLARY (Short Version)"_s);
        QVERIFY(shortBrowser->isVisible() && !w.isVisible());
        QVERIFY(!option0->isChecked() && !option1->isChecked());

        // Back to Options through the browser's picture: the browser stays loaded, with what it holds.
        shortBrowser->controls().paths.Text1->setText(u"kept"_s);
        QTest::mouseClick(picture(*shortBrowser, "Image6"), Qt::LeftButton);
        QVERIFY(!shortBrowser->isVisible() && w.isVisible());
        QVERIFY(!option0->isChecked() && !option1->isChecked());

        clickOption(w, 1);
        QVERIFY(w.longBrowser());
        QCOMPARE(w.longBrowser()->windowTitle(), u"QUILLARY (Long Version)"_s);
        QVERIFY(w.longBrowser()->isVisible() && !shortBrowser->isVisible());

        QTest::mouseClick(picture(*w.longBrowser(), "Image6"), Qt::LeftButton);
        clickOption(w, 0);
        QCOMPARE(w.shortBrowser(), shortBrowser);
        QCOMPARE(shortBrowser->controls().paths.Text1->text(), u"kept"_s);
        QCOMPARE(m_fakes.programEnd.count, 0);

        // Options closed while the browsers are loaded but hidden: the whole program ends, nothing is asked. The
        // browsers' close boxes do the same.
        QTest::mouseClick(picture(*shortBrowser, "Image6"), Qt::LeftButton);
        w.close();
        QCOMPARE(m_fakes.programEnd.count, 1);
        w.longBrowser()->close();
        QCOMPARE(m_fakes.programEnd.count, 2);
        QVERIFY(m_fakes.messages.calls.isEmpty());
    }
};

QTEST_MAIN(TestOptionsWindow)
#include "tst_optionswindow.moc"
