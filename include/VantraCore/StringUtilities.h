#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/Optional.h>
#include <VantraCore/VxString.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Tarvex::VantraCore {

// The printf conversion to format a double with; any other value formats as `general`.
enum class DoubleFormat : char {
  scientific = 'e',       // 1.50e+03
  scientificUpper = 'E',  // 1.50E+03
  fixed = 'f',            // 1500.00
  general = 'g',          // 1500
  generalUpper = 'G',     // 1.5E+03 where an exponent is used
};

// Numbers to text, in the classic locale, then padded by padString with `width`.
VANTRACORE_API VxString fromDouble(double value, DoubleFormat format = DoubleFormat::general,
                                   int precision = 6, int width = 0);
VANTRACORE_API VxString fromInt(int value, int width = 0);
VANTRACORE_API VxString fromUnsignedInt(unsigned int value, int width = 0);

// Text to numbers: no value unless isValidNumber holds. The integer forms round halves away from
// zero and give no value outside their range, so toInt("2.5") is 3 and toUnsignedInt("-0.4") none.
VANTRACORE_API nonstd::optional<double> toDouble(VxString const &text);
VANTRACORE_API nonstd::optional<int> toInt(VxString const &text);
VANTRACORE_API nonstd::optional<unsigned int> toUnsignedInt(VxString const &text);

// Blanks and tabs, an optional sign, digits, blanks and tabs, and at most one final line feed.
VANTRACORE_API bool isValidInt(VxString const &text);
// As isValidInt, with a decimal mantissa ("12.", ".5") and an optional exponent in place of the
// digits. No "inf", "nan" or hexadecimal forms.
VANTRACORE_API bool isValidNumber(VxString const &text);

// Right-aligns `text` in |width| blanks for a positive width, left-aligns it for a negative one.
// Longer text is never cut; width 0 and long text give a copy sharing the record.
VANTRACORE_API VxString padString(VxString const &text, int width);
VANTRACORE_API VxString repeatChar(char c, std::uint64_t count);

// One `"` in front and one behind, with no test and no escaping.
VANTRACORE_API VxString addQuotes(VxString const &text);
// The bytes between one pair of quotes, or a copy sharing the record when the text is not quoted.
VANTRACORE_API VxString stripQuotes(VxString const &text);
// At least two bytes, the first and the last being `"`.
VANTRACORE_API bool isQuoted(VxString const &text);

// Splits at every byte that occurs in `delimiters`. Empty tokens are kept only with `keepEmpty`, so
// n delimiters then give n + 1 tokens and the empty text one empty token.
VANTRACORE_API std::vector<VxString> tokenize(VxString const &text, VxString const &delimiters,
                                              bool keepEmpty = false);
VANTRACORE_API std::vector<std::string> tokenizeToStd(VxString const &text, VxString const &delimiters,
                                                      bool keepEmpty = false);
VANTRACORE_API std::vector<std::string> convertVxStringVectorToStd(std::vector<VxString> const &strings);

// UTF-16 and wide text (UTF-32 here, wchar_t being 32 bits) to UTF-8. A lone or unpaired surrogate
// throws utf8::invalid_utf16, a unit above 0x10FFFF utf8::invalid_code_point.
VANTRACORE_API VxString toVxString(std::u16string const &text);
VANTRACORE_API VxString toVxString(std::wstring const &text);
// UTF-8 to UTF-16 and to wide text. Malformed input throws utf8::invalid_utf8,
// utf8::invalid_code_point, or utf8::not_enough_room for a sequence cut off at the end.
VANTRACORE_API std::u16string toUtf16(VxString const &text);
VANTRACORE_API std::wstring toWString(VxString const &text);

}  // namespace Tarvex::VantraCore
