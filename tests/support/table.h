// The rows of a long table, for a loop over them: for (const auto& [text, value] : Table(Row{"one", 1}, Row{"two", 2}, ...)).
#pragma once

#include <array>
#include <type_traits>

template <class Row, class... Rows>
std::array<Row, 1 + sizeof...(Rows)> Table(const Row& first, const Rows&... more) {
    static_assert((std::is_same_v<Row, Rows> && ...), "rows of one kind");
    return {first, more...};
}
