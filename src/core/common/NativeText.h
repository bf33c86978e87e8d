// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <string_view>

// Paths and names travel through the program as the bytes the file system gave. They become text only to be
// shown, and come back without loss: every byte that is not part of valid UTF-8 is shown as one lone surrogate
// U+DC80..U+DCFF, and turns back into that byte. So a file whose name is not UTF-8 can still be opened, copied
// and written to a listing exactly as it is on disk.
namespace NativeText {

QString toDisplay(std::string_view bytes);
inline QString toDisplay(const QByteArray& bytes)
{
    return toDisplay(std::string_view(bytes.constData(), bytes.size()));
}

// Appends the display form to `out` (no allocation when `out` has room); used by the hot paths of the views.
void appendDisplay(std::string_view bytes, QString& out);

QByteArray fromDisplay(QStringView text);

// A file: URL that carries the path's own bytes, percent-encoded, so that the shell or the player reaches a
// file whose name is not UTF-8.
QUrl fileUrl(const QString& displayPath);

// True when every byte is below 0x80, the common case that needs no decoding.
bool isAscii(std::string_view bytes);

// The upper-case form names are compared by, in the walk's order and in searches: each UTF-16 unit mapped on
// its own through its simple upper case, as NTFS's upper-case table does. No character turns into two, so "ß"
// and "ﬁ" stay as they are rather than becoming "SS" and "FI".
QString upperUnits(QStringView text);

// The same upper case for ASCII bytes, which map onto themselves or onto another ASCII byte.
inline char upperAscii(char c)
{
    return (c >= 'a' && c <= 'z') ? char(c - 32) : c;
}

// Whether the ASCII bytes `hay` hold `upperNeedle` (upper-case ASCII, not empty) in any case: the search of the
// lists and of the catalogue in the common case, without decoding or allocating.
bool containsAsciiUpper(std::string_view hay, std::string_view upperNeedle);

// Number of UTF-16 units `toDisplay` would produce.
qsizetype displayLength(std::string_view bytes);

} // namespace NativeText
