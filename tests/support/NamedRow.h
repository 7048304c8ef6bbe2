#pragma once

#include <ostream>
#include <string>
#include <utility>

namespace zv::test {

/// What a failing test is told with: the name of its row.
template <class Row, class = decltype(std::string(std::declval<const Row&>().name))>
std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

}  // namespace zv::test
