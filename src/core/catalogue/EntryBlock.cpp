// SPDX-License-Identifier: GPL-3.0-or-later

#include "EntryBlock.h"

namespace {

std::uint64_t zigzag(qint64 v)
{
    return (std::uint64_t(v) << 1) ^ std::uint64_t(v >> 63);
}

qint64 unzigzag(std::uint64_t v)
{
    return qint64(v >> 1) ^ -qint64(v & 1);
}

} // namespace

void EntryBlock::putVarint(std::string& out, std::uint64_t v)
{
    while (v >= 0x80) {
        out.push_back(char(v | 0x80));
        v >>= 7;
    }
    out.push_back(char(v));
}

bool EntryBlock::getLongVarint(const char*& p, const char* end, std::uint64_t& v)
{
    v = 0;
    for (int shift = 0; shift < 70; shift += 7) {
        if (p >= end)
            return false;
        const auto b = static_cast<unsigned char>(*p++);
        v |= std::uint64_t(b & 0x7F) << shift;
        if (!(b & 0x80))
            return true;
    }
    return false;
}

void EntryBlock::Writer::add(std::uint32_t parent, std::string_view name, qint64 bytes, qint64 mtime)
{
    putVarint(m_names, name.size());
    m_names.append(name);
    putVarint(m_parents, parent);
    putVarint(m_sizes, bytes < 0 ? 0 : std::uint64_t(bytes) + 1);
    putVarint(m_times, mtime == LLONG_MIN ? 0 : zigzag(mtime - m_base) + 1);
    ++m_count;
}

void EntryBlock::Writer::finish(std::string& out)
{
    out.clear();
    putVarint(out, std::uint64_t(m_count));
    putVarint(out, m_names.size());
    out += m_names;
    out += m_parents;
    out += m_sizes;
    out += m_times;
    m_count = 0;
    m_names.clear();
    m_parents.clear();
    m_sizes.clear();
    m_times.clear();
}

bool EntryBlock::parse(std::string_view bytes, qint64 baseTime)
{
    m_base = baseTime;
    m_names.clear();
    m_parentsRead = m_columnsRead = false;
    const char* p = bytes.data();
    const char* end = p + bytes.size();
    std::uint64_t count = 0, namesLen = 0;
    if (!getVarint(p, end, count) || !getVarint(p, end, namesLen) || count > std::uint64_t(Size) * 1024 ||
        namesLen > std::uint64_t(end - p))
        return false;
    const char* namesEnd = p + namesLen;
    m_names.reserve(count);
    for (std::uint64_t i = 0; i < count; ++i) {
        std::uint64_t len = 0;
        if (!getVarint(p, namesEnd, len) || len > std::uint64_t(namesEnd - p))
            return false;
        m_names.emplace_back(p, size_t(len));
        p += len;
    }
    m_rest = namesEnd;
    m_end = end;
    return p == namesEnd;
}

bool EntryBlock::parseParents()
{
    m_parentsRead = true;
    m_parents.resize(m_names.size());
    const char* p = m_rest;
    std::uint64_t v = 0;
    for (std::uint32_t& parent : m_parents) {
        if (!getVarint(p, m_end, v))
            return m_parentsOk = false;
        parent = std::uint32_t(v);
    }
    m_afterParents = p;
    return m_parentsOk = true;
}

std::uint32_t EntryBlock::parent(int i)
{
    if (!m_parentsRead)
        parseParents();
    return m_parentsOk ? m_parents[size_t(i)] : 0;
}

bool EntryBlock::parseColumns()
{
    m_columnsRead = true;
    if (!(m_parentsRead ? m_parentsOk : parseParents()))
        return m_columnsOk = false;
    const size_t n = m_names.size();
    m_sizes.resize(n);
    m_times.resize(n);
    const char* p = m_afterParents;
    std::uint64_t v = 0;
    for (size_t i = 0; i < n; ++i) {
        if (!getVarint(p, m_end, v))
            return m_columnsOk = false;
        m_sizes[i] = v == 0 ? -1 : qint64(v - 1);
    }
    for (size_t i = 0; i < n; ++i) {
        if (!getVarint(p, m_end, v))
            return m_columnsOk = false;
        m_times[i] = v == 0 ? LLONG_MIN : m_base + unzigzag(v - 1);
    }
    return m_columnsOk = true;
}

EntryBlock::Entry EntryBlock::entry(int i)
{
    if (!m_columnsRead)
        parseColumns();
    Entry e;
    e.name = m_names[size_t(i)];
    if (m_columnsOk) {
        e.parent = m_parents[size_t(i)];
        e.bytes = m_sizes[size_t(i)];
        e.mtime = m_times[size_t(i)];
    }
    return e;
}

void EntryBlock::encodeAscending(const std::vector<std::uint32_t>& values, std::string& out)
{
    out.clear();
    std::uint32_t prev = 0;
    for (const std::uint32_t v : values) {
        putVarint(out, v - prev);
        prev = v;
    }
}

bool EntryBlock::decodeAscending(std::string_view bytes, std::vector<std::uint32_t>& out)
{
    out.clear();
    const char* p = bytes.data();
    const char* end = p + bytes.size();
    std::uint64_t prev = 0, d = 0;
    while (p < end) {
        if (!getVarint(p, end, d))
            return false;
        prev += d;
        out.push_back(std::uint32_t(prev));
    }
    return true;
}
