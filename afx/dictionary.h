// The table behind the framework's maps: entries lie one after another in the order in which they came, and a small index finds
// them. One thread at a time. Positions (numbers of entries) stay valid while entries are removed; adding may move entries
// together.
//
// Up to eight entries are found by comparing their hashes one after another; from there on an index of 32-bit slots, open
// addressing, at most half full, leads to the entry. A removed entry stays as a gap until the table next grows, so removing never
// moves anything.
#pragma once

#include "afx/exception.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

namespace orvik::detail {
// A hash of bytes that outsiders cannot foresee: it is seeded once per process, so that no file can be made to collide.
ORVIK_API uint64_t HashSeed();

inline uint64_t MixHash(uint64_t a, uint64_t b) {
    a ^= b;
    a *= 0x9E3779B97F4A7C15u;
    return a ^ (a >> 32);
}

inline uint32_t HashBytes(const char* text, size_t length, uint64_t seed) {
    uint64_t hash = MixHash(seed, length);
    for (; length >= 8; length -= 8, text += 8) {
        uint64_t word;
        std::memcpy(&word, text, 8);
        hash = MixHash(hash, word);
    }
    if (length > 0) {
        uint64_t word = 0;
        if (length >= 4) {
            uint32_t head, tail;
            std::memcpy(&head, text, 4);
            std::memcpy(&tail, text + length - 4, 4);
            word = (static_cast<uint64_t>(head) << 32) | tail;
        } else {
            word = (static_cast<uint64_t>(static_cast<unsigned char>(text[0])) << 16) |
                   (static_cast<uint64_t>(static_cast<unsigned char>(text[length / 2])) << 8) |
                   static_cast<unsigned char>(text[length - 1]);
        }
        hash = MixHash(hash, word);
    }
    hash = MixHash(hash, hash >> 29);
    return static_cast<uint32_t>(hash >> 32);
}

// Traits: Probe (what a key is looked up by), Hash(probe), Equal(key, probe), Make(probe) giving a Key.
template <class Key, class Value, class Traits>
class Dictionary {
public:
    using Probe = typename Traits::Probe;
    struct Entry {
        uint32_t hash;
        uint32_t live;
        Key key;
        Value value;
    };
    static constexpr uint32_t kNone = 0xFFFFFFFF;

    Dictionary() = default;
    ~Dictionary() { Clear(); }
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    uint32_t Count() const { return m_live; }
    // The number behind the last entry.
    uint32_t End() const { return m_used; }
    Entry& At(uint32_t number) { return m_entries[number]; }
    const Entry& At(uint32_t number) const { return m_entries[number]; }

    // The first entry at or behind `number`, or kNone.
    uint32_t Next(uint32_t number) const {
        for (; number < m_used; ++number)
            if (m_entries[number].live != 0) return number;
        return kNone;
    }

    uint32_t Find(const Probe& probe) const {
        if (m_live == 0) return kNone;
        return FindHashed(probe, Traits::Hash(probe));
    }

    // The entry of that key, made with a value-initialised value if there is none.
    uint32_t FindOrAdd(const Probe& probe) {
        const uint32_t hash = Traits::Hash(probe);
        const uint32_t found = FindHashed(probe, hash);
        return found != kNone ? found : AddHashed(probe, hash);
    }

    // Removes an entry that is there.
    void Remove(uint32_t number) {
        Entry& entry = m_entries[number];
        if (m_slots != nullptr) {
            uint32_t slot = entry.hash & m_mask;
            while (m_slots[slot] != number + 1) slot = (slot + 1) & m_mask;
            m_slots[slot] = kGone;
        }
        entry.live = 0;
        std::destroy_at(&entry.key);
        std::destroy_at(&entry.value);
        --m_live;
        while (m_used > 0 && m_entries[m_used - 1].live == 0) --m_used;
    }

    void Clear() {
        for (uint32_t i = 0; i < m_used; ++i) {
            if (m_entries[i].live == 0) continue;
            std::destroy_at(&m_entries[i].key);
            std::destroy_at(&m_entries[i].value);
        }
        std::free(static_cast<void*>(m_entries));
        std::free(m_slots);
        m_entries = nullptr;
        m_slots = nullptr;
        m_used = m_live = m_room = m_mask = 0;
        m_slotsTaken = 0;
    }

private:
    static constexpr uint32_t kGone = 0xFFFFFFFF;  // slot of a removed entry
    static constexpr uint32_t kScanned = 8;        // so many entries need no index

