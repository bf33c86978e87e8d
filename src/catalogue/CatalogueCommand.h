// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayList>
#include <cstdio>

// `quillary-catalogue` without its window: add, import, find, scans, remove, diff. `args` are the arguments
// after the program's name, as the bytes the shell gave. Returns the exit status: 0 done, 1 nothing found,
// 2 bad arguments, 3 the catalogue failed (its message on `err`).
int runCatalogueCommand(const QByteArrayList& args, std::FILE* out, std::FILE* err);

// The usage text.
const char* catalogueUsage();
