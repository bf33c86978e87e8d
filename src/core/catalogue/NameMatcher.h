// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The catalogue's text match: a substring, or a whole-name pattern of * and ?, compared after each UTF-16 unit
// of both sides is upper-cased on its own (QChar::toUpper), as the windows' search does; bytes that are not
// UTF-8 stand for themselves. It also says which three-byte pieces of the folded form any match must contain,
// so the index can narrow the search before names are read.
class NameMatcher
{
public:
    NameMatcher(const QString& text, bool glob);

    bool matchesEverything() const { return m_everything; }
    bool matches(std::string_view name) const;

    // The folded form of a name: upper-cased unit by unit, as native bytes again.
    static void fold(std::string_view name, std::string& out);
    // The distinct three-byte pieces of `folded`, as 24-bit numbers, sorted.
    static void grams(std::string_view folded, std::vector<std::uint32_t>& out);
    // The same pieces appended to `out` as they come, repeats and all, for a caller that sorts many names' at once.
    static void appendGrams(std::string_view folded, std::vector<std::uint32_t>& out);
    // Pieces every match contains; empty when the text is too short to narrow anything.
    const std::vector<std::uint32_t>& requiredGrams() const { return m_required; }

private:
    bool globMatch(std::u16string_view name) const;

    bool m_glob = false;
    bool m_everything = false;
    bool m_asciiNeedle = false;
    // The needle is ASCII without I or S: the raw bytes of any name decide, decoded or not (see the constructor).
    bool m_bytesSuffice = false;
    std::string m_foldedNeedle;   // substring mode
    std::u16string m_upperNeedle; // substring mode, for names that are not plain ASCII
    // For a needle beyond ASCII: the UTF-8 forms of every character that upper-cases to its first such letter.
    // A name holding none of them cannot match, and is passed over without being decoded.
    std::vector<std::string> m_anyOf;
    std::u16string m_pattern; // glob mode
    std::vector<std::uint32_t> m_required;
};
