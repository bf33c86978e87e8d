// SPDX-License-Identifier: GPL-3.0-or-later

#include "OptionsWindow.h"

#include "OptionBand.h"

#include "browser/BrowserWindow.h"
#include "browser/ClassicLook.h"
#include "browser/Pictures.h"
#include "common/Version.h"
#include "controls/ClickableLabel.h"
#include "flavour/BrowserFlavour.h"
#include "platform/AdminCheck.h"
#include "platform/ControlPurposes.h"
#include "platform/MessageService.h"
#include "platform/ProgramEnd.h"
#include "platform/Twips.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QFrame>
#include <QLabel>
#include <QRadioButton>
#include <QToolButton>

namespace {

const QColor LightYellow(0xFF, 0xFF, 0xC0);
const QColor LightCyan(0xC0, 0xFF, 0xFF);

void setBackground(QWidget* w, const QColor& colour)
{
    QPalette pal = w->palette();
    pal.setColor(QPalette::Window, colour);
    pal.setColor(QPalette::Button, colour);
    w->setPalette(pal);
    w->setAutoFillBackground(true);
}

} // namespace

OptionsWindow::OptionsWindow(const Services& services) : m_services(services)
{
    setObjectName(QStringLiteral("Options"));
    setWindowTitle(QStringLiteral("QUILLARY " QUILLARY_VERSION));
    setFixedSize(Twips::toPx(5010), Twips::toPx(3945));
    setFont(ClassicLook::uiFont());
    buildControls();
    ClassicLook::fitLabels(this);
    ControlPurposes::nameOptionsControls(this);
}

OptionsWindow::~OptionsWindow() = default;

void OptionsWindow::buildControls()
{
    m_ui.Frame1 = new QFrame(this);
    m_ui.Frame1->setObjectName(QStringLiteral("Frame1"));
    m_ui.Frame1->setFrameStyle(QFrame::NoFrame);
    Twips::place(m_ui.Frame1, {240, 165, 4560, 3570});
    QFrame* f = m_ui.Frame1;

    m_ui.Label3 = new QLabel(QStringLiteral(" Running as Administrator "), f);
    m_ui.Label3->setObjectName(QStringLiteral("Label3"));
    m_ui.Label3->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setBackground(m_ui.Label3, LightYellow);
    Twips::place(m_ui.Label3, {2670, 120, 1845, 195});

    m_ui.Label2 = new QLabel(QStringLiteral(" SELECT OPTION "), f);
    m_ui.Label2->setObjectName(QStringLiteral("Label2"));
    QFont title = ClassicLook::serifFont(20.25);
    title.setBold(true);
    m_ui.Label2->setFont(title);
    m_ui.Label2->setAlignment(Qt::AlignCenter);
    setBackground(m_ui.Label2, LightCyan);
    Twips::place(m_ui.Label2, {330, 375, 3525, 465});

    // Option2 sits in the same group, hidden: selecting it clears both visible options.
    auto* group = new QButtonGroup(this);
    QFont optionFont = ClassicLook::uiFont(9.75);
    optionFont.setPointSizeF(9.75);
    optionFont.setBold(true);
    const QString legends[2] = {QStringLiteral(" Version: 2.00 (Limit: 32,768 Files) - Faster"),
                                QStringLiteral(" Version: 3.00 (Limit: 2,147,483,648 Files)")};
    const QRect optionPlaces[2] = {{270, 1140, 3660, 285}, {270, 1875, 3660, 285}};
    const QRect legendPlaces[2] = {{1290, 1515, 2940, 195}, {1290, 2250, 2910, 195}};
    for (int i = 0; i < 2; ++i) {
        auto* option = new OptionBand(QStringLiteral("Quillary"), f);
        option->setObjectName(QStringLiteral("Option1_") + QString::number(i));
        option->setFont(optionFont);
        setBackground(option, LightCyan);
        Twips::place(option, optionPlaces[i]);
        group->addButton(option);
        connect(option, &QRadioButton::clicked, this, [this] { Option1_Click(); });
        m_ui.Option1[i] = option;

        auto* legend = new QLabel(legends[i], f);
        legend->setObjectName(QStringLiteral("Label1_") + QString::number(i));
        Twips::place(legend, legendPlaces[i]);
        m_ui.Label1[i] = legend;
    }

    // A graphical button: the picture above the caption.
    m_ui.OptionSelect = new QToolButton(f);
    m_ui.OptionSelect->setObjectName(QStringLiteral("OptionSelect"));
    m_ui.OptionSelect->setText(QStringLiteral("GO"));
    m_ui.OptionSelect->setIcon(QIcon(Pictures::go(32)));
    m_ui.OptionSelect->setIconSize(QSize(32, 32));
    m_ui.OptionSelect->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    QFont bold = m_ui.OptionSelect->font();
    bold.setBold(true);
    m_ui.OptionSelect->setFont(bold);
    Twips::place(m_ui.OptionSelect, {3405, 2655, 735, 765});
    connect(m_ui.OptionSelect, &QToolButton::clicked, this, [this] { OptionSelect_Click(); });

    m_ui.Option2 = new QRadioButton(f);
    m_ui.Option2->setObjectName(QStringLiteral("Option2"));
    Twips::place(m_ui.Option2, {4200, 2640, 240, 330});
    group->addButton(m_ui.Option2);
    m_ui.Option2->setChecked(true);
    m_ui.Option2->hide();

    m_ui.Image1 = new ClickableLabel(f);
    m_ui.Image1->setObjectName(QStringLiteral("Image1"));
    m_ui.Image1->setPixmap(Pictures::banner(198, 52));
    m_ui.Image1->setCursor(Qt::PointingHandCursor);
    m_ui.Image1->setGeometry(Twips::toPx(270), Twips::toPx(2640), 198, 52);
    connect(m_ui.Image1, &ClickableLabel::clicked, this, [this] { Image1_Click(); });
}

