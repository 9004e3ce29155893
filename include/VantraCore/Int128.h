#pragma once

#include <cstdint>
#include <iosfwd>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include <VantraCore/Export.h>

namespace Tarvex::VantraCore::Internal {

class uint128_t;
class int128_t;

// Built-in integers that widen into the 128-bit classes; bool counts as one.
template <typename T>
using EnableIfBuiltinInteger = std::enable_if_t<std::is_integral<T>::value, int>;
template <typename T>
using EnableIfNarrowing = std::enable_if_t<std::is_integral<T>::value && !std::is_same<T, bool>::value, int>;

[[noreturn]] inline void throwDivisionByZero() {
  throw std::domain_error("Error: division or modulus by 0");
}

// The two 64-bit halves, upper first, and every operation that does not depend on reading them as
// signed or unsigned. The compiler's native type does the arithmetic: it wraps as the halves do.
template <typename Derived>
class VANTRACORE_API Int128Halves {
 public:
  constexpr Int128Halves() noexcept : m_upper(0), m_lower(0) {}
  constexpr Int128Halves(std::uint64_t upper, std::uint64_t lower) noexcept
      : m_upper(upper), m_lower(lower) {}
  // Signed sources fill the upper half with their sign.
  template <typename T, EnableIfBuiltinInteger<T> = 0>
  constexpr Int128Halves(T value) noexcept
      : m_upper(isNegative(value) ? ~std::uint64_t(0) : 0), m_lower(static_cast<std::uint64_t>(value)) {}

  constexpr std::uint64_t const &upper() const noexcept { return m_upper; }
  constexpr std::uint64_t const &lower() const noexcept { return m_lower; }

  constexpr explicit operator bool() const noexcept { return (m_upper | m_lower) != 0; }
  // The low bits of the lower half, as a cast from the native type would give them.
  template <typename T, EnableIfNarrowing<T> = 0>
  constexpr explicit operator T() const noexcept {
    return static_cast<T>(m_lower);
  }
  constexpr bool operator!() const noexcept { return !static_cast<bool>(*this); }

  constexpr Derived operator~() const noexcept { return Derived(~m_upper, ~m_lower); }
  friend constexpr Derived operator&(Derived const &lhs, Derived const &rhs) noexcept {
    return Derived(lhs.m_upper & rhs.m_upper, lhs.m_lower & rhs.m_lower);
  }
  friend constexpr Derived operator|(Derived const &lhs, Derived const &rhs) noexcept {
    return Derived(lhs.m_upper | rhs.m_upper, lhs.m_lower | rhs.m_lower);
  }
  friend constexpr Derived operator^(Derived const &lhs, Derived const &rhs) noexcept {
    return Derived(lhs.m_upper ^ rhs.m_upper, lhs.m_lower ^ rhs.m_lower);
  }
  // Counts of 128 and more shift every bit out.
  constexpr Derived operator<<(Int128Halves<uint128_t> const &count) const noexcept {
    return shiftOutOfRange(count) ? Derived() : fromNative(native() << count.lower());
  }

  friend constexpr bool operator==(Derived const &lhs, Derived const &rhs) noexcept {
    return lhs.m_upper == rhs.m_upper && lhs.m_lower == rhs.m_lower;
  }
  friend constexpr bool operator!=(Derived const &lhs, Derived const &rhs) noexcept { return !(lhs == rhs); }
  // From the derived class's operator<.
  friend constexpr bool operator>(Derived const &lhs, Derived const &rhs) noexcept { return rhs < lhs; }
  friend constexpr bool operator<=(Derived const &lhs, Derived const &rhs) noexcept { return !(rhs < lhs); }
  friend constexpr bool operator>=(Derived const &lhs, Derived const &rhs) noexcept { return !(lhs < rhs); }

  friend constexpr Derived operator+(Derived const &lhs, Derived const &rhs) noexcept {
    return fromNative(lhs.native() + rhs.native());
  }
  friend constexpr Derived operator-(Derived const &lhs, Derived const &rhs) noexcept {
    return fromNative(lhs.native() - rhs.native());
  }
  friend constexpr Derived operator*(Derived const &lhs, Derived const &rhs) noexcept {
    return fromNative(lhs.native() * rhs.native());
  }
  constexpr Derived operator+() const noexcept { return self(); }
  // Two's complement.
  constexpr Derived operator-() const noexcept { return fromNative(-native()); }

