// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayList>
#include <cstdio>

// quillary-list: scans a folder and writes the four listing files, as "List All Folders & Files" followed by
// "Create Text Files" would, without a window. Returns the process exit code.
//
// Exit codes: 0 done; 1 the listings exist and --yes was not given; 2 bad arguments or folder; 3 the save failed.
int runListCommand(const QByteArrayList& args, std::FILE* out, std::FILE* err);
