// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// Runs the catalogue window as a program of its own: the application, the real services, the catalogue in the
// collection folder, and the event loop. Returns the exit status.
int runCatalogueWindow(int argc, char* argv[]);
