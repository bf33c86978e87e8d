// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

// The names and texts in which the two browser windows differ.
struct BrowserTexts
{
    QString objectName; // "ShortBrowser", "LongBrowser"
    QString caption;
    QString label10Text;
    QString modeFrameName;   // holds Option1 / Option2
    QString playerFrameName; // hidden at start, holds the player
    QString closeLabelName;  // the two "Click to Close" labels of the player frame

    // What the copies into the collection folder say. "C:\Quillbox" and "C:\QUILLBOX" stand for the collection
    // folder's path; %1 is the item's name in capitals.
    QString replaceFileQuestion;
    QString folderCopiedReport;
    QString absoluteNameHeading;
};
