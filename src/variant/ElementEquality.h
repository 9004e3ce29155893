#pragma once

#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/WellKnownType.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace Tarvex::VantraCore::Internal {

// Element equality of two runs of one kind, the one rule of both holder comparisons: floating
// values (and both parts of std::complex) by ==, so NaN differs from itself and +0 equals -0;
// strings by length and bytes; everything else, bool and time included, by its stored bits.
template <class T>
bool elementsEqual(T const *a, T const *b, std::uint64_t count) {
  static_assert(isElementKind<T>, "an element kind");
  if (count == 0) return true;
  if constexpr (std::is_floating_point_v<T>) {
    for (std::uint64_t i = 0; i < count; ++i)
      if (!(a[i] == b[i])) return false;
    return true;
  } else if constexpr (std::is_same_v<T, std::complex<double>> || std::is_same_v<T, std::complex<float>>) {
    for (std::uint64_t i = 0; i < count; ++i)
      if (!(a[i].real() == b[i].real() && a[i].imag() == b[i].imag())) return false;
    return true;
  } else if constexpr (std::is_same_v<T, VxString>) {
    for (std::uint64_t i = 0; i < count; ++i)
      if (a[i] != b[i]) return false;
    return true;
  } else {
    return std::memcmp(a, b, count * sizeof(T)) == 0;
  }
}

// The same, selecting the element type by `type`; a code without one throws std::runtime_error
// "unknown type".
inline bool elementsEqual(WellKnownType type, void const *a, void const *b, std::uint64_t count) {
  return findElementKind(
      type,
      [&](auto tag) {
        using T = typename decltype(tag)::type;
        return elementsEqual(static_cast<T const *>(a), static_cast<T const *>(b), count);
      },
      []() -> bool { throwUnknownType(); });
}

}  // namespace Tarvex::VantraCore::Internal
