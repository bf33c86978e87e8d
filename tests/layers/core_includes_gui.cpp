// SPDX-License-Identifier: GPL-3.0-or-later

// A core file that includes a window header. It must not compile: the core library's include root is
// src/core alone, so the layer rule is kept by the build and not by review.
#include "browser/BrowserWindow.h"
