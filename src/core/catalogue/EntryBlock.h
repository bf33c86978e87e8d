// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>
#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A run of up to Size consecutive entries of one scan as one stored value. The names come first, back to back,
// so a search reads through them without touching the rest; then the parents, sizes and times, each a column
// of variable-length numbers:
//
//   count, names' byte length, (name length, name bytes)*, parent*, (size + 1)*, time code*
//
// A size of 0 in the column means "not known"; a time code is 0 for "not known", else the zig-zag of the
// distance from the scan's base time, plus one.
class EntryBlock
{
public:
    static constexpr int Size = 64;

    struct Entry
    {
        std::uint32_t parent = 0;
        std::string_view name;
        qint64 bytes = -1;
        qint64 mtime = LLONG_MIN;
    };

    // Collects entries and writes them out.
    class Writer
    {
    public:
        explicit Writer(qint64 baseTime) : m_base(baseTime) {}
        void add(std::uint32_t parent, std::string_view name, qint64 bytes, qint64 mtime);
        int count() const { return m_count; }
        // The block's bytes; the writer is empty again afterwards.
        void finish(std::string& out);

    private:
        qint64 m_base;
        int m_count = 0;
        std::string m_names, m_parents, m_sizes, m_times;
    };

    // Reads a block's bytes, which must outlive it. False when they are damaged.
    bool parse(std::string_view bytes, qint64 baseTime);
    int count() const { return int(m_names.size()); }
    std::string_view name(int i) const { return m_names[size_t(i)]; }
    const std::vector<std::string_view>& names() const { return m_names; }
    // The rest of the entries, read on first use (a search that finds nothing in a block never needs them).
    Entry entry(int i);
    // Only the parent, which is all the folders' paths need: the other columns are left unread.
    std::uint32_t parent(int i);

    static void putVarint(std::string& out, std::uint64_t v);
    // Advances `p`; false past `end` or on a number longer than ten bytes. Inline for the one-byte numbers
    // that are most of them: a search reads millions.
    static bool getVarint(const char*& p, const char* end, std::uint64_t& v)
    {
        if (p < end && !(static_cast<unsigned char>(*p) & 0x80)) {
            v = static_cast<unsigned char>(*p++);
            return true;
        }
        return getLongVarint(p, end, v);
    }

    // Ascending numbers as differences from one to the next.
    static void encodeAscending(const std::vector<std::uint32_t>& values, std::string& out);
    static bool decodeAscending(std::string_view bytes, std::vector<std::uint32_t>& out);

private:
    static bool getLongVarint(const char*& p, const char* end, std::uint64_t& v);
    bool parseParents();
    bool parseColumns();

    qint64 m_base = 0;
    std::vector<std::string_view> m_names;
    const char* m_rest = nullptr;
    const char* m_afterParents = nullptr;
    const char* m_end = nullptr;
    bool m_parentsRead = false;
    bool m_parentsOk = false;
    bool m_columnsRead = false;
    bool m_columnsOk = false;
    std::vector<std::uint32_t> m_parents;
    std::vector<qint64> m_sizes;
    std::vector<qint64> m_times;
};
