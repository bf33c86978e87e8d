// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/QtMessageService.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

// The real message box: what Escape and the title bar's close box answer, by the box's buttons.
class TestQtMessageService : public QObject
{
    Q_OBJECT

private slots:
    void escapeAndCloseBox_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<bool>("closeBox");
        QTest::addColumn<bool>("staysUp");
        QTest::addColumn<Answer>("answer");
        // A Yes/No box has no Cancel: only one of its buttons answers it.
        QTest::newRow("36 Escape") << 36 << false << true << Answer::Yes;
        QTest::newRow("36 close box") << 36 << true << true << Answer::Yes;
        QTest::newRow("52 Escape") << 52 << false << true << Answer::Yes;
        QTest::newRow("68 close box") << 68 << true << true << Answer::Yes;
        QTest::newRow("19 Escape is Cancel") << 19 << false << false << Answer::Cancel;
        QTest::newRow("19 close box is Cancel") << 19 << true << false << Answer::Cancel;
        QTest::newRow("0 Escape is OK") << 0 << false << false << Answer::Ok;
        QTest::newRow("64 close box is OK") << 64 << true << false << Answer::Ok;
    }

    void escapeAndCloseBox()
    {
        QFETCH(int, style);
        QFETCH(bool, closeBox);
        QFETCH(bool, staysUp);
        QFETCH(Answer, answer);
        bool stayedUp = false;
        QTimer::singleShot(0, this, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            if (closeBox)
                box->close();
            else
                QTest::keyClick(box, Qt::Key_Escape);
            stayedUp = box->isVisible();
            if (stayedUp)
                box->button(QMessageBox::Yes)->click();
        });
        QtMessageService service;
        const Answer given = service.message(QStringLiteral("Go on?"), MessageStyle::fromClassic(style));
        QCOMPARE(stayedUp, staysUp);
        QCOMPARE(given, answer);
    }
};

QTEST_MAIN(TestQtMessageService)
#include "tst_qtmessageservice.moc"
