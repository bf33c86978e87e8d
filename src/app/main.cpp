// SPDX-License-Identifier: GPL-3.0-or-later

#ifndef _WIN32
#include "AutomationProbe.h"
#endif
#include "common/Version.h"
#include "platform/ProgramEnd.h"
#include "platform/SystemServices.h"
#include "startup/OptionsWindow.h"

#include <QApplication>
#include <csignal>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
#ifdef SIGXFSZ
    // Past a file-size limit a write should fail ("Disk full"), not end the program half-way through a save.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    QApplication::setApplicationName(QStringLiteral("Quillary"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLARY_VERSION));

#ifndef _WIN32
    AutomationProbe::installIfRequested(&app); // for the end-to-end test only
#endif
    SystemServices system;
    OptionsWindow options(system.services());
    options.start();
    if (system.services().programEnd->ended())
        return 0;
    return app.exec();
}
