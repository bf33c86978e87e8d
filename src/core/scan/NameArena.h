// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

// Names stored back to back in large chunks: one varint length, then the bytes. A name is referred to by a
// 64-bit handle (chunk index, offset), so millions of names cost their bytes plus one or two, not a heap block
// each. Several threads may fill one arena at once, each through its own Writer; only taking a new chunk locks.
class NameArena
{
public:
    using Ref = std::uint64_t;
    static constexpr unsigned OffsetBits = 22;
    static constexpr std::size_t ChunkSize = std::size_t(1) << OffsetBits; // 4 MiB
    static constexpr std::size_t MaxName = 16383;                          // two length bytes at most

    NameArena() = default;
    NameArena(const NameArena&) = delete;
    NameArena& operator=(const NameArena&) = delete;
    NameArena(NameArena&&) = delete;

    std::string_view get(Ref ref) const
    {
        const auto* p =
            reinterpret_cast<const unsigned char*>(m_chunks[ref >> OffsetBits].get()) + (ref & (ChunkSize - 1));
        std::size_t len = p[0];
        if (len & 0x80) {
            len = (len & 0x7F) | (std::size_t(p[1]) << 7);
            return {reinterpret_cast<const char*>(p + 2), len};
        }
        return {reinterpret_cast<const char*>(p + 1), len};
    }

    std::size_t bytesReserved() const { return m_chunks.size() * ChunkSize; }

    class Writer
    {
    public:
        explicit Writer(NameArena& arena) : m_arena(arena) {}
        // Longer names are cut to MaxName; no file system allows a component that long.
        Ref add(std::string_view name)
        {
            if (name.size() > MaxName)
                name = name.substr(0, MaxName);
            const std::size_t need = name.size() + 2;
            if (m_chunk < 0 || m_used + need > ChunkSize)
                takeChunk();
            char* p = m_base + m_used;
            const Ref ref = (Ref(m_chunk) << OffsetBits) | m_used;
            if (name.size() < 0x80) {
                *p++ = char(name.size());
                m_used += 1;
            } else {
                *p++ = char(0x80 | (name.size() & 0x7F));
                *p++ = char(name.size() >> 7);
                m_used += 2;
            }
            std::memcpy(p, name.data(), name.size());
            m_used += name.size();
            return ref;
        }

    private:
        void takeChunk()
        {
            std::lock_guard lock(m_arena.m_mutex);
            m_arena.m_chunks.emplace_back(new char[ChunkSize]);
            m_chunk = std::int64_t(m_arena.m_chunks.size()) - 1;
            m_base = m_arena.m_chunks.back().get();
            m_used = 0;
        }

        NameArena& m_arena;
        std::int64_t m_chunk = -1;
        char* m_base = nullptr;
        std::size_t m_used = 0;
    };

private:
    std::mutex m_mutex;
    std::vector<std::unique_ptr<char[]>> m_chunks;
};
