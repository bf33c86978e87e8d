#include "BrowserTestKit.h"

#include "actions/GoToCell.h"
#include "browser/ClickableLabel.h"
#include "platform/Twips.h"
#include "scan/ScanResultBuilder.h"

#include <QLabel>
#include <QLineEdit>
#include <QStandardPaths>
#include <QTableView>

using namespace BrowserTestKit;

// LongBrowser's go-to boxes: the range, the messages and errors, the red mark and the widening for file names.
class TestGoTo : public QObject
{
    Q_OBJECT

private:
    FakeServices m_fakes;

    std::unique_ptr<BrowserWindow> window(int files)
    {
        auto w = std::make_unique<BrowserWindow>(flavour(true), m_fakes.services(), nullptr);
        w->show();
        ScanResultBuilder b("/g");
        for (const char* name : {"one", "two", "three"})
            b.addFolder(name, 1);
        for (int i = 0; i < files; ++i) {
            const QByteArray name = "file" + QByteArray::number(i + 1);
            b.addFile(0, std::string_view(name.constData(), size_t(name.size())));
        }
        w->listResult(b.finish());
        return w;
    }
    static void goTo(QLineEdit* box, QPushButton* button, const QString& number)
    {
        box->setText(number);
        QTest::mouseClick(button, Qt::LeftButton);
    }
    static QColor fore(const BrowserWindow& w, int pane, int row)
    {
        return w.panes().model(pane)->index(row, 0).data(Qt::ForegroundRole).value<QColor>();
    }
    static QColor back(const BrowserWindow& w, int pane, int row)
    {
        return w.panes().model(pane)->index(row, 0).data(Qt::BackgroundRole).value<QColor>();
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init()
    {
        m_fakes.messages.calls.clear();
        m_fakes.programEnd.count = 0;
    }

    void toLong_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("error");
        QTest::newRow("plain") << QStringLiteral("250") << 250 << 0;
        QTest::newRow("leading blank") << QStringLiteral(" 7") << 7 << 0;
        QTest::newRow("negative") << QStringLiteral("-5") << -5 << 0;
        QTest::newRow("half to even") << QStringLiteral("2.5") << 2 << 0;
        QTest::newRow("lowest") << QStringLiteral("-2147483648") << int(-2147483647 - 1) << 0;
        QTest::newRow("too big") << QStringLiteral("2147483648") << 0 << 6;
        QTest::newRow("empty") << QString() << 0 << 13;
        QTest::newRow("word") << QStringLiteral("ten") << 0 << 13;
        QTest::newRow("number and word") << QStringLiteral("7a") << 0 << 13;
    }
    void toLong()
    {
        QFETCH(QString, text);
        QFETCH(int, value);
        QFETCH(int, error);
        int got = -1;
        QCOMPARE(GoToCell::toLong(text, &got), value);
        QCOMPARE(got, error);
    }

    void range()
    {
        auto w = window(250);
        const BrowserControls& ui = w->controls();
        QVERIFY(ui.Frame5->isVisible());

        goTo(ui.Text3, ui.GoToFilePath, QStringLiteral("1"));
        QCOMPARE(w->panes().currentRow(3), 0);
        QCOMPARE(fore(*w, 3, 0), QColor(255, 0, 0));
        QCOMPARE(ui.Text2->text(), QStringLiteral("/g/file1"));
        QCOMPARE(ui.Label1[6]->text(), QStringLiteral("Selected: 1"));
        QCOMPARE(w->panes().currentRow(4), 0);

        goTo(ui.Text3, ui.GoToFilePath, QStringLiteral("250"));
        QCOMPARE(w->panes().currentRow(3), 249);
        QCOMPARE(fore(*w, 3, 249), QColor(255, 0, 0));
        QCOMPARE(ui.Text2->text(), QStringLiteral("/g/file250"));
        // The cell left behind loses its mark.
        QCOMPARE(fore(*w, 3, 0), QColor(0, 0, 0));
        QCOMPARE(back(*w, 3, 0), QColor(255, 255, 255));

        goTo(ui.Text3, ui.GoToFilePath, QStringLiteral(" 7"));
        QCOMPARE(w->panes().currentRow(3), 6);
        QCOMPARE(ui.MSFlexGrid[3]->rowAt(0), 6); // the top visible row

        for (const char* rejected : {"251", "0", "-5"}) {
            m_fakes.messages.calls.clear();
            goTo(ui.Text3, ui.GoToFilePath, QLatin1String(rejected));
            QCOMPARE(m_fakes.messages.calls.size(), 1);
            QCOMPARE(m_fakes.messages.calls[0].text, QStringLiteral("You can enter cell number between 1 and 250 only."));
            QCOMPARE(m_fakes.messages.calls[0].style, 48);
            QCOMPARE(w->panes().currentRow(3), 6);
        }
        QCOMPARE(m_fakes.programEnd.count, 0);

        goTo(ui.Text4, ui.GoToFolder, QStringLiteral("2"));
        QCOMPARE(w->panes().currentRow(2), 1);
        QCOMPARE(w->panes().currentRow(1), 1);
        QCOMPARE(fore(*w, 2, 1), QColor(255, 0, 0));
        QCOMPARE(ui.Text1->text(), QStringLiteral("/g/two"));
        goTo(ui.Text4, ui.GoToFolder, QStringLiteral("4"));
        QCOMPARE(m_fakes.messages.calls.last().text, QStringLiteral("You can enter cell number between 1 and 3 only."));
    }

    void errors_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("box");
        QTest::newRow("word") << QStringLiteral("abc") << QStringLiteral("Run-time error '13':\r\n\r\nType mismatch");
        QTest::newRow("empty") << QString() << QStringLiteral("Run-time error '13':\r\n\r\nType mismatch");
        QTest::newRow("lowest") << QStringLiteral("-2147483648") << QStringLiteral("Run-time error '6':\r\n\r\nOverflow");
    }
    void errors()
    {
        QFETCH(QString, text);
        QFETCH(QString, box);
        auto w = window(10);
        goTo(w->controls().Text5, w->controls().GoToFile, text);
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        QCOMPARE(m_fakes.messages.calls[0].text, box);
        QCOMPARE(m_fakes.messages.calls[0].style, 16);
        QCOMPARE(m_fakes.programEnd.count, 1);
    }

    void fileNamesComeIntoView()
    {
        auto w = window(0);
        const BrowserControls& ui = w->controls();
        goTo(ui.Text5, ui.GoToFile, QStringLiteral("1"));
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        QCOMPARE(m_fakes.messages.calls[0].text, QStringLiteral("You can enter cell number between 1 and 0 only."));
        QCOMPARE(w->frameGeometry().width(), Twips::toPx(13560));
        QCOMPARE(ui.Label8->text(), QStringLiteral("Hide File Names only"));

        // The file-path box leaves the window as it is.
        QTest::mouseClick(ui.Label8, Qt::LeftButton);
        goTo(ui.Text3, ui.GoToFilePath, QStringLiteral("1"));
        QCOMPARE(ui.Label8->text(), QStringLiteral("Show File Names only"));

        w->showMaximized();
        QTRY_VERIFY(w->isMaximized());
        const QSize size = w->size();
        goTo(ui.Text5, ui.GoToFile, QStringLiteral("1"));
        QCOMPARE(w->size(), size);
        QCOMPARE(ui.Label8->text(), QStringLiteral("Show File Names only"));
    }
};

QTEST_MAIN(TestGoTo)
#include "tst_goto.moc"
