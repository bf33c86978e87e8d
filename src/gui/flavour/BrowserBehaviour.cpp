// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserBehaviour.h"

QString BrowserBehaviour::paneName(int number) const
{
    return (panes == Panes::ListBoxes ? QStringLiteral("List") : QStringLiteral("MSFlexGrid")) +
           QString::number(number);
}