  constexpr Derived &operator++() noexcept { return self() = self() + 1; }
  constexpr Derived &operator--() noexcept { return self() = self() - 1; }
  constexpr Derived operator++(int) noexcept {
    Derived before(self());
    ++self();
    return before;
  }
  constexpr Derived operator--(int) noexcept {
    Derived before(self());
    --self();
    return before;
  }
  constexpr Derived &operator+=(Derived const &rhs) noexcept { return self() = self() + rhs; }
  constexpr Derived &operator-=(Derived const &rhs) noexcept { return self() = self() - rhs; }
  constexpr Derived &operator*=(Derived const &rhs) noexcept { return self() = self() * rhs; }
  constexpr Derived &operator/=(Derived const &rhs) { return self() = self() / rhs; }
  constexpr Derived &operator%=(Derived const &rhs) { return self() = self() % rhs; }
  constexpr Derived &operator&=(Derived const &rhs) noexcept { return self() = self() & rhs; }
  constexpr Derived &operator|=(Derived const &rhs) noexcept { return self() = self() | rhs; }
  constexpr Derived &operator^=(Derived const &rhs) noexcept { return self() = self() ^ rhs; }
  constexpr Derived &operator<<=(Int128Halves<uint128_t> const &count) noexcept {
    return self() = self() << count;
  }
  constexpr Derived &operator>>=(Int128Halves<uint128_t> const &count) noexcept {
    return self() = self() >> count;
  }

 protected:
  __extension__ typedef unsigned __int128 Native;

  template <typename T>
  static constexpr bool isNegative(T value) noexcept {
    if constexpr (std::is_signed<T>::value) return value < 0;
    return false;
  }
  static constexpr bool shiftOutOfRange(Int128Halves<uint128_t> const &count) noexcept {
    return count.upper() != 0 || count.lower() >= 128;
  }
  static constexpr Native join(std::uint64_t upper, std::uint64_t lower) noexcept {
    return (static_cast<Native>(upper) << 64) | lower;
  }
  constexpr Native native() const noexcept { return join(m_upper, m_lower); }
  static constexpr Derived fromNative(Native value) noexcept {
    return Derived(static_cast<std::uint64_t>(value >> 64), static_cast<std::uint64_t>(value));
  }
  constexpr Derived &self() noexcept { return static_cast<Derived &>(*this); }
  constexpr Derived const &self() const noexcept { return static_cast<Derived const &>(*this); }

  std::uint64_t m_upper;
  std::uint64_t m_lower;
};

// Unsigned 128-bit integer. Every operation wraps modulo 2^128 and none reports overflow.
class VANTRACORE_API uint128_t : public Int128Halves<uint128_t> {
 public:
  using Int128Halves::Int128Halves;
  constexpr uint128_t() noexcept = default;
  // Reinterprets the two's complement halves.
  constexpr explicit uint128_t(int128_t const &value) noexcept;

  constexpr uint128_t(uint128_t const &) noexcept = default;
  constexpr uint128_t &operator=(uint128_t const &) noexcept = default;
  // A moved-from value reads 0.
  constexpr uint128_t(uint128_t &&other) noexcept : Int128Halves(other.m_upper, other.m_lower) {
    if (this != &other) other.m_upper = other.m_lower = 0;
  }
  constexpr uint128_t &operator=(uint128_t &&other) noexcept {
    if (this != &other) {
      m_upper = other.m_upper;
      m_lower = other.m_lower;
      other.m_upper = other.m_lower = 0;
    }
    return *this;
  }

  // Number of significant bits: 0 for 0, up to 128.
  constexpr std::uint8_t bits() const noexcept {
    if (m_upper != 0) return static_cast<std::uint8_t>(128 - __builtin_clzll(m_upper));
    if (m_lower != 0) return static_cast<std::uint8_t>(64 - __builtin_clzll(m_lower));
    return 0;
  }

  // Digits in `base` (2 to 16, lower case), zero-padded on the left to `width`.
  std::string str(std::uint8_t base = 10, std::uint32_t const &width = 0) const;

  // On the truth values. The overloads for built-in operands are exact matches, which the built-in
  // && and || would otherwise contest.
  constexpr bool operator&&(uint128_t const &rhs) const noexcept {
    return static_cast<bool>(*this) && static_cast<bool>(rhs);
  }
  constexpr bool operator||(uint128_t const &rhs) const noexcept {
    return static_cast<bool>(*this) || static_cast<bool>(rhs);
  }
  template <typename T, EnableIfBuiltinInteger<T> = 0>
  constexpr bool operator&&(T rhs) const noexcept {
    return *this && uint128_t(rhs);
  }
  template <typename T, EnableIfBuiltinInteger<T> = 0>
  constexpr bool operator||(T rhs) const noexcept {
    return *this || uint128_t(rhs);
  }

