// Number and quoting texts: every reader accepts only what isValidNumber accepts, and isValidInt
// only numbers; an int or unsigned read back from its own text is the same value; a quoted text
// without NUL unquotes to itself; padding never shortens. Input: the text.
#include <VantraCore/StringUtilities.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace Tarvex::VantraCore;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  VxString const text(reinterpret_cast<char const *>(data), size);
  try {
    bool const number = isValidNumber(text);
    auto const real = toDouble(text);
    auto const integer = toInt(text);
    auto const natural = toUnsignedInt(text);
    if (real.has_value() != number || (integer && !number) || (natural && !number)) std::abort();
    if (isValidInt(text) && !number) std::abort();
    if (integer && toInt(fromInt(*integer, 3)) != integer) std::abort();
    if (natural && toUnsignedInt(fromUnsignedInt(*natural)) != natural) std::abort();
    if (real && std::isfinite(*real)) {
      VxString const written = fromDouble(*real);
      if (!isValidNumber(written)) std::abort();
      // Every format writes a number; the exponent forms at 17 digits write this one.
      for (DoubleFormat const format :
           {DoubleFormat::scientific, DoubleFormat::scientificUpper, DoubleFormat::fixed,
            DoubleFormat::general, DoubleFormat::generalUpper}) {
        VxString const digits = fromDouble(*real, format, 17);
        bool const exact = format != DoubleFormat::fixed;
        if (!isValidNumber(digits) || (exact && toDouble(digits) != real)) std::abort();
      }
    }
    // Concatenation stops a text at its first NUL, so only texts without one come back whole.
    VxString const quoted = addQuotes(text);
    if (!isQuoted(quoted) || (std::memchr(data, 0, size) == nullptr && stripQuotes(quoted) != text))
      std::abort();
    int const width = size ? static_cast<signed char>(data[0]) : 0;
    if (padString(text, width).size() < text.size()) std::abort();
  } catch (...) {
    std::abort();
  }
  return 0;
}
