#include <VantraCore/StringUtilities.h>

#include <utf8.h>

#include <locale.h>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

namespace Tarvex::VantraCore {

namespace {

// Digits are written and read in the C locale whatever locale the host has set.
double parseInCLocale(char const *text) {
  static locale_t const cLocale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  return cLocale ? strtod_l(text, nullptr, cLocale) : std::strtod(text, nullptr);
}

template <class Value>
VxString decimal(Value value, int width) {
  char digits[16];
  char *const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  return padString(VxString(digits, static_cast<std::uint64_t>(end - digits)), width);
}

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// The frame shared by isValidInt and isValidNumber: blanks and tabs, at most one sign, the body,
// blanks and tabs, at most one line feed as the very last byte.
bool matchesNumberFrame(VxStringView text, bool decimalBody) {
  char const *at = text.begin();
  char const *const end = text.end();
  auto const skipDigits = [&] {
    char const *const first = at;
    while (at != end && isDigit(*at))
      ++at;
    return static_cast<int>(at - first);
  };
  auto const skipSign = [&] {
    if (at != end && (*at == '+' || *at == '-')) ++at;
  };

  while (at != end && isBlank(*at))
    ++at;
  skipSign();
  int digits = skipDigits();
  if (decimalBody) {
    if (at != end && *at == '.') {
      ++at;
      digits += skipDigits();
    }
    if (digits == 0) return false;
    if (at != end && std::tolower(static_cast<unsigned char>(*at)) == 'e') {
      ++at;
      skipSign();
      if (skipDigits() == 0) return false;
    }
  } else if (digits == 0) {
    return false;
  }
  while (at != end && isBlank(*at))
    ++at;
  if (at != end && *at == '\n') ++at;
  return at == end;
}

nonstd::optional<double> validNumber(VxString const &text) {
  if (!isValidNumber(text)) return nonstd::nullopt;
  return parseInCLocale(text.c_str());
}

bool isAscii(VxStringView text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

template <class Unit>
bool isAscii(std::basic_string<Unit> const &text) {
  return std::all_of(text.begin(), text.end(),
                     [](Unit unit) { return static_cast<std::uint32_t>(unit) < 0x80; });
}

template <class Wide>
Wide widenAscii(VxStringView text) {
  return Wide(text.begin(), text.end());
}

// UTF-16, or UTF-32 read with the same surrogate rules, to UTF-8.
template <class Unit>
VxString fromUnits(std::basic_string<Unit> const &text) {
  if (isAscii(text)) {
    return VxString::build(text.size(), [&](char *out) { std::copy(text.begin(), text.end(), out); });
  }
  std::string utf8Text;
  utf8Text.reserve(text.size() * 3);
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t codePoint = static_cast<std::uint32_t>(text[i]);
    if (codePoint >= 0xD800 && codePoint <= 0xDBFF) {
      if (i + 1 == text.size()) throw utf8::invalid_utf16(static_cast<std::uint16_t>(codePoint));
      std::uint32_t const low = static_cast<std::uint32_t>(text[++i]);
      if (low < 0xDC00 || low > 0xDFFF) throw utf8::invalid_utf16(static_cast<std::uint16_t>(low));
      codePoint = codePoint * 1024 + low - 56613888;
    } else if (codePoint >= 0xDC00 && codePoint <= 0xDFFF) {
      throw utf8::invalid_utf16(static_cast<std::uint16_t>(codePoint));
    }
    utf8::append(codePoint, std::back_inserter(utf8Text));
  }
  return VxString(utf8Text);
}

}  // namespace

VxString fromDouble(double value, DoubleFormat format, int precision, int width) {
  std::chars_format style = std::chars_format::general;
  bool upper = false;
  switch (format) {
    case DoubleFormat::scientificUpper:
      upper = true;
      [[fallthrough]];
    case DoubleFormat::scientific:
      style = std::chars_format::scientific;
      break;
    case DoubleFormat::fixed:
      style = std::chars_format::fixed;
      break;
    case DoubleFormat::generalUpper:
      upper = true;
      break;
    default:
      break;
  }
  // As printf: a negative precision counts as the default 6. The bound fits the widest fixed form.
  if (precision < 0) precision = 6;
  std::string text(static_cast<std::size_t>(precision) + 400, '\0');
  char *const end = std::to_chars(text.data(), text.data() + text.size(), value, style, precision).ptr;
  text.resize(static_cast<std::size_t>(end - text.data()));
  if (upper) {
    for (char &c : text)
      c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return padString(VxString(text), width);
}

VxString fromInt(int value, int width) {
  return decimal(value, width);
}

VxString fromUnsignedInt(unsigned int value, int width) {
  return decimal(value, width);
}

nonstd::optional<double> toDouble(VxString const &text) {
  return validNumber(text);
}

nonstd::optional<int> toInt(VxString const &text) {
  nonstd::optional<double> const number = validNumber(text);
  if (!number) return nonstd::nullopt;
  double const num = *number;
  if (num >= 0) {
    if (num >= 2147483647.5) return nonstd::nullopt;
    return static_cast<int>(num + 0.5);
  }
  if (num <= -2147483648.5) return nonstd::nullopt;
  return static_cast<int>(num - 0.5);
}

nonstd::optional<unsigned int> toUnsignedInt(VxString const &text) {
  nonstd::optional<double> const number = validNumber(text);
  if (!number || *number < 0 || *number >= 4294967295.5) return nonstd::nullopt;
  return static_cast<unsigned int>(*number + 0.5);
}

bool isValidInt(VxString const &text) {
  return matchesNumberFrame(text, false);
}

bool isValidNumber(VxString const &text) {
  return matchesNumberFrame(text, true);
}

VxString padString(VxString const &text, int width) {
  std::uint64_t const wanted = width < 0 ? 0 - static_cast<std::uint64_t>(static_cast<std::int64_t>(width))
                                         : static_cast<std::uint64_t>(width);
  if (text.length() >= wanted) return text;
  std::uint64_t const pad = wanted - text.length();
  return VxString::build(wanted, [&](char *out) {
    char *const textAt = width > 0 ? out + pad : out;
    char *const padAt = width > 0 ? out : out + text.length();
    if (!text.empty()) std::memcpy(textAt, text.data(), text.length());
    std::memset(padAt, ' ', pad);
  });
}

VxString repeatChar(char c, std::uint64_t count) {
  return VxString::build(count, [&](char *out) {
    if (count != 0) std::memset(out, c, count);
  });
}

VxString addQuotes(VxString const &text) {
  return "\"" + text + "\"";
}

VxString stripQuotes(VxString const &text) {
  return isQuoted(text) ? text.substr(1, text.length() - 2) : text;
}

bool isQuoted(VxString const &text) {
  return text.length() >= 2 && text[0] == '"' && text[text.length() - 1] == '"';
}

std::vector<VxString> tokenize(VxString const &text, VxString const &delimiters, bool keepEmpty) {
  VxStringView const whole(text);
  std::vector<VxString> tokens;
  std::uint64_t start = 0;
  for (;;) {
    std::uint64_t const found = whole.find_first_of(delimiters, start);
    std::uint64_t const stop = found == VxStringView::npos ? whole.size() : found;
    if (stop > start || keepEmpty) tokens.emplace_back(whole.data() + start, stop - start);
    if (found == VxStringView::npos) return tokens;
    start = found + 1;
  }
}

std::vector<std::string> tokenizeToStd(VxString const &text, VxString const &delimiters, bool keepEmpty) {
  return convertVxStringVectorToStd(tokenize(text, delimiters, keepEmpty));
}

std::vector<std::string> convertVxStringVectorToStd(std::vector<VxString> const &strings) {
  std::vector<std::string> converted;
  converted.reserve(strings.size());
  for (VxString const &text : strings)
    converted.emplace_back(text.data(), text.length());
  return converted;
}

VxString toVxString(std::u16string const &text) {
  return fromUnits(text);
}

VxString toVxString(std::wstring const &text) {
  return fromUnits(text);
}

std::u16string toUtf16(VxString const &text) {
  if (isAscii(text)) return widenAscii<std::u16string>(text);
  std::u16string converted;
  converted.reserve(text.length());
  utf8::utf8to16(text.begin(), text.end(), std::back_inserter(converted));
  return converted;
}

std::wstring toWString(VxString const &text) {
  if (isAscii(text)) return widenAscii<std::wstring>(text);
  // wchar_t holds a whole code point here, so each decoded code point is one unit.
  std::wstring converted;
  converted.reserve(text.length());
  for (char const *at = text.begin(); at != text.end();) {
    converted.push_back(static_cast<wchar_t>(utf8::next(at, text.end())));
  }
  return converted;
}

}  // namespace Tarvex::VantraCore
