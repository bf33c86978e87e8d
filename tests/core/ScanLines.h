// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/ScanResult.h"

#include <QByteArrayList>

// One of a walk's four lists as its lines, in list order.
inline QByteArrayList lines(const ScanResult& r, ScanResult::List list)
{
    QByteArrayList out;
    for (qint64 i = 0; i < r.count(list); ++i)
        out.append(r.entry(list, i));
    return out;
}
