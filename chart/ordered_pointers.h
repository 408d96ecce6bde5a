// Pointers in the order in which they were added, of which any can be taken out, and found by its place, however many there are:
// each in a time that grows with the logarithm of their number. Owns nothing of what they point to. One thread at a time.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "platform/win32.h"

namespace orvik::detail {

class ORVIK_API OrderedPointers {
public:
    void Add(void* pointer);           // not null, and not one that is there
    bool Remove(const void* pointer);  // false, and nothing done, for one that is not there; it is not looked into
    void RemoveAll();
    INT_PTR GetSize() const { return static_cast<INT_PTR>(m_slots.size() - m_gaps); }
    // By its place; raises the invalid-argument exception where there is none.
    void* operator[](INT_PTR place) const;

private:
    void Prepare();

    std::vector<void*> m_slots;  // in order; null where one was taken out
    size_t m_gaps = 0;
    // Made when the first one is taken out, and again when half of the slots are gaps.
    std::unordered_map<const void*, size_t> m_slotOf;
    std::vector<size_t> m_counts;  // a binary indexed tree (Fenwick 1994), from 1, of the slots that are no gaps
};

}  // namespace orvik::detail
