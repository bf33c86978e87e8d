// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayList>
#include <cstdio>

// quillary-list: scans a folder and writes the four listing files, as "List All Folders & Files" followed by
// "Create Text Files" would, without a window. Returns the process exit code.
//
// Exit codes: 0 done; 1 a listing exists and --yes was not given (nothing written); 2 bad arguments, or the folder
// cannot be listed; 3 the save failed or its folder was refused; 4 written, but some folders could not be read.
// `args` are the native bytes of the arguments, after the program's name.
int runListCommand(const QByteArrayList& args, std::FILE* out, std::FILE* err);
