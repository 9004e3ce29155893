// Well-known type texts: a text names a kind exactly when that kind's name is the text ("string8"
// being the one second name), and every code either has a name that reads back to it or is
// "unknown". Both directions answer and never throw. Input: the text; its first two bytes are also
// taken as a code.
#include <VantraCore/VxString.h>
#include <VantraCore/WellKnownType.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace Tarvex::VantraCore;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  std::string_view const text(reinterpret_cast<char const *>(data), size);
  try {
    WellKnownType const kind{VxStringView(text.data(), text.size())};
    VxStringView const name = kind.toString();
    std::string_view const nameText(name.data(), name.size());
    if (kind == WellKnownType() ? nameText != "unknown"
                                : nameText != text && !(text == "string8" && kind == wellKnownTypeOf<VxString>()))
      std::abort();
    if (size >= 2) {
      WellKnownType const code(static_cast<Internal::WellKnownTypeValue>(data[0] | data[1] << 8));
      VxStringView const codeName = code.toString();
      if (WellKnownType(codeName) != code && std::string_view(codeName.data(), codeName.size()) != "unknown")
        std::abort();
      static_cast<void>(WellKnownType::getCommonWellKnownType(kind, code));
    }
  } catch (...) {
    std::abort();
  }
  return 0;
}
