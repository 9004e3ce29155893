#include <files/CaseMapping.h>

namespace Tarvex::VantraCore::Internal {

namespace {

// Blocks where capital and small letters alternate. `capitalEven` tells which of a pair comes first.
struct AlternatingBlock {
  char32_t first;
  char32_t last;
  bool capitalEven;
};

constexpr AlternatingBlock s_alternating[] = {
    {0x0100, 0x012F, true},  {0x0132, 0x0137, true}, {0x0139, 0x0148, false}, {0x014A, 0x0177, true},
    {0x0179, 0x017E, false}, {0x03D8, 0x03EF, true}, {0x0460, 0x0481, true},  {0x048A, 0x04BF, true},
    {0x04C1, 0x04CE, false}, {0x04D0, 0x052F, true}, {0x1E00, 0x1E95, true},  {0x1EA0, 0x1EFF, true},
};

// Single letters whose capital lies elsewhere.
struct Pair {
  char32_t small;
  char32_t capital;
};

constexpr Pair s_singles[] = {
    {0x00B5, 0x039C}, {0x00FF, 0x0178}, {0x0131, 0x0049}, {0x017F, 0x0053}, {0x0345, 0x0399},
    {0x0371, 0x0370}, {0x0373, 0x0372}, {0x0377, 0x0376}, {0x03AC, 0x0386}, {0x03C2, 0x03A3},
    {0x03CC, 0x038C}, {0x03CD, 0x038E}, {0x03CE, 0x038F}, {0x03D0, 0x0392}, {0x03D1, 0x0398},
    {0x03D5, 0x03A6}, {0x03D6, 0x03A0}, {0x03D7, 0x03CF}, {0x03F0, 0x039A}, {0x03F1, 0x03A1},
    {0x03F2, 0x03F9}, {0x03F3, 0x037F}, {0x03F5, 0x0395}, {0x03F8, 0x03F7}, {0x03FB, 0x03FA},
    {0x04CF, 0x04C0}, {0x1E9B, 0x1E60},
};

// Runs of small letters at a fixed distance from their capitals.
struct Shift {
  char32_t first;
  char32_t last;
  std::int32_t toCapital;
};

constexpr Shift s_shifts[] = {
    {0x00E0, 0x00F6, -0x20}, {0x00F8, 0x00FE, -0x20}, {0x037B, 0x037D, 0x82},  {0x03AD, 0x03AF, -0x25},
    {0x03B1, 0x03C1, -0x20}, {0x03C3, 0x03CB, -0x20}, {0x0430, 0x044F, -0x20}, {0x0450, 0x045F, -0x50},
    {0x0561, 0x0586, -0x30}, {0xFF41, 0xFF5A, -0x20},
};

}  // namespace

char32_t simpleUpperCase(char32_t c) noexcept {
  if (c < 0x80) return c >= 'a' && c <= 'z' ? c - 0x20 : c;
  if (c < 0xB5) return c;
  for (Shift const &shift : s_shifts) {
    if (c >= shift.first && c <= shift.last)
      return static_cast<char32_t>(static_cast<std::int32_t>(c) + shift.toCapital);
  }
  for (AlternatingBlock const &block : s_alternating) {
    if (c >= block.first && c <= block.last) {
      bool const small = ((c & 1) == 0) != block.capitalEven;
      return small ? c - 1 : c;
    }
  }
  for (Pair const &pair : s_singles) {
    if (pair.small == c) return pair.capital;
  }
  return c;
}

namespace {

// The code point of a well-formed sequence starting at `at`, advancing `at`, or -1 leaving it.
long decodeUtf8(char const *&at, char const *end) noexcept {
  auto const lead = static_cast<unsigned char>(*at);
  int length;
  char32_t c;
  char32_t minimum;
  if (lead < 0x80) {
    ++at;
    return lead;
  } else if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, c = lead & 0x1F, minimum = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, c = lead & 0x0F, minimum = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, c = lead & 0x07, minimum = 0x10000;
  } else {
    return -1;
  }
  if (end - at < length) return -1;
  for (int i = 1; i < length; ++i) {
    auto const next = static_cast<unsigned char>(at[i]);
    if ((next & 0xC0) != 0x80) return -1;
    c = (c << 6) | (next & 0x3F);
  }
  if (c < minimum || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return -1;
  at += length;
  return static_cast<long>(c);
}

}  // namespace

std::uint16_t UpperCaseUtf16Reader::next() noexcept {
  if (m_pendingLow != 0) {
    std::uint16_t const low = m_pendingLow;
    m_pendingLow = 0;
    return low;
  }
  if (m_at == m_end || *m_at == '\0') return 0;
  long const decoded = decodeUtf8(m_at, m_end);
  if (decoded < 0) return static_cast<std::uint16_t>(0xDC00 + static_cast<unsigned char>(*m_at++));
  char32_t const c = simpleUpperCase(static_cast<char32_t>(decoded));
  if (c < 0x10000) return static_cast<std::uint16_t>(c);
  m_pendingLow = static_cast<std::uint16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
  return static_cast<std::uint16_t>(0xD800 + ((c - 0x10000) >> 10));
}

namespace {

unsigned char upperAscii(unsigned char c) noexcept {
  return c >= 'a' && c <= 'z' ? c - 0x20 : c;
}

// How many leading bytes both texts have in ASCII (no NUL) with equal upper cases; `order` is set
// when a pair of ASCII bytes already decides.
std::size_t asciiPrefix(std::string_view a, std::string_view b, int &order) noexcept {
  std::size_t const n = a.size() < b.size() ? a.size() : b.size();
  order = 0;
  for (std::size_t i = 0; i < n; ++i) {
    auto const x = static_cast<unsigned char>(a[i]);
    auto const y = static_cast<unsigned char>(b[i]);
    if (((x | y) & 0x80) != 0 || x == 0 || y == 0) return i;
    if (x != y && upperAscii(x) != upperAscii(y)) {
      order = upperAscii(x) < upperAscii(y) ? -1 : 1;
      return i;
    }
  }
  return n;
}

}  // namespace

int compareUpperCase(std::string_view a, std::string_view b) noexcept {
  int order;
  std::size_t const same = asciiPrefix(a, b, order);
  if (order != 0) return order;
  UpperCaseUtf16Reader left(a.substr(same));
  UpperCaseUtf16Reader right(b.substr(same));
  for (;;) {
    std::uint16_t const x = left.next();
    std::uint16_t const y = right.next();
    if (x != y) return x < y ? -1 : 1;
    if (x == 0) return 0;
  }
}

bool startsWithUpperCase(std::string_view text, std::string_view prefix) noexcept {
  int order;
  std::size_t const same = asciiPrefix(text, prefix, order);
  if (order != 0) return false;
  UpperCaseUtf16Reader rest(text.substr(same));
  UpperCaseUtf16Reader start(prefix.substr(same));
  for (;;) {
    std::uint16_t const unit = start.next();
    if (unit == 0) return true;
    if (rest.next() != unit) return false;
  }
}

}  // namespace Tarvex::VantraCore::Internal
