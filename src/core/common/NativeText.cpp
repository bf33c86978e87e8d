// SPDX-License-Identifier: GPL-3.0-or-later

#include "NativeText.h"

namespace {

// Length of the valid UTF-8 sequence starting at s[i], or 0 when the byte there does not start one.
// Overlong forms, surrogates and code points above U+10FFFF are invalid, as the standard says.
int validSequence(std::string_view s, size_t i, char32_t& cp)
{
    const auto b = [&](size_t k) { return static_cast<unsigned char>(s[k]); };
    const unsigned char c = b(i);
    const size_t left = s.size() - i;
    const auto cont = [&](size_t k) { return (b(k) & 0xC0) == 0x80; };
    if (c < 0x80) {
        cp = c;
        return 1;
    }
    if (c >= 0xC2 && c <= 0xDF && left >= 2 && cont(i + 1)) {
        cp = (char32_t(c & 0x1F) << 6) | (b(i + 1) & 0x3F);
        return 2;
    }
    if (c >= 0xE0 && c <= 0xEF && left >= 3 && cont(i + 1) && cont(i + 2)) {
        cp = (char32_t(c & 0x0F) << 12) | (char32_t(b(i + 1) & 0x3F) << 6) | (b(i + 2) & 0x3F);
        if (cp < 0x800 || (cp >= 0xD800 && cp <= 0xDFFF))
            return 0;
        return 3;
    }
    if (c >= 0xF0 && c <= 0xF4 && left >= 4 && cont(i + 1) && cont(i + 2) && cont(i + 3)) {
        cp = (char32_t(c & 0x07) << 18) | (char32_t(b(i + 1) & 0x3F) << 12) | (char32_t(b(i + 2) & 0x3F) << 6) |
             (b(i + 3) & 0x3F);
        if (cp < 0x10000 || cp > 0x10FFFF)
            return 0;
        return 4;
    }
    return 0;
}

} // namespace

namespace NativeText {

bool isAscii(std::string_view bytes)
{
    for (const char ch : bytes)
        if (static_cast<unsigned char>(ch) >= 0x80)
            return false;
    return true;
}

bool containsAsciiUpper(std::string_view hay, std::string_view upperNeedle)
{
    if (upperNeedle.size() > hay.size())
        return false;
    const char first = upperNeedle[0];
    const char firstLower = (first >= 'A' && first <= 'Z') ? char(first + 32) : first;
    const std::size_t last = hay.size() - upperNeedle.size();
    for (std::size_t i = 0; i <= last; ++i) {
        if (hay[i] != first && hay[i] != firstLower)
            continue;
        std::size_t j = 1;
        while (j < upperNeedle.size() && upperAscii(hay[i + j]) == upperNeedle[j])
            ++j;
        if (j == upperNeedle.size())
            return true;
    }
    return false;
}

QString upperUnits(QStringView text)
{
    QString out(text.size(), Qt::Uninitialized);
    QChar* d = out.data();
    for (const QChar c : text)
        *d++ = c.toUpper();
    return out;
}

void appendDisplay(std::string_view bytes, QString& out)
{
    if (isAscii(bytes)) {
        out.append(QLatin1StringView(bytes.data(), qsizetype(bytes.size())));
        return;
    }
    out.reserve(out.size() + qsizetype(bytes.size()));
    for (size_t i = 0; i < bytes.size();) {
        char32_t cp = 0;
        const int n = validSequence(bytes, i, cp);
        if (n == 0) {
            out.append(QChar(char16_t(0xDC00 + static_cast<unsigned char>(bytes[i]))));
            ++i;
            continue;
        }
        if (cp >= 0x10000) {
            out.append(QChar(QChar::highSurrogate(cp)));
            out.append(QChar(QChar::lowSurrogate(cp)));
        } else {
            out.append(QChar(char16_t(cp)));
        }
        i += size_t(n);
    }
}

QString toDisplay(std::string_view bytes)
{
    QString out;
    appendDisplay(bytes, out);
    return out;
}

qsizetype displayLength(std::string_view bytes)
{
    qsizetype n = 0;
    for (size_t i = 0; i < bytes.size();) {
        char32_t cp = 0;
        const int k = validSequence(bytes, i, cp);
        n += (k != 0 && cp >= 0x10000) ? 2 : 1;
        i += k == 0 ? 1 : size_t(k);
    }
    return n;
}

QUrl fileUrl(const QString& displayPath)
{
    QUrl url;
    url.setScheme(QStringLiteral("file"));
    url.setPath(QString::fromLatin1(fromDisplay(displayPath).toPercentEncoding("/")), QUrl::TolerantMode);
    return url;
}

QByteArray fromDisplay(QStringView text)
{
    QByteArray out;
    out.reserve(text.size());
    const auto put = [&](char32_t cp) {
        if (cp < 0x80) {
            out.append(char(cp));
        } else if (cp < 0x800) {
            out.append(char(0xC0 | (cp >> 6)));
            out.append(char(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.append(char(0xE0 | (cp >> 12)));
            out.append(char(0x80 | ((cp >> 6) & 0x3F)));
            out.append(char(0x80 | (cp & 0x3F)));
        } else {
            out.append(char(0xF0 | (cp >> 18)));
            out.append(char(0x80 | ((cp >> 12) & 0x3F)));
            out.append(char(0x80 | ((cp >> 6) & 0x3F)));
            out.append(char(0x80 | (cp & 0x3F)));
        }
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t u = text[i].unicode();
        if (u >= 0xDC80 && u <= 0xDCFF) {
            out.append(char(u - 0xDC00)); // a byte that was not UTF-8 on disk
        } else if (QChar::isHighSurrogate(u) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1].unicode())) {
            put(QChar::surrogateToUcs4(u, text[i + 1].unicode()));
            ++i;
        } else {
            // Any other lone surrogate cannot come from a name on disk; encode it as UTF-8 would (WTF-8), so
            // nothing typed by the user is silently dropped.
            put(u);
        }
    }
    return out;
}

} // namespace NativeText
