#include <VantraCore/Int128.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>
#include <support/Throws.h>

#include <iomanip>
#include <sstream>

using Tarvex::VantraCore::Internal::int128_t;
using Tarvex::VantraCore::Internal::uint128_t;

namespace {
__extension__ typedef unsigned __int128 U;
__extension__ typedef __int128 S;

template <typename T>
U native(T const &v) {
  return (U(v.upper()) << 64) | v.lower();
}
template <typename T>
T fromNative(U v) {
  return T(std::uint64_t(v >> 64), std::uint64_t(v));
}

// Halves from the edges as well as from the whole range, so that carries, borrows, sign changes and
// one-half values come up often.
rc::Gen<U> genNative() {
  auto half = rc::gen::weightedOneOf<std::uint64_t>(
      {{1, rc::gen::element<std::uint64_t>(0, 1, ~0ull, 1ull << 63, (1ull << 63) - 1)},
       {3, rc::gen::arbitrary<std::uint64_t>()}});
  return rc::gen::apply([](std::uint64_t upper, std::uint64_t lower) { return (U(upper) << 64) | lower; },
                        half, half);
}

template <typename T>
std::string streamed(T const &value, std::ios_base::fmtflags flags) {
  std::ostringstream os;
  os.flags(flags);
  os << value;
  return os.str();
}
}  // namespace

// Each class matches its native counterpart; both wrap exactly like the unsigned one.
RC_GTEST_PROP(Int128Property, ArithmeticOrderAndDivisionMatchNative, ()) {
  U const a = *genNative(), b = *genNative();
  auto const check = [&](auto x, auto y, auto na, auto nb) {
    using T = decltype(x);
    using N = decltype(na);
    RC_ASSERT(native(x + y) == a + b && native(x - y) == a - b && native(x * y) == a * b);
    RC_ASSERT(native(x & y) == (a & b) && native(x | y) == (a | b) && native(x ^ y) == (a ^ b));
    RC_ASSERT(native(~x) == U(~a) && native(-x) == U(-a));
    T z = x;
    RC_ASSERT(native(z += y) == a + b && native(z -= y) == a && native(z *= y) == a * b);
    RC_ASSERT(native(z++) == a * b && native(--z) == a * b);
    RC_ASSERT((x == y) == (na == nb) && (x != y) == (na != nb) && (x < y) == (na < nb));
    RC_ASSERT((x <= y) == (na <= nb) && (x > y) == (na > nb) && (x >= y) == (na >= nb));
    // The native type traps on the most negative value divided by -1; that case has its own test.
    if (nb == 0 || (na == N(U(1) << 127) && nb == N(-1))) return;
    RC_ASSERT(native(x / y) == U(na / nb) && native(x % y) == U(na % nb));
  };
  check(fromNative<uint128_t>(a), fromNative<uint128_t>(b), a, b);
  check(fromNative<int128_t>(a), fromNative<int128_t>(b), S(a), S(b));
}

// Counts near the half and whole widths come up often: off-by-one there loses or keeps a bit.
RC_GTEST_PROP(Int128Property, ShiftsAndBitsMatchNative, ()) {
  U const a = *genNative();
  unsigned const count = *rc::gen::weightedOneOf<unsigned>(
      {{1, rc::gen::element(0u, 1u, 63u, 64u, 65u, 127u, 128u)}, {2, rc::gen::inRange(0u, 200u)}});
  U const left = count < 128 ? a << count : 0;
  RC_ASSERT(native(fromNative<uint128_t>(a) << count) == left);
  RC_ASSERT(native(fromNative<uint128_t>(a) >> count) == (count < 128 ? a >> count : 0));
  RC_ASSERT(native(fromNative<int128_t>(a) << count) == left);
  S const sign = S(a) < 0 ? -1 : 0;
  RC_ASSERT(native(fromNative<int128_t>(a) >> count) == U(count < 128 ? S(a) >> count : sign));
  // A count beyond 64 bits is out of range whatever its low half says.
  RC_ASSERT(!(fromNative<uint128_t>(a) << uint128_t(1, count)));
  unsigned significant = 0;
  for (U rest = a; rest != 0; rest >>= 1)
    ++significant;
  RC_ASSERT(fromNative<uint128_t>(a).bits() == significant);
}

