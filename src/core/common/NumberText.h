// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace NumberText {

// Seconds from a millisecond count as the status texts show them: at most 15 significant digits, no trailing
// zeros, no group separators, the user's decimal separator ("2.344", "0.5", "12").
QString seconds(qint64 milliseconds);

// Round half to even of bytes / 1024, as the folder sizes are shown. Returns false when the result does not fit
// a signed 32-bit number (a folder of 2 TiB or more), which the caller treats as an overflow.
bool kilobytes(quint64 bytes, qint32& out);

} // namespace NumberText
