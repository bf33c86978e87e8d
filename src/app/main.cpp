// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/Version.h"
#include "platform/ProgramEnd.h"
#include "platform/SystemServices.h"
#include "startup/OptionsWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <csignal>

namespace {

// --help and --version are answered on the terminal before any window, so they need no display. Every other
// argument is left alone: the program reads no command line, and Qt takes its own (-platform, -style, ...).
void answerHelpOrVersion(int argc, char* argv[])
{
    QCoreApplication terminal(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Catalogue a folder tree: list every folder and file below a folder, save dated listings "
                       "into ~/Quillbox, search them, open, locate, copy or play any listed item.\n"
                       "Everything else is chosen in the windows."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.parse(terminal.arguments());
    if (parser.isSet(help) || parser.isSet(QStringLiteral("help-all")))
        parser.showHelp(0);
    if (parser.isSet(version))
        parser.showVersion();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication::setApplicationName(QStringLiteral("Quillary"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLARY_VERSION));
    answerHelpOrVersion(argc, argv);

    QApplication app(argc, argv);
#ifdef SIGXFSZ
    // Past a file-size limit a write should fail ("Disk full"), not end the program half-way through a save.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    // The launcher entry and the icon carry the application id, so the desktop matches the windows to both (on
    // Wayland by this name; on X11 by the window class "Quillary", which the launcher entry names too).
    QGuiApplication::setDesktopFileName(QStringLiteral(QUILLARY_APP_ID));
    QApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral(QUILLARY_APP_ID), QIcon(QStringLiteral(":/icons/" QUILLARY_APP_ID ".svg"))));
    SystemServices system;
    OptionsWindow options(system.services());
    options.start();
    if (system.services().programEnd->ended())
        return 0;
    return app.exec();
}
