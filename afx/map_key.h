// A key as the string maps hold it: up to 15 bytes lie in the entry itself, since the names of properties mostly fit; longer ones
// have a block of their own. Ends in a byte 0. One thread at a time; moving leaves an empty key behind.
#pragma once

#include "afx/exception.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace orvik::detail {

class MapKey {
public:
    explicit MapKey(std::string_view text) {
        if (text.size() <= kInside) {
            SetInside(text);
            return;
        }
        if (text.size() > UINT32_MAX) AfxThrowMemoryException();
        auto* block = static_cast<char*>(std::malloc(text.size() + 1));
        if (block == nullptr) AfxThrowMemoryException();
        std::memcpy(block, text.data(), text.size());
        block[text.size()] = 0;
        const auto length = static_cast<uint32_t>(text.size());
        std::memcpy(m_bytes, &block, sizeof block);
        std::memcpy(m_bytes + sizeof block, &length, sizeof length);
        m_bytes[kInside] = kOutside;
    }
    MapKey(MapKey&& other) noexcept {
        std::memcpy(m_bytes, other.m_bytes, sizeof m_bytes);
        other.SetInside({});
    }
    MapKey& operator=(MapKey&&) = delete;
    ~MapKey() {
        if (IsOutside()) std::free(Block());
    }

    std::string_view GetView() const {
        if (!IsOutside()) return {m_bytes, kInside - static_cast<size_t>(m_bytes[kInside])};
        uint32_t length;
        std::memcpy(&length, m_bytes + sizeof(char*), sizeof length);
        return {Block(), length};
    }

private:
    // The last byte counts the room left, so that it is the final 0 of a text of 15 bytes.
    static constexpr size_t kInside = 15;
    static constexpr char kOutside = 0x7F;

    bool IsOutside() const { return m_bytes[kInside] == kOutside; }
    char* Block() const {
        char* block;
        std::memcpy(&block, m_bytes, sizeof block);
        return block;
    }
    void SetInside(std::string_view text) {
        std::memset(m_bytes, 0, kInside);
        if (!text.empty()) std::memcpy(m_bytes, text.data(), text.size());
        m_bytes[kInside] = static_cast<char>(kInside - text.size());
    }

    alignas(8) char m_bytes[kInside + 1];
};

}  // namespace orvik::detail
