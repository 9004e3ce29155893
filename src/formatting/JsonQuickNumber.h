#pragma once

#include <formatting/JsonDocument.h>

#include <cstdint>
#include <cstring>

// The common shape of a measurement's number, read without the general number parser: -?d.ddd with
// at most 7 digits before the point, 1 to 16 after it, at most 19 in all and no exponent. The digits
// are found and converted eight at a time, without a branch per digit, and the value then takes one
// exact division: both operands are exact doubles, so the quotient is correctly rounded. Anything else
// is left to the general parser.
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

namespace quickNumber {

inline constexpr std::uint64_t zeros = 0x3030303030303030;

// The eight bytes at p less '0' each, and how many of them, from the first, are digits.
inline unsigned leadingDigits(std::uint8_t const *p, std::uint64_t &digits) {
  std::uint64_t chunk;
  std::memcpy(&chunk, p, sizeof chunk);
  digits = chunk - zeros;
  std::uint64_t const notDigit = (digits | (digits + 0x7676767676767676)) & 0x8080808080808080;
  return notDigit == 0 ? 8 : static_cast<unsigned>(__builtin_ctzll(notDigit)) / 8;
}

// The value of the first `count` (1 to 8) of eight digit values.
inline std::uint64_t valueOf(std::uint64_t digits, unsigned count) {
  digits <<= 8 * (8 - count);  // the digits to the top, zeros in front
  digits = digits * 10 + (digits >> 8);
  return (((digits & 0x000000FF000000FF) * (100 + (1000000ULL << 32))) +
          (((digits >> 16) & 0x000000FF000000FF) * (1 + (10000ULL << 32)))) >>
         32;
}

inline constexpr double powersOfTen[] = {1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7, 1e8,
                                         1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};

}  // namespace quickNumber

// The tape word of the number at p when it has the common shape; reads up to 26 bytes from p.
inline bool quickNumberWord(std::uint8_t const *p, std::uint64_t &word) {
  using namespace quickNumber;
  bool const negative = *p == '-';
  p += negative;
  std::uint64_t digits;
  unsigned const whole = leadingDigits(p, digits);
  // No digits, a leading zero before more (the general parser words the refusal), or too many.
  if (whole == 0 || whole == 8 || (whole > 1 && *p == '0') || p[whole] != '.') return false;
  std::uint64_t mantissa = valueOf(digits, whole);
  p += whole + 1;
  unsigned fraction = leadingDigits(p, digits);
  if (fraction == 0) return false;
  if (fraction < 8) {
    mantissa = mantissa * static_cast<std::uint64_t>(powersOfTen[fraction]) + valueOf(digits, fraction);
  } else {
    mantissa = mantissa * 100000000 + valueOf(digits, 8);
    unsigned const more = leadingDigits(p + 8, digits);
    if (more > 0) mantissa = mantissa * static_cast<std::uint64_t>(powersOfTen[more]) + valueOf(digits, more);
    fraction += more;
  }
  // Past 19 digits the mantissa may have wrapped; past 2^53 it may not be exact as a double.
  if (!endsScalar(p[fraction]) || whole + fraction > 19 || mantissa > (std::uint64_t(1) << 53)) return false;
  double const value = static_cast<double>(mantissa) / powersOfTen[fraction];
  word = JsonTape::doubleWord(negative ? -value : value);
  return true;
}

}  // namespace Tarvex::VantraCore::Internal
