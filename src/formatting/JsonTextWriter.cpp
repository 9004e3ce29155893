#include <formatting/JsonTextWriter.h>

#include <sys/mman.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <ostream>

#include <fmt/format.h>

namespace Tarvex::VantraCore::Internal {

TextBuffer::~TextBuffer() {
  if (m_capacity >= mappedFrom)
    munmap(m_text, m_capacity);
  else
    delete[] m_text;
}

void TextBuffer::flush() {
  if (m_sink != nullptr) m_sink->write(m_text, static_cast<std::streamsize>(m_size));
  m_size = 0;
}

void TextBuffer::grow(std::size_t bytes) {
  if (m_sink != nullptr && m_size > 0) {
    flush();
    if (m_capacity >= bytes) return;
  }
  std::size_t const capacity = std::max(m_capacity * 2, m_size + bytes + 256);
  void *text = nullptr;
  if (capacity < mappedFrom) {
    text = new char[capacity];
  } else if (m_capacity >= mappedFrom) {
    text = mremap(m_text, m_capacity, capacity, MREMAP_MAYMOVE);
  } else {
    text = mmap(nullptr, capacity, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  }
  if (text == MAP_FAILED) throw std::bad_alloc();
  if (m_capacity < mappedFrom) {
    if (m_size > 0) std::memcpy(text, m_text, m_size);
    delete[] m_text;
  }
  m_text = static_cast<char *>(text);
  m_capacity = capacity;
}

namespace {

// Dekker's exact product: a * b == high + low, without relying on a fused multiply-add.
void exactProduct(double a, double b, double &high, double &low) {
  auto const split = [](double x, double &upper, double &lower) {
    double const c = 134217729.0 * x;  // 2^27 + 1
    upper = c - (c - x);
    lower = x - upper;
  };
  double aHigh, aLow, bHigh, bLow;
  split(a, aHigh, aLow);
  split(b, bHigh, bLow);
  high = a * b;
  low = ((aHigh * bHigh - high) + aHigh * bLow + aLow * bHigh) + aLow * bLow;
}

// Powers of ten that a double holds exactly.
struct PowersOfTen {
  double values[23];
  constexpr PowersOfTen() : values() {
    double power = 1;
    for (double &value : values) {
      value = power;
      power *= 10;
    }
  }
};
constexpr PowersOfTen powersOfTen;

// |value| * 10^shift as high + low, exact up to the rounding of a division's remainder.
bool scaleByPowerOfTen(double magnitude, int shift, double &high, double &low) {
  if (shift > 22 || shift < -22) return false;
  if (shift >= 0) {
    exactProduct(magnitude, powersOfTen.values[shift], high, low);
    return true;
  }
  double const divisor = powersOfTen.values[-shift];
  high = magnitude / divisor;
  double productHigh, productLow;
  exactProduct(high, divisor, productHigh, productLow);
  low = ((magnitude - productHigh) - productLow) / divisor;
  return true;
}

char const digitPairs[] =
    "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243444546474849"
    "5051525354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";

// The eight digits of `block` (below 10^8, leading zeros written) into `out`. Splitting in halves and
// then in pairs keeps the chain of dependent divisions two long.
void eightDigits(std::uint32_t block, char *out) {
  std::uint32_t const high = block / 10000, low = block % 10000;
  std::memcpy(out, digitPairs + 2 * (high / 100), 2);
  std::memcpy(out + 2, digitPairs + 2 * (high % 100), 2);
  std::memcpy(out + 4, digitPairs + 2 * (low / 100), 2);
  std::memcpy(out + 6, digitPairs + 2 * (low % 100), 2);
}

// Writes the decimal digits of `value` to end at `end`, and returns where they start.
char *digitsEndingAt(std::uint64_t value, char *end) {
  while (value >= 100000000) {
    end -= 8;
    eightDigits(static_cast<std::uint32_t>(value % 100000000), end);
    value /= 100000000;
  }
  auto rest = static_cast<std::uint32_t>(value);
  for (; rest >= 100; rest /= 100) {
    end -= 2;
    std::memcpy(end, digitPairs + 2 * (rest % 100), 2);
  }
  if (rest >= 10) {
    end -= 2;
    std::memcpy(end, digitPairs + 2 * rest, 2);
  } else {
    *--end = static_cast<char>('0' + rest);
  }
  return end;
}

// Room that layOut may write, and read behind `text`: it copies digits in fixed runs of 24 bytes,
// whatever their count, and the surplus is overwritten or left unused.
constexpr std::size_t digitRun = 24;
constexpr std::size_t layOutRoom = 2 + 2 * digitRun;

// `count` digits of `text`, the first of them at the decimal `exponent`, in scientific or fixed
// notation as printf writes them.
[[gnu::always_inline]] inline std::size_t layOut(bool negative, char const *text, int count, int exponent,
                                                 bool scientific, char *out) {
  char *end = out;
  if (negative) *end++ = '-';
  if (scientific) {
    *end++ = text[0];
    if (count > 1) {
      *end++ = '.';
      std::memcpy(end, text + 1, digitRun);
      end += count - 1;
    }
    *end++ = 'e';
    *end++ = exponent < 0 ? '-' : '+';
    int const power = std::abs(exponent);
    if (power >= 100) *end++ = static_cast<char>('0' + power / 100);
    *end++ = static_cast<char>('0' + power / 10 % 10);
    *end++ = static_cast<char>('0' + power % 10);
  } else if (exponent >= 0) {
    int const whole = exponent + 1;
    std::memcpy(end, text, digitRun);
    end += std::min(whole, count);
    if (count < whole) end = std::fill_n(end, whole - count, '0');
    if (count > whole) {
      *end++ = '.';
      std::memcpy(end, text + whole, digitRun);
      end += count - whole;
    }
  } else {
    *end++ = '0';
    *end++ = '.';
    end = std::fill_n(end, -exponent - 1, '0');
    std::memcpy(end, text, digitRun);
    end += count;
  }
  return static_cast<std::size_t>(end - out);
}

// `value` (finite, not zero) as printf's %.15g prints it, or 0 when the quick path cannot be sure of
// the rounding: the value is scaled exactly to 15 integer digits, which decides the last digit unless
// the dropped part lies next to one half.
std::size_t printFifteenDigits(double value, char *out) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  int const binaryExponent = static_cast<int>((bits >> 52) & 0x7ff) - 1023;
  // floor(binaryExponent * log10(2)): never above the decimal exponent, at most one below it.
  int exponent = static_cast<int>((std::int64_t(binaryExponent) * 646456993) >> 31);
  double const magnitude = std::fabs(value);
  double high = 0, low = 0;
  if (!scaleByPowerOfTen(magnitude, 14 - exponent, high, low)) return 0;
  while (high >= 1e15) {
    ++exponent;
    if (!scaleByPowerOfTen(magnitude, 14 - exponent, high, low)) return 0;
  }
  auto digits = static_cast<std::uint64_t>(high);
  double dropped = (high - static_cast<double>(digits)) + low;
  if (dropped < 0) {
    --digits;
    dropped += 1;
  }
  if (std::fabs(dropped - 0.5) < 1e-6) return 0;
  if (dropped > 0.5) ++digits;
  if (digits >= 1000000000000000u) {
    digits /= 10;
    ++exponent;
  }
  if (digits < 100000000000000u) return 0;
  char text[15 + 2 * digitRun];
  digitsEndingAt(digits, text + 15);
  int count = 15;
  while (count > 1 && text[count - 1] == '0')
    --count;

  return layOut(value < 0, text, count, exponent, exponent < -4 || exponent >= 15, out);
}

// The shortest digits of `value` (finite, not zero) that read back to it, laid out as std::to_chars
// lays them out: fixed notation unless scientific is shorter. The digits come from the formatting
// library's shortest-digit search, about twice as fast as the standard library's.
template <class Floating>
std::size_t printShortest(Floating value, char *out) {
  auto const decimal = fmt::detail::dragonbox::to_decimal(std::fabs(value));
  std::uint64_t significand = decimal.significand;
  int exponent = decimal.exponent;
  while (significand % 10 == 0) {
    significand /= 10;
    ++exponent;
  }
  char digits[20 + 2 * digitRun];
  char const *const text = digitsEndingAt(significand, digits + 20);
  int const count = static_cast<int>(digits + 20 - text);
  // The exponent of the first digit, and the length of either notation without the sign.
  int const first = exponent + count - 1;
  int const power = std::abs(first);
  int const scientificLength = count + (count > 1) + 2 + (power >= 100 ? 3 : 2);
  int const fixedLength = first >= 0 ? (count <= first + 1 ? first + 1 : count + 1) : count + 1 - first;
  if (scientificLength < fixedLength || count > first) {
    return layOut(value < 0, text, count, first, scientificLength < fixedLength, out);
  }
  // Fixed notation padded with zeros: of the texts that long, the standard library writes the one
  // nearest the value, which is then a whole number and written exactly.
  char *end = out;
  if (value < 0) *end++ = '-';
  char whole[40];
  char *wholeStart = whole + sizeof whole;
  __extension__ using Whole = unsigned __int128;  // a double below 10^23 is whole and fits
  for (auto rest = static_cast<Whole>(std::fabs(value)); rest != 0; rest /= 10)
    *--wholeStart = static_cast<char>('0' + static_cast<int>(rest % 10));
  end = std::copy(wholeStart, whole + sizeof whole, end);
  return static_cast<std::size_t>(end - out);
}

}  // namespace

void JsonTextWriter::lineBreak() {
  if (m_indent < 0) return;
  m_text.push_back('\n');
  m_text.append(m_empty.size() * static_cast<std::size_t>(m_indent), ' ');
}

void JsonTextWriter::close(char bracket) {
  bool const empty = m_empty.back();
  m_empty.pop_back();
  if (!empty) lineBreak();
  m_text.push_back(bracket);
}

void JsonTextWriter::key(std::string_view name) {
  beforeValue();
  appendQuoted(name);
  m_text.push_back(':');
  if (m_indent >= 0) m_text.push_back(' ');
  m_afterKey = true;
}

template <class Floating>
void JsonTextWriter::shortestNumber(Floating value) {
  if (!std::isfinite(value)) return null();
  if (value == 0) return literal(std::signbit(value) ? "-0.0" : "0.0");
  m_text.advance(printShortest(value, valueRoom(layOutRoom)));
}

void JsonTextWriter::number(float value) {
  if (m_shortest) return shortestNumber(value);
  number(static_cast<double>(value));
}

void JsonTextWriter::number(double value) {
  if (m_shortest) return shortestNumber(value);
  if (!std::isfinite(value)) return null();
  if (value == 0) return literal(std::signbit(value) ? "-0.0" : "0.0");
  // %.15g, as a stream at precision 15 in the classic locale prints it.
  char *const digits = valueRoom(layOutRoom);
  std::size_t length = printFifteenDigits(value, digits);
  if (length == 0) {
    std::to_chars_result const end =
        std::to_chars(digits, digits + 32, value, std::chars_format::general, 15);
    length = static_cast<std::size_t>(end.ptr - digits);
  }
  m_text.advance(length);
}

template <class Integer>
void JsonTextWriter::wholeNumber(Integer value) {
  char digits[24];
  std::to_chars_result const end = std::to_chars(digits, digits + sizeof digits, value);
  literal(std::string_view(digits, static_cast<std::size_t>(end.ptr - digits)));
}

void JsonTextWriter::integer(std::int64_t value) {
  wholeNumber(value);
}

void JsonTextWriter::unsignedInteger(std::uint64_t value) {
  wholeNumber(value);
}

void JsonTextWriter::string(std::string_view value) {
  beforeValue();
  appendQuoted(value);
}

void JsonTextWriter::appendQuoted(std::string_view value) {
  static char const hex[] = "0123456789abcdef";
  m_text.push_back('"');
  for (char const c : value) {
    switch (c) {
      case '"':
        m_text.append("\\\"");
        break;
      case '\\':
        m_text.append("\\\\");
        break;
      case '\b':
        m_text.append("\\b");
        break;
      case '\f':
        m_text.append("\\f");
        break;
      case '\n':
        m_text.append("\\n");
        break;
      case '\r':
        m_text.append("\\r");
        break;
      case '\t':
        m_text.append("\\t");
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char const escape[] = {'\\', 'u', '0', '0', hex[(c >> 4) & 0xf], hex[c & 0xf]};
          m_text.append(std::string_view(escape, sizeof escape));
        } else {
          m_text.push_back(c);
        }
    }
  }
  m_text.push_back('"');
}

}  // namespace Tarvex::VantraCore::Internal
