// Element storage of the framework's growing arrays: growth, shrinking and moving of raw memory. Any thread; no state.
#pragma once

#include <type_traits>

class CString;

namespace orvik::detail {
// Types whose objects may be moved by moving their bytes, so that an array grows in place where the heap can.
template <class T>
inline constexpr bool kBytewiseMovable = std::is_trivially_copyable_v<T> || std::is_same_v<T, CString>;
}  // namespace orvik::detail
