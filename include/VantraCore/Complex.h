#pragma once

#include <complex>
#include <cstdint>
#include <type_traits>

namespace Tarvex::VantraCore {

namespace Internal {
// The part types of the integer complex kinds; float and double use std::complex.
template <typename T>
struct IsComplexIntegerPart : std::false_type {};
template <>
struct IsComplexIntegerPart<signed char> : std::true_type {};
template <>
struct IsComplexIntegerPart<unsigned char> : std::true_type {};
template <>
struct IsComplexIntegerPart<short> : std::true_type {};
template <>
struct IsComplexIntegerPart<unsigned short> : std::true_type {};
template <>
struct IsComplexIntegerPart<int> : std::true_type {};
template <>
struct IsComplexIntegerPart<unsigned int> : std::true_type {};
template <>
struct IsComplexIntegerPart<std::int64_t> : std::true_type {};
template <>
struct IsComplexIntegerPart<std::uint64_t> : std::true_type {};
template <>
struct IsComplexIntegerPart<bool> : std::true_type {};
}  // namespace Internal

// The second parameter restricts the template to the part types above; it is always void.
template <typename T, typename = void>
class Complex;

// Real and imaginary part, nothing else: arrays of them are zero-filled and copied as raw memory.
template <typename T>
class Complex<T, std::enable_if_t<Internal::IsComplexIntegerPart<T>::value>> {
 public:
  constexpr Complex() noexcept : re(), im() {}
  constexpr Complex(T re, T im) noexcept : re(re), im(im) {}

  friend constexpr bool operator==(Complex const &lhs, Complex const &rhs) noexcept {
    return lhs.re == rhs.re && lhs.im == rhs.im;
  }
  friend constexpr bool operator!=(Complex const &lhs, Complex const &rhs) noexcept { return !(lhs == rhs); }

  T re;
  T im;
};

namespace Internal {
// The type of one part of an element: a complex kind's part type, any other type itself.
template <class T>
struct PartOf {
  using type = T;
};
template <class F>
struct PartOf<std::complex<F>> {
  using type = F;
};
template <class T>
struct PartOf<Complex<T>> {
  using type = T;
};
}  // namespace Internal

static_assert(sizeof(Complex<bool>) == 2 && sizeof(Complex<signed char>) == 2 &&
                  sizeof(Complex<unsigned char>) == 2,
              "complex elements are two parts wide");
static_assert(sizeof(Complex<short>) == 4 && sizeof(Complex<unsigned short>) == 4, "two parts wide");
static_assert(sizeof(Complex<int>) == 8 && sizeof(Complex<unsigned int>) == 8, "two parts wide");
static_assert(sizeof(Complex<std::int64_t>) == 16 && sizeof(Complex<std::uint64_t>) == 16, "two parts wide");
static_assert(sizeof(std::complex<float>) == 8 && sizeof(std::complex<double>) == 16, "two parts wide");
static_assert(std::is_trivially_copyable<Complex<std::int64_t>>::value &&
                  std::is_trivially_copyable<Complex<bool>>::value,
              "complex elements are copied as raw memory");

}  // namespace Tarvex::VantraCore
