// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <memory>

class Catalogue;

// The catalogue at `path` as the window reads it: with a small page cache, as the window keeps its connections
// open while it is shown and a search reads each block it needs once.
std::unique_ptr<Catalogue> openWindowCatalogue(const QString& path, QString* error);

// Runs the catalogue window as a program of its own: the application, the real services, the catalogue in the
// collection folder, and the event loop. Returns the exit status.
int runCatalogueWindow(int argc, char* argv[]);