RC_GTEST_PROP(Int128Property, TextRoundTripsInEveryBase, ()) {
  U const a = *genNative();
  unsigned const base = *rc::gen::inRange(2u, 17u);
  std::uint32_t const width = *rc::gen::inRange(0u, 140u);
  std::string const text = fromNative<uint128_t>(a).str(static_cast<std::uint8_t>(base), width);
  // Padding zeros only: no digits beyond width but those the value needs.
  RC_ASSERT(text.size() >= width && (text.size() == width || text == "0" || text[0] != '0'));
  U parsed = 0;
  for (char c : text)
    parsed = parsed * base + (c <= '9' ? c - '0' : c - 'a' + 10);
  RC_ASSERT(parsed == a);
}

// Built-in values on the left of a shift go into the lower half as 64-bit values; a moved-from value
// is zero.
TEST(Int128, BuiltinOperandsConversionsAndMoves) {
  EXPECT_EQ(-8 >> uint128_t(1), uint128_t(0, ~0ull >> 1 & ~3ull));
  EXPECT_EQ(std::int64_t(-1) << uint128_t(64), uint128_t(~0ull, 0));
  EXPECT_EQ(true << uint128_t(100), uint128_t(1ull << 36, 0));
  uint128_t const high(1, 0x1234);
  EXPECT_EQ(static_cast<unsigned char>(high), 0x34);
  EXPECT_TRUE(!uint128_t() && (high && 1) && (uint128_t() || high) && !(uint128_t() || 0));
  EXPECT_TRUE(uint128_t(-1) == uint128_t(~0ull, ~0ull) && int128_t(-1) == -int128_t(1));
  uint128_t source(3, 4);
  uint128_t target(std::move(source));
  EXPECT_EQ(source, 0);
  source = std::move(target);
  EXPECT_TRUE(target == 0 && source == uint128_t(3, 4));
}

TEST(Int128, LimitsAndFailures) {
  int128_t const min = std::numeric_limits<int128_t>::min();
  EXPECT_EQ(min / -1, min);
  EXPECT_EQ(min % -1, 0);
  for (auto divide : {+[] { (void)(uint128_t(1) / 0); }, +[] { (void)(uint128_t(1) % 0); },
                      +[] { (void)(int128_t(1) / 0); }, +[] { (void)(int128_t(1) % 0); }})
    EXPECT_THAT(divide, throws<std::domain_error>("Error: division or modulus by 0"));
  // Signed text pads in front of the sign.
  EXPECT_EQ(int128_t(-5).str(10, 4), "00-5");
  EXPECT_EQ(min.str(10, 0), "-170141183460469231731687303715884105728");
  for (std::uint8_t base : {0, 1, 17})
    EXPECT_THAT([&] { uint128_t(5).str(base, 0); },
                throws<std::invalid_argument>("Base must be in the range [2, 16]"));
}

TEST(Int128, Streaming) {
  uint128_t const value = 255;
  EXPECT_EQ(streamed(value, std::ios_base::hex | std::ios_base::showbase | std::ios_base::uppercase), "ff");
  EXPECT_EQ(streamed(value, std::ios_base::oct | std::ios_base::hex), "377");
  EXPECT_EQ(streamed(value, std::ios_base::dec | std::ios_base::hex), "255");
  EXPECT_EQ(streamed(value, std::ios_base::fmtflags()), "");
  std::ostringstream padded;
  padded << std::setw(8) << std::setfill('*') << value << 1;
  EXPECT_EQ(padded.str(), "2551");
  // The signed form drops the upper half of the magnitude.
  EXPECT_EQ(streamed(int128_t(-1), std::ios_base::dec), "-1");
  EXPECT_EQ(streamed(int128_t(1, 0), std::ios_base::dec), "0");
  EXPECT_EQ(streamed(-int128_t(1, 255), std::ios_base::hex), "-ff");
}
