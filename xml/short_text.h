// A text under construction that stays on the stack while it is short, for the many small texts that live for one call.
// One thread; not copied.
#pragma once

#include <cstring>
#include <memory>
#include <string_view>

namespace orvik::detail {
class ShortText {
public:
    ShortText() = default;
    ShortText(const ShortText&) = delete;
    ShortText& operator=(const ShortText&) = delete;

    ShortText& operator<<(std::string_view text) {
        std::memcpy(Extend(text.size()), text.data(), text.size());
        return *this;
    }
    ShortText& operator<<(char ch) {
        *Extend(1) = ch;
        return *this;
    }
    ShortText& Fill(size_t count, char ch) {
        std::memset(Extend(count), ch, count);
        return *this;
    }
    void Clear() { m_size = 0; }
    std::string_view View() const { return {m_text, m_size}; }

private:
    char* Extend(size_t count) {
        if (count > m_capacity - m_size) Grow(count);
        char* const at = m_text + m_size;
        m_size += count;
        return at;
    }
    void Grow(size_t count) {
        const size_t capacity = (m_size + count) * 2;
        std::unique_ptr<char[]> larger(new char[capacity]);
        std::memcpy(larger.get(), m_text, m_size);
        m_heap = std::move(larger);
        m_text = m_heap.get();
        m_capacity = capacity;
    }

    char m_place[256];
    std::unique_ptr<char[]> m_heap;
    char* m_text = m_place;
    size_t m_size = 0;
    size_t m_capacity = sizeof m_place;
};
}  // namespace orvik::detail
