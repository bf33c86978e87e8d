// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListCommand.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <csignal>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv); // for the system locale and storage information
#ifdef SIGXFSZ
    // Past a file-size limit a write should fail ("Disk full"), not kill the program half-way through a save.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    QByteArrayList args;
    for (int i = 1; i < argc; ++i)
        args.append(QByteArray(argv[i]));
    return runListCommand(args, stdout, stderr);
}