  constexpr uint128_t operator>>(Int128Halves const &count) const noexcept {
    return shiftOutOfRange(count) ? uint128_t() : fromNative(native() >> count.lower());
  }

  friend constexpr bool operator<(uint128_t const &lhs, uint128_t const &rhs) noexcept {
    return lhs.m_upper != rhs.m_upper ? lhs.m_upper < rhs.m_upper : lhs.m_lower < rhs.m_lower;
  }
  friend uint128_t operator/(uint128_t const &lhs, uint128_t const &rhs) {
    return lhs.divmod(lhs, rhs).first;
  }
  friend uint128_t operator%(uint128_t const &lhs, uint128_t const &rhs) {
    return lhs.divmod(lhs, rhs).second;
  }

 private:
  friend class int128_t;

  // Quotient and remainder of lhs by rhs; the object itself plays no part. Inline, so that a caller
  // of / or % pays for one native division and not for the result it drops.
  std::pair<uint128_t, uint128_t> divmod(uint128_t const &lhs, uint128_t const &rhs) const {
    if (!rhs) throwDivisionByZero();
    if (rhs == 1) return {lhs, uint128_t()};
    if (lhs == rhs) return {uint128_t(1), uint128_t()};
    if (lhs < rhs) return {uint128_t(), lhs};
    Native const dividend = lhs.native(), divisor = rhs.native(), quotient = dividend / divisor;
    return {fromNative(quotient), fromNative(dividend - quotient * divisor)};
  }
};

// Signed 128-bit integer: the same two halves read as two's complement. Trivially copyable, since
// durations and timestamps store it in bulk. Division truncates toward zero; nothing overflows,
// everything wraps (the most negative value divided by -1 gives itself).
class int128_t : public Int128Halves<int128_t> {
 public:
  using Int128Halves::Int128Halves;
  constexpr int128_t() noexcept = default;
  constexpr explicit int128_t(uint128_t const &value) noexcept : Int128Halves(value.upper(), value.lower()) {}

  constexpr bool isNegative() const noexcept { return (m_upper >> 63) != 0; }
  // Absolute value as unsigned; the most negative value keeps its bits (2^127).
  constexpr uint128_t magnitude() const noexcept {
    uint128_t const bits(*this);
    return isNegative() ? -bits : bits;
  }

  // Digits of the magnitude, then "-" for a negative value, then the padding: -5 at width 4 is "00-5".
  std::string str(std::uint8_t base = 10, std::uint32_t const &width = 0) const {
    std::string text = magnitude().str(base, 0);
    if (isNegative()) text.insert(0, 1, '-');
    if (text.size() < width) text.insert(0, width - text.size(), '0');
    return text;
  }

  // Arithmetic: the sign fills in from the left, also for counts of 128 and more.
  constexpr int128_t operator>>(Int128Halves<uint128_t> const &count) const noexcept {
    if (!isNegative()) return int128_t(uint128_t(*this) >> count);
    return ~int128_t(~uint128_t(*this) >> count);
  }

  // Flipping the sign bit maps the signed order onto the unsigned one.
  friend constexpr bool operator<(int128_t const &lhs, int128_t const &rhs) noexcept {
    std::uint64_t const sign = std::uint64_t(1) << 63;
    return uint128_t(lhs.m_upper ^ sign, lhs.m_lower) < uint128_t(rhs.m_upper ^ sign, rhs.m_lower);
  }
  friend constexpr int128_t operator/(int128_t const &lhs, int128_t const &rhs) {
    return lhs.divmod(rhs).first;
  }
  friend constexpr int128_t operator%(int128_t const &lhs, int128_t const &rhs) {
    return lhs.divmod(rhs).second;
  }