    uint32_t FindHashed(const Probe& probe, uint32_t hash) const {
        if (m_slots == nullptr) {
            for (uint32_t i = 0; i < m_used; ++i)
                if (m_entries[i].hash == hash && m_entries[i].live != 0 && Traits::Equal(m_entries[i].key, probe)) return i;
            return kNone;
        }
        for (uint32_t slot = hash & m_mask;; slot = (slot + 1) & m_mask) {
            const uint32_t number = m_slots[slot];
            if (number == 0) return kNone;
            if (number == kGone) continue;
            const Entry& entry = m_entries[number - 1];
            if (entry.hash == hash && Traits::Equal(entry.key, probe)) return number - 1;
        }
    }

    uint32_t AddHashed(const Probe& probe, uint32_t hash) {
        Key key = Traits::Make(probe);  // before anything changes: it may fail, and the probe may lie in an entry that moves
        if (m_used == m_room) MakeRoom();
        if (m_slots != nullptr && m_slotsTaken >= (m_mask + 1) / 2) BuildIndex();
        Entry& entry = m_entries[m_used];
        new (static_cast<void*>(&entry.key)) Key(std::move(key));
        new (static_cast<void*>(&entry.value)) Value();
        entry.hash = hash;
        entry.live = 1;
        if (m_slots != nullptr) Enter(m_used);
        ++m_live;
        return m_used++;
    }

    void Enter(uint32_t number) {
        uint32_t slot = m_entries[number].hash & m_mask;
        while (m_slots[slot] != 0) slot = (slot + 1) & m_mask;
        m_slots[slot] = number + 1;
        ++m_slotsTaken;
    }

    // Room for one entry more: by closing gaps if there are many, else by growing.
    void MakeRoom() {
        const bool closeGaps = m_live < m_room - m_room / 4;
        if (!closeGaps && m_room >= 0x40000000) AfxThrowMemoryException();
        const uint32_t room = closeGaps ? m_room : m_room < 2 ? m_room + 1 : m_room * 2;
        auto* fresh = static_cast<Entry*>(std::malloc(room * sizeof(Entry)));
        if (fresh == nullptr) AfxThrowMemoryException();
        uint32_t used = 0;
        for (uint32_t i = 0; i < m_used; ++i) {
            Entry& from = m_entries[i];
            if (from.live == 0) continue;
            Entry& to = fresh[used++];
            to.hash = from.hash;
            to.live = 1;
            new (static_cast<void*>(&to.key)) Key(std::move(from.key));
            new (static_cast<void*>(&to.value)) Value(std::move(from.value));
            std::destroy_at(&from.key);
            std::destroy_at(&from.value);
        }
        const bool moved = used != m_used;
        std::free(static_cast<void*>(m_entries));
        m_entries = fresh;
        m_used = used;
        m_room = room;
        if (m_room > kScanned && (moved || m_slots == nullptr || m_room > (m_mask + 1) / 2)) BuildIndex();
    }

    // An index that is at most half full once every entry that there is room for has come.
    void BuildIndex() {
        const uint32_t size = std::bit_ceil(m_room * 2);
        if (m_slots == nullptr || size != m_mask + 1) {
            auto* index = static_cast<uint32_t*>(std::calloc(size, sizeof(uint32_t)));
            if (index == nullptr) AfxThrowMemoryException();
            std::free(m_slots);
            m_slots = index;
            m_mask = size - 1;
        } else {
            std::memset(m_slots, 0, size * sizeof(uint32_t));
        }
        m_slotsTaken = 0;
        for (uint32_t i = 0; i < m_used; ++i)
            if (m_entries[i].live != 0) Enter(i);
    }

    Entry* m_entries = nullptr;
    uint32_t* m_slots = nullptr;  // entry number + 1; 0 never used
    uint32_t m_used = 0;
    uint32_t m_live = 0;
    uint32_t m_room = 0;
    uint32_t m_mask = 0;
    uint32_t m_slotsTaken = 0;
};
}  // namespace orvik::detail
