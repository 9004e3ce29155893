// tokenize: with keepEmpty the tokens, each followed by one delimiter byte, give back the text;
// without it they are the same tokens less the empty ones. Input: one byte with the number of
// delimiters (0 to 3), the delimiters, then the text.
#include <VantraCore/StringUtilities.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace Tarvex::VantraCore;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  if (size == 0) return 0;
  std::size_t const delimiterCount = std::min<std::size_t>(data[0] % 4, size - 1);
  char const *bytes = reinterpret_cast<char const *>(data);
  VxString const delimiters(bytes + 1, delimiterCount);
  VxString const text(bytes + 1 + delimiterCount, size - 1 - delimiterCount);
  auto const isDelimiter = [&](char c) {
    return delimiterCount != 0 && std::memchr(delimiters.data(), c, delimiterCount) != nullptr;
  };

  std::vector<VxString> const all = tokenize(text, delimiters, true);
  std::size_t at = 0;
  for (std::size_t i = 0; i < all.size(); ++i) {
    VxString const &token = all[i];
    if (at + token.size() > text.size() || std::memcmp(text.data() + at, token.data(), token.size()) != 0)
      std::abort();
    for (std::uint64_t k = 0; k < token.size(); ++k)
      if (isDelimiter(token.data()[k])) std::abort();
    at += token.size();
    if (i + 1 < all.size() && !(at < text.size() && isDelimiter(text.data()[at++]))) std::abort();
  }
  if (all.empty() || at != text.size()) std::abort();

  std::vector<VxString> nonEmpty;
  for (VxString const &token : all)
    if (token.size() != 0) nonEmpty.push_back(token);
  if (tokenize(text, delimiters, false) != nonEmpty) std::abort();
  if (tokenizeToStd(text, delimiters, true) != convertVxStringVectorToStd(all)) std::abort();
  return 0;
}
