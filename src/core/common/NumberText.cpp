// SPDX-License-Identifier: GPL-3.0-or-later

#include "NumberText.h"

#include <QLocale>
#include <cmath>
#include <limits>

namespace NumberText {

QString seconds(qint64 milliseconds)
{
    QLocale locale = QLocale::system();
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(double(milliseconds) / 1000.0, 'g', 15);
}

bool kilobytes(quint64 bytes, qint32& out)
{
    const double kb = std::nearbyint(double(bytes) / 1024.0); // the default rounding mode is to nearest, ties even
    if (kb > double(std::numeric_limits<qint32>::max()))
        return false;
    out = qint32(kb);
    return true;
}

} // namespace NumberText
