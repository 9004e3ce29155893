#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Tarvex::VantraCore::Internal {

// The simple (one to one) Unicode upper-case mapping, the same in every locale, for ASCII, Latin-1,
// Latin Extended-A, Latin Extended Additional, Greek, Cyrillic, Armenian and full-width Latin. Other
// code points map to themselves.
char32_t simpleUpperCase(char32_t c) noexcept;

// Reads UTF-8 text as the upper-cased UTF-16 units file names are compared by, up to the end or the
// first NUL. A byte that is not part of valid UTF-8 reads as the lone surrogate 0xDC00 + byte, which
// no valid text produces, so malformed names still compare totally and never equal a valid one.
class UpperCaseUtf16Reader {
 public:
  explicit UpperCaseUtf16Reader(std::string_view text) noexcept
      : m_at(text.data()), m_end(text.data() + text.size()) {}

  // The next unit, or 0 at the end.
  std::uint16_t next() noexcept;

 private:
  char const *m_at;
  char const *m_end;
  std::uint16_t m_pendingLow = 0;
};

// -1, 0 or 1 as the upper-cased UTF-16 units of `a` and `b` compare, unsigned, up to the end or a NUL.
int compareUpperCase(std::string_view a, std::string_view b) noexcept;

// Whether the upper-cased units of `text` begin with those of `prefix`.
bool startsWithUpperCase(std::string_view text, std::string_view prefix) noexcept;

}  // namespace Tarvex::VantraCore::Internal
