// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "catalogue/CatalogueWindow.h"
#include "startup/OptionsWindow.h"

#include <QAccessible>
#include <QHash>

using namespace BrowserTestKit;

// What a screen reader finds in each window: every control under its design name says what it is, and no two
// controls say the same.
class TestAccessibleNames : public QObject
{
    Q_OBJECT

    TestHome m_home;
    FakeServices m_fakes;

    // Text labels speak their own caption, whatever it shows at the moment; every other control needs a name,
    // and a name and description no other control of the window has.
    static void checkControls(const QWidget& window)
    {
        QStringList faults;
        QHash<QString, QString> said;
        const auto widgets = window.findChildren<QWidget*>();
        for (QWidget* w : widgets) {
            const QString design = w->objectName();
            if (design.isEmpty() || design.startsWith(QLatin1String("qt_")))
                continue; // the parts Qt builds inside a control
            if (auto* label = qobject_cast<QLabel*>(w); label && label->pixmap().isNull())
                continue;
            QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(w);
            QVERIFY2(iface, qPrintable(design));
            const QString name = iface->text(QAccessible::Name).trimmed();
            if (name.isEmpty()) {
                faults << design + u" has no name"_s;
                continue;
            }
            const QString says = name + u" / "_s + iface->text(QAccessible::Description);
            if (said.contains(says))
                faults << design + u" says \""_s + says + u"\" as "_s + said.value(says) + u" does"_s;
            said.insert(says, design);
        }
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u"; "_s)));
    }

private slots:
    void initTestCase()
    {
        QDir().mkpath(m_home.path() + u"/disk"_s);
        QDir::setCurrent(m_home.path() + u"/disk"_s);
        m_fakes.admin.admin = true;
        m_fakes.volumes.list = {{m_home.path(), u"HOME"_s, DriveType::Fixed, true}};
    }

    void options()
    {
        OptionsWindow w(m_fakes.services());
        w.start();
        checkControls(w);
    }

    void browsers_data() { addFlavours(); }
    void browsers()
    {
        QFETCH(bool, longVersion);
        checkControls(*window(m_fakes, longVersion));
    }

    void catalogue()
    {
        CatalogueWindow w(m_fakes.services(), [](QString*) { return std::unique_ptr<Catalogue>(); });
        w.show();
        checkControls(w);
    }
};

QTEST_MAIN(TestAccessibleNames)
#include "tst_accessiblenames.moc"
