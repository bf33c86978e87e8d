// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueCommand.h"

#include <QByteArrayList>
#include <QCoreApplication>

int main(int argc, char** argv)
{
    if (argc < 2) {
        // Without arguments this program is the catalogue's window where one is built; here it explains itself.
        std::fputs(catalogueUsage(), stderr);
        return 2;
    }
    QCoreApplication app(argc, argv); // for the system locale and storage information
    QByteArrayList args;
    for (int i = 1; i < argc; ++i)
        args.append(QByteArray(argv[i]));
    return runCatalogueCommand(args, stdout, stderr);
}
