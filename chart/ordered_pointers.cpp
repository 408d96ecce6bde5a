#include "chart/ordered_pointers.h"

#include <algorithm>
#include <bit>

#include "afx/exception.h"

namespace orvik::detail {

void OrderedPointers::Add(void* pointer) {
    m_slots.push_back(pointer);
    if (m_counts.empty()) return;
    m_slotOf[pointer] = m_slots.size() - 1;
    // What the new node stands for: its own slot, and those that the nodes below it have.
    const size_t node = m_slots.size();
    size_t count = 1;
    for (size_t below = node - 1, end = node & (node - 1); below > end; below &= below - 1) count += m_counts[below];
    m_counts.push_back(count);
}

bool OrderedPointers::Remove(const void* pointer) {
    if (m_counts.empty()) Prepare();
    const auto found = m_slotOf.find(pointer);
    if (found == m_slotOf.end()) return false;
    const size_t slot = found->second;
    m_slotOf.erase(found);
    m_slots[slot] = nullptr;
    ++m_gaps;
    for (size_t node = slot + 1; node < m_counts.size(); node += node & (~node + 1)) --m_counts[node];
    if (2 * m_gaps > m_slots.size()) {
        std::erase(m_slots, nullptr);
        m_gaps = 0;
        m_counts.clear();
    }
    return true;
}

void OrderedPointers::RemoveAll() { *this = OrderedPointers(); }

void* OrderedPointers::operator[](INT_PTR place) const {
    if (place < 0 || place >= GetSize()) AfxThrowInvalidArgException();
    auto left = static_cast<size_t>(place);
    if (m_gaps == 0) return m_slots[left];
    size_t node = 0;  // all up to it are ahead of the place
    for (size_t step = std::bit_floor(m_slots.size()); step > 0; step /= 2) {
        if (node + step >= m_counts.size() || m_counts[node + step] > left) continue;
        node += step;
        left -= m_counts[node];
    }
    return m_slots[node];
}

void OrderedPointers::Prepare() {
    m_slotOf.clear();
    m_slotOf.reserve(m_slots.size());
    m_counts.assign(m_slots.size() + 1, 0);
    for (size_t slot = 0; slot < m_slots.size(); ++slot) {
        m_slotOf[m_slots[slot]] = slot;
        const size_t node = slot + 1, above = node + (node & (~node + 1));
        ++m_counts[node];
        if (above < m_counts.size()) m_counts[above] += m_counts[node];
    }
}

}  // namespace orvik::detail
