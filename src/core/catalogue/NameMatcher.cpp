// SPDX-License-Identifier: GPL-3.0-or-later

#include "NameMatcher.h"

#include "common/NativeText.h"

#include <algorithm>

namespace {

std::u16string upperUnits(const QString& text)
{
    const QString upper = NativeText::upperUnits(text);
    return std::u16string(reinterpret_cast<const char16_t*>(upper.utf16()), size_t(upper.size()));
}

std::u16string upperUnits(std::string_view name)
{
    return upperUnits(NativeText::toDisplay(name));
}

} // namespace

NameMatcher::NameMatcher(const QString& text, bool glob) : m_glob(glob)
{
    if (glob) {
        m_pattern = upperUnits(text);
        m_everything =
            text.isEmpty() || std::all_of(m_pattern.begin(), m_pattern.end(), [](char16_t c) { return c == u'*'; });
        // Any run of literal characters three bytes long or more narrows the search.
        QString literal;
        const auto flush = [&] {
            std::string f;
            fold(NativeText::fromDisplay(literal).toStdString(), f);
            std::vector<std::uint32_t> g;
            grams(f, g);
            m_required.insert(m_required.end(), g.begin(), g.end());
            literal.clear();
        };
        for (const QChar c : text) {
            if (c == u'*' || c == u'?')
                flush();
            else
                literal.append(c);
        }
        flush();
        std::sort(m_required.begin(), m_required.end());
        m_required.erase(std::unique(m_required.begin(), m_required.end()), m_required.end());
        return;
    }
    m_everything = text.isEmpty();
    const QByteArray bytes = NativeText::fromDisplay(text);
    fold(std::string_view(bytes.constData(), size_t(bytes.size())), m_foldedNeedle);
    m_upperNeedle = upperUnits(text);
    m_asciiNeedle = NativeText::isAscii(m_foldedNeedle);
    // In a decoded name, units below 0x80 come from ASCII bytes alone, and of the other units only dotless i and
    // long s upper-case into ASCII (to I and S). So for a needle without those two letters, a name's raw bytes,
    // ASCII-folded, hold the needle exactly when its upper-cased units do: no decoding for any name, which is
    // most of the time a search over millions of names with accents or other scripts takes.
    m_bytesSuffice = m_asciiNeedle && m_foldedNeedle.find_first_of("IS") == std::string::npos;
    const auto letter = std::find_if(m_upperNeedle.begin(), m_upperNeedle.end(),
                                     [](char16_t u) { return u >= 0x80 && !QChar::isSurrogate(u); });
    if (letter != m_upperNeedle.end()) {
        for (char32_t c = 0x80; c <= 0xFFFF; ++c) {
            if (!QChar::isSurrogate(c) && QChar::toUpper(c) == *letter)
                m_anyOf.push_back(QString(QChar(char16_t(c))).toUtf8().toStdString());
        }
    }
    grams(m_foldedNeedle, m_required);
}

void NameMatcher::fold(std::string_view name, std::string& out)
{
    out.clear();
    if (NativeText::isAscii(name)) {
        out.resize(name.size());
        for (std::size_t i = 0; i < name.size(); ++i)
            out[i] = NativeText::upperAscii(name[i]);
        return;
    }
    const QByteArray bytes = NativeText::fromDisplay(NativeText::upperUnits(NativeText::toDisplay(name)));
    out.assign(bytes.constData(), size_t(bytes.size()));
}

void NameMatcher::appendGrams(std::string_view folded, std::vector<std::uint32_t>& out)
{
    if (folded.size() < 3)
        return;
    const auto* p = reinterpret_cast<const unsigned char*>(folded.data());
    for (std::size_t i = 0; i + 3 <= folded.size(); ++i)
        out.push_back((std::uint32_t(p[i]) << 16) | (std::uint32_t(p[i + 1]) << 8) | p[i + 2]);
}

void NameMatcher::grams(std::string_view folded, std::vector<std::uint32_t>& out)
{
    out.clear();
    appendGrams(folded, out);
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
}

bool NameMatcher::matches(std::string_view name) const
{
    if (m_everything)
        return true;
    if (m_glob)
        return globMatch(upperUnits(name));
    if (m_bytesSuffice)
        return NativeText::containsAsciiUpper(name, m_foldedNeedle);
    if (NativeText::isAscii(name)) // the common case: no decoding, no allocation
        return m_asciiNeedle && NativeText::containsAsciiUpper(name, m_foldedNeedle);
    if (!m_anyOf.empty() &&
        std::none_of(m_anyOf.begin(), m_anyOf.end(), [&](const std::string& c) { return name.find(c) != name.npos; }))
        return false;
    // Upper-casing may turn a non-ASCII letter into an ASCII one (dotless i, long s), so these go the long way.
    return upperUnits(name).find(m_upperNeedle) != std::u16string::npos;
}

bool NameMatcher::globMatch(std::u16string_view name) const
{
    // The classic two-pointer match with one backtrack point: linear in practice, no recursion.
    const std::u16string_view p = m_pattern;
    std::size_t n = 0, i = 0, starP = std::u16string_view::npos, starN = 0;
    while (n < name.size()) {
        if (i < p.size() && (p[i] == u'?' || p[i] == name[n])) {
            ++i;
            ++n;
        } else if (i < p.size() && p[i] == u'*') {
            starP = i++;
            starN = n;
        } else if (starP != std::u16string_view::npos) {
            i = starP + 1;
            n = ++starN;
        } else {
            return false;
        }
    }
    while (i < p.size() && p[i] == u'*')
        ++i;
    return i == p.size();
}
