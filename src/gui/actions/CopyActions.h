// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/PathControls.h"
#include "flavour/BrowserFlavour.h"
#include "platform/Services.h"

class QString;
class ResultPanes;

// Copies of a listed item into the collection folder, from the context menus: the selected file (SaveFile_3,
// SaveFileTo_MSF3) and the selected folder with everything under it (CopyFolders).
//
// Neither traps an error. A file copy that fails (nothing selected, the source gone, the target locked, the
// collection folder missing) is an unhandled run-time error, which ends the program. A folder copy reports its
// problems in its own progress window and is always reported as done.
class CopyActions
{
public:
    CopyActions(const BrowserFlavour& flavour, const PathControls& paths, const ResultPanes& panes,
                const Services& services);

    void copySelectedFile();
    void CopyFolders();

private:
    const BrowserFlavour& m_flavour;
    const PathControls& m_paths;
    const ResultPanes& m_panes;
    Services m_services;
};
