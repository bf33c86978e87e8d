// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListCommand.h"
#include "export/TempFile.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <csignal>

#ifndef _WIN32
extern "C" void removeTemporariesAndStop(int sig)
{
    // A save stopped part-way leaves no hidden temporary file in the collection folder; then the signal does
    // what it would have done.
    TempFile::removeTracked();
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}
#endif

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv); // for the system locale and storage information
#ifndef _WIN32
    for (const int sig : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction action = {};
        action.sa_handler = removeTemporariesAndStop;
        sigemptyset(&action.sa_mask);
        ::sigaction(sig, &action, nullptr);
    }
#endif
#ifdef SIGXFSZ
    // Past a file-size limit a write should fail ("Disk full"), not kill the program half-way through a save.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    QByteArrayList args;
    for (int i = 1; i < argc; ++i)
        args.append(QByteArray(argv[i]));
    return runListCommand(args, stdout, stderr);
}
