#include <VantraCore/Int128.h>

#include <ostream>

namespace Tarvex::VantraCore::Internal {

uint128_t const uint128_0{};
uint128_t const uint128_1{1};

std::string uint128_t::str(std::uint8_t base, std::uint32_t const &width) const {
  if (base < 2 || base > 16) throw std::invalid_argument("Base must be in the range [2, 16]");
  static char const digits[] = "0123456789abcdef";
  // Filled from the back: 128 binary digits at most.
  char buffer[128];
  char *begin = buffer + sizeof buffer;
  Native rest = native();
  do {
    *--begin = digits[static_cast<unsigned>(rest % base)];
    rest /= base;
  } while (rest != 0);
  std::string text(begin, buffer + sizeof buffer);
  if (text.size() < width) text.insert(0, width - text.size(), '0');
  return text;
}

std::ostream &operator<<(std::ostream &os, uint128_t const &value) {
  std::ios_base::fmtflags const flags = os.flags();
  std::uint8_t base;
  if (flags & std::ios_base::oct)
    base = 8;
  else if (flags & std::ios_base::dec)
    base = 10;
  else if (flags & std::ios_base::hex)
    base = 16;
  else
    return os;
  std::string const text = value.str(base, 0);
  // Like any formatted output, the insertion uses up a width set before it, without applying it.
  os.width(0);
  return os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::ostream &operator<<(std::ostream &os, int128_t const &value) {
  if (value.isNegative()) os.put('-');
  return os << uint128_t(0, value.magnitude().lower());
}

namespace {
template <typename T>
uint128_t widen(T value) {
  return uint128_t(0, static_cast<std::uint64_t>(value));
}
}  // namespace

#define VANTRACORE_BUILTIN_SHIFTS(T)                    \
  uint128_t operator<<(T lhs, uint128_t const &count) { \
    return widen(lhs) << count;                         \
  }                                                     \
  uint128_t operator>>(T lhs, uint128_t const &count) { \
    return widen(lhs) >> count;                         \
  }
VANTRACORE_BUILTIN_SHIFTS(signed char)
VANTRACORE_BUILTIN_SHIFTS(unsigned char)
VANTRACORE_BUILTIN_SHIFTS(short)
VANTRACORE_BUILTIN_SHIFTS(unsigned short)
VANTRACORE_BUILTIN_SHIFTS(int)
VANTRACORE_BUILTIN_SHIFTS(unsigned int)
VANTRACORE_BUILTIN_SHIFTS(std::int64_t)
VANTRACORE_BUILTIN_SHIFTS(std::uint64_t)
VANTRACORE_BUILTIN_SHIFTS(bool)
#undef VANTRACORE_BUILTIN_SHIFTS

}  // namespace Tarvex::VantraCore::Internal
