// SPDX-License-Identifier: GPL-3.0-or-later

#include "ControlPurposes.h"

#include "flavour/BrowserFlavour.h"

#include <QAbstractButton>
#include <QLabel>
#include <QWidget>

namespace ControlPurposes {

namespace {

bool captionSpeaks(const QWidget* w)
{
    if (const auto* label = qobject_cast<const QLabel*>(w))
        return label->pixmap().isNull(); // a text label, even one still blank, says what it shows
    if (const auto* button = qobject_cast<const QAbstractButton*>(w))
        return !button->text().isEmpty();
    return false;
}

} // namespace

void apply(QWidget* window, const QList<Purpose>& purposes)
{
    for (const Purpose& p : purposes) {
        auto* w = window->findChild<QWidget*>(p.control);
        if (!w)
            continue; // a control the other browser has
        if (captionSpeaks(w))
            w->setAccessibleDescription(p.purpose);
        else
            w->setAccessibleName(p.purpose);
    }
}

void nameOptionsControls(QWidget* options)
{
    apply(options, {
                       {QStringLiteral("Frame1"), QStringLiteral("Choose a version")},
                       {QStringLiteral("Option1_0"), QStringLiteral("Opens the Short version, with list boxes")},
                       {QStringLiteral("Option1_1"), QStringLiteral("Opens the Long version, with grids")},
                       {QStringLiteral("Option2"), QStringLiteral("No version chosen")},
                       {QStringLiteral("Image1"), QStringLiteral("Web site and e-mail of Quillary")},
                   });
}

void nameBrowserControls(QWidget* browser, const BrowserFlavour& flavour)
{
    QList<Purpose> purposes = {
        {QStringLiteral("Drive1"), QStringLiteral("Drive")},
        {QStringLiteral("Dir1"), QStringLiteral("Folders of the drive")},
        {flavour.behaviour.paneName(1), QStringLiteral("Folders with their paths")},
        {flavour.behaviour.paneName(2), QStringLiteral("Folder names with their sizes")},
        {flavour.behaviour.paneName(3), QStringLiteral("Files with their paths")},
        {flavour.behaviour.paneName(4), QStringLiteral("File names")},
        {QStringLiteral("Frame2"), QStringLiteral("Folder totals")},
        {QStringLiteral("Frame3"), QStringLiteral("File path totals")},
        {QStringLiteral("Frame4"), QStringLiteral("File name totals")},
        {QStringLiteral("pathFrame"), QStringLiteral("Selected paths")},
        {QStringLiteral("Text1"), QStringLiteral("Selected folder's path")},
        {QStringLiteral("Text2"), QStringLiteral("Selected file's path")},
        {flavour.texts.modeFrameName, QStringLiteral("What a double-click does")},
        {QStringLiteral("Image6"), QStringLiteral("Go to Option Selection Screen")},
        {QStringLiteral("Image2"), QStringLiteral("About Quillary")},
        {QStringLiteral("Image3"), QStringLiteral("Folder")},
        {QStringLiteral("Image4"), QStringLiteral("File")},
        {QStringLiteral("Frame1"), QStringLiteral("Search section")},
        {QStringLiteral("srchFolder"), QStringLiteral("Search string")},
        {QStringLiteral("List5"), QStringLiteral("Search results")},
        {flavour.texts.playerFrameName, QStringLiteral("Media player, click to close")},
        {QStringLiteral("WindowsMediaPlayer1"), QStringLiteral("Media player")},
        {QStringLiteral("mnuPopUp2"), QStringLiteral("Folder menu")},
        {QStringLiteral("mnuPopUp"), QStringLiteral("File menu")},
    };
    if (flavour.behaviour.hasGoToFrame) {
        purposes += {
            {QStringLiteral("Frame5"), QStringLiteral("Go to a numbered row")},
            {QStringLiteral("Text4"), QStringLiteral("Folder number to go to")},
            {QStringLiteral("Text3"), QStringLiteral("File path number to go to")},
            {QStringLiteral("Text5"), QStringLiteral("File number to go to")},
            {QStringLiteral("GoToFilePath"), QStringLiteral("Goes to a row of the file paths")},
            {QStringLiteral("GoToFile"), QStringLiteral("Goes to a row of the file names")},
            {QStringLiteral("Image1"), QStringLiteral("Quillary")},
        };
    }
    apply(browser, purposes);
}

} // namespace ControlPurposes
