// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/NativeText.h"
#include "common/NumberText.h"
#include "common/RuntimeError.h"
#include "volumes/DriveCaption.h"
#include "volumes/VolumeService.h"

#include <QTest>
#include <cerrno>

namespace {

class FixedVolumes : public VolumeService
{
public:
    QList<Volume> list;
    QList<Volume> volumes() const override { return list; }
    Volume volumeOf(const QString&) const override { return list.value(0); }
};

} // namespace

class TestText : public QObject
{
    Q_OBJECT

private slots:
    void nativeTextRoundTrips_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("shown");
        QTest::newRow("ascii") << QByteArray("plain.txt") << QStringLiteral("plain.txt");
        QTest::newRow("utf8") << QByteArray("caf\xc3\xa9 \xf0\x9f\x8e\xb5") << QStringLiteral("café 🎵");
        QTest::newRow("stray bytes") << QByteArray("bad\xff\xfe") << QString::fromUtf16(u"bad\xDCFF\xDCFE");
        QTest::newRow("latin1") << QByteArray("caf\xe9") << QString::fromUtf16(u"caf\xDCE9");
        QTest::newRow("truncated sequence") << QByteArray("x\xe6\x97") << QString::fromUtf16(u"x\xDCE6\xDC97");
        QTest::newRow("encoded surrogate") << QByteArray("\xed\xa0\x80") << QString::fromUtf16(u"\xDCED\xDCA0\xDC80");
        QTest::newRow("overlong slash") << QByteArray("\xc0\xaf") << QString::fromUtf16(u"\xDCC0\xDCAF");
        QTest::newRow("control chars") << QByteArray("a\nb\rc\td") << QStringLiteral("a\nb\rc\td");
    }
    void nativeTextRoundTrips()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, shown);
        const std::string_view view(bytes.constData(), size_t(bytes.size()));
        QCOMPARE(NativeText::toDisplay(bytes), shown);
        QCOMPARE(NativeText::displayLength(view), shown.size());
        QCOMPARE(NativeText::fromDisplay(shown), bytes);
        // The URL handed to the shell and the player carries the same bytes.
        QCOMPARE(QByteArray::fromPercentEncoding(
                     NativeText::fileUrl(QStringLiteral("/d/") + shown).path(QUrl::FullyEncoded).toLatin1()),
                 "/d/" + bytes);
    }

    void numbers()
    {
        QCOMPARE(NumberText::seconds(2344), QStringLiteral("2.344"));
        QCOMPARE(NumberText::seconds(500), QStringLiteral("0.5"));
        QCOMPARE(NumberText::seconds(12000), QStringLiteral("12"));
        QCOMPARE(NumberText::seconds(0), QStringLiteral("0"));
        QCOMPARE(NumberText::seconds(1234567), QStringLiteral("1234.567")); // no group separator
        qint32 kb = -1;                                                     // halves to the even number
        for (const auto& [bytes, want] : {std::pair<quint64, qint32>{1536, 2},
                                          {2560, 2},
                                          {511, 0},
                                          {5632, 6},
                                          {quint64(2147483647) * 1024, 2147483647}})
            QVERIFY2(NumberText::kilobytes(bytes, kb) && kb == want, qPrintable(QString::number(bytes)));
        kb = 7;
        QVERIFY(!NumberText::kilobytes(quint64(2147483648) * 1024, kb));
        QCOMPARE(kb, 7); // left as it was
    }

    void runtimeErrors()
    {
        QCOMPARE(RuntimeError::unhandledText(RuntimeError::PathNotFound),
                 QStringLiteral("Run-time error '76':\r\n\r\nPath not found"));
        QCOMPARE(RuntimeError::description(RuntimeError::FileAlreadyOpen), QStringLiteral("File already open"));
        QCOMPARE(RuntimeError::fromErrno(ENOENT), 53);
        QCOMPARE(RuntimeError::fromErrno(ENOENT, true), 76);
        QCOMPARE(RuntimeError::fromErrno(EACCES), 75);
        QCOMPARE(RuntimeError::fromErrno(EROFS), 75);
        QCOMPARE(RuntimeError::fromErrno(ENOSPC), 61);
        QCOMPARE(RuntimeError::fromErrno(EIO), 57);
    }

    void driveCaptions()
    {
        FixedVolumes v;
        v.list = {{QStringLiteral("/"), QStringLiteral("system"), DriveType::Fixed, true},
                  {QStringLiteral("/media/stick"), QStringLiteral("Stick"), DriveType::Removable, true},
                  {QStringLiteral("/media/cdrom"), QString(), DriveType::CdDvd, false},
                  {QStringLiteral("/mnt/share"), QString(), DriveType::Network, true},
                  {QStringLiteral("/mnt/odd"), QString(), DriveType(9), true}};
        // As the window builds the caption of a drive text from its parts.
        const auto windowCaption = [&v](const QString& driveText) {
            return DriveCaption::caption(driveText, DriveCaption::driveTypeInfo(v.find(driveText).type),
                                         DriveCaption::getDriveName(v, driveText));
        };
        QCOMPARE(v.list[0].driveText(), QStringLiteral("/ [system]"));
        // A fixed disk: its drive text upper-cased, whatever its label.
        QCOMPARE(windowCaption(QStringLiteral("/ [system]")), QStringLiteral(" / [SYSTEM]: HD DRIVE "));
        // A labelled removable stick is captioned as a CD/DVD volume.
        QCOMPARE(windowCaption(QStringLiteral("/media/stick [Stick]")), QStringLiteral(" CD/ DVD Volume: STICK "));
        QCOMPARE(windowCaption(QStringLiteral("/media/cdrom")), QStringLiteral(" CD/ DVD Volume: EMPTY "));
        // Not fixed and no label: a hard drive.
        QCOMPARE(windowCaption(QStringLiteral("/mnt/share")), QStringLiteral(" /MNT/SHARE: HD DRIVE "));
        QCOMPARE(DriveCaption::getDriveName(v, QStringLiteral("/nowhere")), QStringLiteral("EMPTY"));
        QCOMPARE(DriveCaption::driveTypeInfo(DriveType::CdDvd), QStringLiteral("CD/ DVD"));
        QCOMPARE(DriveCaption::driveTypeInfo(DriveType(9)), QString());
        QCOMPARE(DriveCaption::captionForPath(v, QStringLiteral("/home")), QStringLiteral(" / [SYSTEM]: HD DRIVE "));
    }
};

QTEST_GUILESS_MAIN(TestText)
#include "tst_text.moc"
