#pragma once

#include <optional>

// The number parsers answer with nonstd::optional; in C++17 that is the standard optional.
namespace nonstd {
template <class T>
using optional = std::optional<T>;
using std::make_optional;
using std::nullopt;
using std::nullopt_t;
}  // namespace nonstd