 private:
  // Works on the magnitudes: the quotient takes the sign when exactly one operand is negative, the
  // remainder takes the sign of the dividend.
  constexpr std::pair<int128_t, int128_t> divmod(int128_t const &rhs) const {
    if (!rhs) throwDivisionByZero();
    uint128_t const lhsMagnitude = magnitude(), rhsMagnitude = rhs.magnitude();
    Native const dividend = join(lhsMagnitude.upper(), lhsMagnitude.lower());
    Native const divisor = join(rhsMagnitude.upper(), rhsMagnitude.lower());
    Native const magnitudeQuotient = dividend / divisor;
    int128_t const quotient = fromNative(magnitudeQuotient);
    int128_t const remainder = fromNative(dividend - magnitudeQuotient * divisor);
    return {isNegative() != rhs.isNegative() ? -quotient : quotient, isNegative() ? -remainder : remainder};
  }
};

constexpr uint128_t::uint128_t(int128_t const &value) noexcept : Int128Halves(value.upper(), value.lower()) {}

static_assert(sizeof(uint128_t) == 16 && sizeof(int128_t) == 16, "two 64-bit halves, nothing else");
static_assert(std::is_trivially_copyable<int128_t>::value, "durations are copied as raw memory");

VANTRACORE_API extern uint128_t const uint128_0;
VANTRACORE_API extern uint128_t const uint128_1;

// A built-in value shifted by a 128-bit count. The value is first converted to 64 bits and placed in
// the lower half, so a negative value carries sign bits in the lower half only.
VANTRACORE_API uint128_t operator<<(signed char lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator<<(unsigned char lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator<<(short lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator<<(unsigned short lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator<<(int lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator<<(unsigned int lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator<<(std::int64_t lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator<<(std::uint64_t lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator<<(bool lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator>>(signed char lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator>>(unsigned char lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator>>(short lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator>>(unsigned short lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator>>(int lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator>>(unsigned int lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator>>(std::int64_t lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator>>(std::uint64_t lhs, uint128_t const &count);
VANTRACORE_API uint128_t operator>>(bool lhs, uint128_t const &count);

// Writes the digits in base 8, 10 or 16, tested in that order among the stream's flags, and nothing
// when none of them is set. Width (reset to 0), fill and showbase are not applied. A negative int128_t writes
// "-" and then only the low 64 bits of its magnitude: use str() for all digits.
VANTRACORE_API std::ostream &operator<<(std::ostream &os, uint128_t const &value);
VANTRACORE_API std::ostream &operator<<(std::ostream &os, int128_t const &value);

// Shared part of the numeric_limits of both classes.
template <typename T, bool Signed>
struct Int128LimitsBase {
  static constexpr bool is_specialized = true;
  static constexpr bool is_signed = Signed;
  static constexpr bool is_integer = true;
  static constexpr bool is_exact = true;
  static constexpr bool has_infinity = false;
  static constexpr bool has_quiet_NaN = false;
  static constexpr bool has_signaling_NaN = false;
  static constexpr bool has_denorm_loss = false;
  static constexpr bool is_iec559 = false;
  static constexpr bool is_bounded = true;
  static constexpr bool is_modulo = true;
  static constexpr int digits = Signed ? 127 : 128;
  static constexpr int digits10 = 38;
  static constexpr int max_digits10 = 0;
  static constexpr int radix = 2;
  static constexpr int min_exponent = 0;
  static constexpr int min_exponent10 = 0;
  static constexpr int max_exponent = 0;
  static constexpr int max_exponent10 = 0;
  static constexpr bool traps = false;
  static constexpr bool tinyness_before = false;
  static constexpr std::float_denorm_style has_denorm = std::denorm_absent;
  static constexpr std::float_round_style round_style = std::round_toward_zero;
  static constexpr T epsilon() noexcept { return T(); }
  static constexpr T round_error() noexcept { return T(); }
  static constexpr T infinity() noexcept { return T(); }
  static constexpr T quiet_NaN() noexcept { return T(); }
  static constexpr T signaling_NaN() noexcept { return T(); }
  static constexpr T denorm_min() noexcept { return T(); }
};
}  // namespace Tarvex::VantraCore::Internal

// Lets the standard templates (std::chrono among them) see both classes as integers.
namespace std {

template <>
struct numeric_limits<Tarvex::VantraCore::Internal::uint128_t>
    : Tarvex::VantraCore::Internal::Int128LimitsBase<Tarvex::VantraCore::Internal::uint128_t, false> {
  using T = Tarvex::VantraCore::Internal::uint128_t;
  static constexpr T min() noexcept { return T(); }
  static constexpr T lowest() noexcept { return T(); }
  static constexpr T max() noexcept { return T(~std::uint64_t(0), ~std::uint64_t(0)); }
};

template <>
struct numeric_limits<Tarvex::VantraCore::Internal::int128_t>
    : Tarvex::VantraCore::Internal::Int128LimitsBase<Tarvex::VantraCore::Internal::int128_t, true> {
  using T = Tarvex::VantraCore::Internal::int128_t;
  static constexpr T min() noexcept { return T(std::uint64_t(1) << 63, 0); }
  static constexpr T lowest() noexcept { return min(); }
  static constexpr T max() noexcept { return T(~std::uint64_t(0) >> 1, ~std::uint64_t(0)); }
};
}  // namespace std
