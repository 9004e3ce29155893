#pragma once

#include <formatting/JsonDocument.h>

#include <simdjson.h>

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The common shape of a measurement's number, read without the general number parser: -?d.ddd with
// at most 7 digits before the point, at most 19 in all and no exponent. SSE2 finds the digits of 32
// bytes at once and sums sixteen digit lanes in three steps, so no step depends on a digit count. Up
// to 2^53 the value then takes one exact division: both operands are exact doubles, so the quotient
// is correctly rounded. Anything else is left to the general parser.
namespace Tarvex::VantraCore::Internal {

// White space or punctuation: what may follow a number or literal.
inline bool endsScalar(std::uint8_t c) {
  switch (c) {
    case ' ':
    case '\t':
    case '\n':
    case '\r':
    case ',':
    case ':':
    case ']':
    case '}':
    case '[':
    case '{':
      return true;
    default:
      return false;
  }
}

#if defined(__SSE2__)
namespace quickNumber {

inline constexpr std::uint64_t scales[] = {1,
                                           10,
                                           100,
                                           1000,
                                           10000,
                                           100000,
                                           1000000,
                                           10000000,
                                           100000000,
                                           1000000000,
                                           10000000000,
                                           100000000000,
                                           1000000000000,
                                           10000000000000,
                                           100000000000000,
                                           1000000000000000,
                                           10000000000000000,
                                           100000000000000000,
                                           1000000000000000000};
inline constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                         1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};
// Sixteen bytes loaded from &lastLanes[n] keep the last n lanes of a register.
alignas(16) inline constexpr std::uint8_t lastLanes[32] = {0,    0,    0,    0,    0,    0,    0,    0,
                                                          0,    0,    0,    0,    0,    0,    0,    0,
                                                          0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                                          0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

inline __m128i load16(std::uint8_t const *p) { return _mm_loadu_si128(reinterpret_cast<__m128i const *>(p)); }

// Which of the 16 bytes at p are digits, a bit each.
inline unsigned digitBits(std::uint8_t const *p) {
  __m128i const values = _mm_sub_epi8(load16(p), _mm_set1_epi8('0'));
  __m128i const isDigit = _mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values);
  return static_cast<unsigned>(_mm_movemask_epi8(isDigit));
}

// The values of the `count` (0 to 16) digits that end at `end`, in the last lanes, the rest zero.
inline __m128i lastDigits(std::uint8_t const *end, unsigned count) {
  return _mm_and_si128(_mm_sub_epi8(load16(end - 16), _mm_set1_epi8('0')), load16(lastLanes + count));
}

// The number that sixteen digit values make, the first the most significant.
inline std::uint64_t valueOfSixteen(__m128i digits) {
  __m128i const zero = _mm_setzero_si128();
  __m128i const tens = _mm_set1_epi32(0x0001000A);  // lanes of 10, 1
  __m128i const pairs = _mm_packs_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(digits, zero), tens),
                                        _mm_madd_epi16(_mm_unpackhi_epi8(digits, zero), tens));
  __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00010064));  // 100, 1
  fours = _mm_packs_epi32(fours, fours);
  __m128i const eights = _mm_madd_epi16(fours, _mm_set1_epi32(0x00012710));  // 10000, 1
  auto const both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
  return (both & 0xFFFFFFFF) * 100000000 + (both >> 32);
}

}  // namespace quickNumber

// Bytes before a number that quickNumberWord reads: the digits are loaded to end where they do.
inline constexpr std::size_t quickNumberLookBehind = 16;

// The tape word of the number at p when it has the common shape. Reads the 32 bytes from p and
// quickNumberLookBehind before it. Signs are random in measured data, so nothing here branches on one.
inline bool quickNumberWord(std::uint8_t const *p, std::uint64_t &word) {
  using namespace quickNumber;
  std::uint64_t const negative = *p == '-';
  p += negative;
  unsigned const digits = digitBits(p) | digitBits(p + 16) << 16;
  unsigned const whole = static_cast<unsigned>(__builtin_ctz(~digits | 0x80000000u));
  // No digits, too many, or a leading zero before more (the general parser words the refusal).
  if (whole == 0 || whole > 7 || p[whole] != '.' || (whole > 1 && *p == '0')) return false;
  unsigned const fraction = static_cast<unsigned>(__builtin_ctz(~digits >> (whole + 1) | 0x80000000u));
  unsigned const end = whole + 1 + fraction;
  // At most 19 digits: the mantissa cannot wrap.
  if (fraction == 0 || whole + fraction > 19 || !endsScalar(p[end])) return false;
  std::uint64_t fractionValue = valueOfSixteen(lastDigits(p + end, fraction < 16 ? fraction : 16));
  // The shortest text of a double may take 17 significant digits, and 18 after "0.0".
  if (fraction > 16) fractionValue += valueOfSixteen(lastDigits(p + end - 16, fraction - 16)) * scales[16];
  std::uint64_t const wholeValue =
      whole == 1 ? std::uint64_t(*p - '0') : valueOfSixteen(lastDigits(p + whole, whole));
  std::uint64_t const mantissa = wholeValue * scales[fraction] + fractionValue;
  if (mantissa <= (std::uint64_t(1) << 53)) {
    word = JsonTape::doubleWord(static_cast<double>(mantissa) / powersOfTen[fraction]) | negative << 63;
    return true;
  }
  // Beyond 2^53 the division would round twice; the 128-bit product of the general parser is exact,
  // and says when it cannot decide.
  double value;
  auto const power = -static_cast<std::int64_t>(fraction);
  if (!simdjson::builtin::numberparsing::compute_float_64(power, mantissa, negative != 0, value)) return false;
  word = JsonTape::doubleWord(value);
  return true;
}
#else
inline constexpr std::size_t quickNumberLookBehind = 0;
inline bool quickNumberWord(std::uint8_t const *, std::uint64_t &) { return false; }
#endif

}  // namespace Tarvex::VantraCore::Internal
