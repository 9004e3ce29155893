// UTF-8 <-> UTF-16 and UTF-32: valid text round-trips exactly, invalid text throws one of the utf8
// exceptions of its direction and nothing else. The first byte picks the direction.
#include <VantraCore/StringUtilities.h>

#include <utf8.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace Tarvex::VantraCore;

namespace {

template <class Text>
Text unitsOf(std::uint8_t const *data, std::size_t size) {
  Text text(size / sizeof(typename Text::value_type), 0);
  std::memcpy(text.data(), data, text.size() * sizeof(typename Text::value_type));
  return text;
}

// `valid` comes from utfcpp's own validator, against which the hand-written wide decoder is checked.
template <class Text>
void fromUtf8RoundTrips(VxString const &utf8, bool valid, Text (*convert)(VxString const &)) {
  try {
    Text const wide = convert(utf8);
    if (!valid || !(toVxString(wide) == utf8)) std::abort();
  } catch (utf8::exception const &failure) {
    bool const expected = dynamic_cast<utf8::invalid_utf8 const *>(&failure) ||
                          dynamic_cast<utf8::invalid_code_point const *>(&failure) ||
                          dynamic_cast<utf8::not_enough_room const *>(&failure);
    if (valid || !expected) std::abort();
  }
}

// Strictly valid wide text: surrogates only as high-low pairs, and only in UTF-16; nothing above
// 0x10FFFF.
template <class Text>
bool isValidWide(Text const &wide) {
  constexpr bool utf16 = sizeof(typename Text::value_type) == 2;
  for (std::size_t i = 0; i < wide.size(); ++i) {
    auto const unit = static_cast<std::uint32_t>(wide[i]);
    if (unit > 0x10FFFF || (unit >= 0xDC00 && unit <= 0xDFFF)) return false;
    if (unit >= 0xD800 && unit <= 0xDBFF) {
      if (!utf16 || i + 1 == wide.size()) return false;
      auto const next = static_cast<std::uint32_t>(wide[++i]);
      if (next < 0xDC00 || next > 0xDFFF) return false;
    }
  }
  return true;
}

template <class Text>
void toUtf8RoundTrips(Text const &wide, Text (*back)(VxString const &)) {
  constexpr bool utf16 = sizeof(typename Text::value_type) == 2;
  bool const valid = isValidWide(wide);
  try {
    VxString const utf8 = toVxString(wide);
    // Wide text also takes surrogate pairs, as it does where it is UTF-16: the one leniency.
    if (valid ? back(utf8) != wide : utf16 || !utf8::is_valid(utf8.data(), utf8.data() + utf8.size()))
      std::abort();
  } catch (utf8::invalid_utf16 const &) {
    if (valid) std::abort();
  } catch (utf8::invalid_code_point const &) {
    if (valid || utf16) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  if (size == 0) return 0;
  std::uint8_t const mode = data[0] % 3;
  ++data, --size;
  if (mode == 0) {
    VxString const utf8(reinterpret_cast<char const *>(data), size);
    bool const valid = utf8::is_valid(utf8.data(), utf8.data() + utf8.size());
    fromUtf8RoundTrips<std::u16string>(utf8, valid, &toUtf16);
    fromUtf8RoundTrips<std::wstring>(utf8, valid, &toWString);
  } else if (mode == 1) {
    toUtf8RoundTrips(unitsOf<std::u16string>(data, size), &toUtf16);
  } else {
    toUtf8RoundTrips(unitsOf<std::wstring>(data, size), &toWString);
  }
  return 0;
}