void OptionsWindow::start()
{
    if (!m_loaded) {
        m_loaded = true;
        if (!Form_Load())
            return;
    }
    show();
}

bool OptionsWindow::Form_Load()
{
    if (m_services.admin->isUserAnAdmin()) {
        m_ui.Label3->setText(QStringLiteral(" Running as Administrator "));
        return true;
    }
    const Answer answer = m_services.messages->message(
        QStringLiteral("Administrator privileges are required to run this application.\r\n"
                       "Restart this application as Administrator. Users with administrator\r\n"
                       "rights have access to all system files.\r\n"
                       "\r\n"
                       "Would you still like to open the program as a 'User'?"),
        MessageStyle::YesNoQuestion, QStringLiteral("Quillary " QUILLARY_VERSION));
    m_ui.Label3->setText(QStringLiteral(" Running as User "));
    if (answer == Answer::No) {
        m_services.programEnd->end();
        return false;
    }
    return true;
}

void OptionsWindow::Option1_Click()
{
    if (m_ui.Option1[0]->isChecked())
        openBrowser(BrowserFlavour::shortBrowser(), m_shortBrowser);
    else
        openBrowser(BrowserFlavour::longBrowser(), m_longBrowser);
    m_ui.Option2->setChecked(true);
    hide();
}

void OptionsWindow::openBrowser(const BrowserFlavour& flavour, std::unique_ptr<BrowserWindow>& browser)
{
    if (!browser)
        browser = std::make_unique<BrowserWindow>(flavour, m_services, this);
    browser->show();
}

void OptionsWindow::OptionSelect_Click()
{
    // Whenever the button can be pressed no option is selected: an option opens its browser as soon as it is
    // clicked and is cleared again straight after.
    m_services.messages->message(QStringLiteral("You have not selected any option."), MessageStyle::Exclamation);
}

void OptionsWindow::Image1_Click()
{
    m_services.messages->message(QStringLiteral("Visit our website https://www.quillary.example for more.\r\n") +
                                     QString(13, QLatin1Char(' ')) + QStringLiteral("Email: hello@quillary.example"),
                                 MessageStyle::Information);
}

void OptionsWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    m_services.programEnd->end();
}
