// The view's searches and comparisons against std::string_view, which they follow: the same
// positions, and comparisons of the same sign. Input: two position bytes, then the text and the
// needle split at the first NUL byte.
#include <VantraCore/VxStringView.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

using namespace Tarvex::VantraCore;

namespace {

int sign(long long value) { return (value > 0) - (value < 0); }

void same(std::uint64_t ours, std::size_t theirs) {
  if (ours != theirs) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  if (size < 2) return 0;
  // 255 stands for npos; other positions may run past either end.
  std::uint64_t const pos = data[0] == 255 ? VxStringView::npos : data[0] % 64;
  std::uint64_t const count = data[1] == 255 ? VxStringView::npos : data[1] % 64;
  char const *rest = reinterpret_cast<char const *>(data + 2);
  std::size_t const restSize = size - 2;
  char const *nul = static_cast<char const *>(std::memchr(rest, 0, restSize));
  std::string_view const text(rest, nul ? nul - rest : restSize);
  std::string_view const needle =
      nul ? std::string_view(nul + 1, restSize - text.size() - 1) : std::string_view();
  VxStringView const ours(text.data(), text.size()), ourNeedle(needle.data(), needle.size());
  char const c = needle.empty() ? 'a' : needle[0];
  try {
    // Every search, for the needle and for its first byte alone.
    auto const searches = [&](auto ourTarget, auto theirTarget) {
      same(ours.find(ourTarget, pos), text.find(theirTarget, pos));
      same(ours.rfind(ourTarget, pos), text.rfind(theirTarget, pos));
      same(ours.find_first_of(ourTarget, pos), text.find_first_of(theirTarget, pos));
      same(ours.find_first_not_of(ourTarget, pos), text.find_first_not_of(theirTarget, pos));
      same(ours.find_last_of(ourTarget, pos), text.find_last_of(theirTarget, pos));
      same(ours.find_last_not_of(ourTarget, pos), text.find_last_not_of(theirTarget, pos));
    };
    searches(ourNeedle, needle);
    searches(c, c);
    // The needle as a C string ends at its first NUL; as a pointer and a length it is whole.
    std::string const terminated(needle);
    searches(terminated.c_str(), std::string_view(terminated.c_str()));
    same(ours.find(needle.data(), pos, needle.size()), text.find(needle.data(), pos, needle.size()));
    same(ours.rfind(needle.data(), pos, needle.size()), text.rfind(needle.data(), pos, needle.size()));
    same(ours.find_first_of(needle.data(), pos, needle.size()),
         text.find_first_of(needle.data(), pos, needle.size()));
    same(ours.find_first_not_of(needle.data(), pos, needle.size()),
         text.find_first_not_of(needle.data(), pos, needle.size()));
    same(ours.find_last_of(needle.data(), pos, needle.size()),
         text.find_last_of(needle.data(), pos, needle.size()));
    same(ours.find_last_not_of(needle.data(), pos, needle.size()),
         text.find_last_not_of(needle.data(), pos, needle.size()));
    if (sign(ours.compare(terminated.c_str())) != sign(text.compare(terminated.c_str()))) std::abort();
    if (sign(ours.compare(ourNeedle)) != sign(text.compare(needle))) std::abort();
    try {
      char const byte = ours.at(pos);
      if (pos >= text.size() || byte != text[pos]) std::abort();
    } catch (std::out_of_range const &) {
      if (pos < text.size()) std::abort();
    }
    bool const inside = pos <= text.size();
    try {
      int const ourOrder = ours.compare(pos, count, ourNeedle);
      if (!inside || sign(ourOrder) != sign(text.compare(pos, count, needle))) std::abort();
      if (sign(ours.compare(pos, count, ourNeedle, 0, count)) !=
          sign(text.compare(pos, count, needle, 0, count)))
        std::abort();
      VxStringView const part = ours.substr(pos, count);
      std::string_view const theirPart = text.substr(pos, count);
      if (part.size() != theirPart.size() || std::memcmp(part.data(), theirPart.data(), part.size()) != 0)
        std::abort();
      if (sign(ours.compare(pos, count, terminated.c_str())) !=
              sign(text.compare(pos, count, terminated.c_str())) ||
          sign(ours.compare(pos, count, needle.data(), needle.size())) !=
              sign(text.compare(pos, count, needle.data(), needle.size())))
        std::abort();
      char buffer[64];
      same(ours.copy(buffer, count < 64 ? count : 64, pos), text.copy(buffer, count < 64 ? count : 64, pos));
    } catch (std::out_of_range const &) {
      if (inside) std::abort();
    }
  } catch (...) {
    std::abort();
  }
  return 0;
}
