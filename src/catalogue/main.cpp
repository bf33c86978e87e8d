// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueCommand.h"

#include <QByteArrayList>
#include <QCoreApplication>

#ifdef QUILLARY_CATALOGUE_WINDOW
#include "catalogue/CatalogueWindowMain.h"
#endif

int main(int argc, char** argv)
{
    if (argc < 2) {
#ifdef QUILLARY_CATALOGUE_WINDOW
        // Without arguments, as the launcher entry starts it, this program is the catalogue's window. Only this
        // path needs a display: every command below runs on a terminal alone.
        return runCatalogueWindow(argc, argv);
#else
        // A build without windows has only the commands, so here the program explains itself.
        std::fputs(catalogueUsage(), stderr);
        return 2;
#endif
    }
    QCoreApplication app(argc, argv); // for the system locale and storage information
    QByteArrayList args;
    for (int i = 1; i < argc; ++i)
        args.append(QByteArray(argv[i]));
    return runCatalogueCommand(args, stdout, stderr);
}
