// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueWindowMain.h"

#include "CatalogueWindow.h"
#include "catalogue/SqliteCatalogue.h"
#include "common/Version.h"
#include "platform/SystemServices.h"

#include <QApplication>
#include <QIcon>

namespace {
constexpr int WindowCacheKib = 2048;
} // namespace

std::unique_ptr<Catalogue> openWindowCatalogue(const QString& path, QString* error)
{
    std::unique_ptr<SqliteCatalogue> catalogue = SqliteCatalogue::open(path, error);
    if (catalogue && !catalogue->setCacheSize(WindowCacheKib, error))
        return nullptr;
    return catalogue;
}

int runCatalogueWindow(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Quillary Catalogue"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLARY_VERSION));
    // Its own launcher entry, so the desktop groups its windows apart from the browsers'.
    QGuiApplication::setDesktopFileName(QStringLiteral(QUILLARY_CATALOGUE_APP_ID));
    QApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral(QUILLARY_APP_ID), QIcon(QStringLiteral(":/icons/" QUILLARY_APP_ID ".svg"))));

    SystemServices system;
    const QString path = SqliteCatalogue::defaultPath();
    CatalogueWindow window(system.services(), [path](QString* error) { return openWindowCatalogue(path, error); });
    window.show();
    return app.exec();
}
