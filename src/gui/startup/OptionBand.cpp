// SPDX-License-Identifier: GPL-3.0-or-later

#include "OptionBand.h"

bool OptionBand::hitButton(const QPoint& pos) const
{
    return rect().contains(pos);
}
