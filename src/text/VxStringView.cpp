#include <VantraCore/VxStringView.h>

#include <algorithm>
#include <stdexcept>

namespace Tarvex::VantraCore {

namespace {

[[noreturn]] void throwRangeError() {
  throw std::out_of_range("VxStringView range error");
}

VxStringView measured(char const *s) noexcept {
  return VxStringView(s);
}

}  // namespace

int VxStringView::char_compare_fixed(char const *a, char const *b, std::uint64_t n) noexcept {
  return n == 0 ? 0 : std::memcmp(a, b, n);
}

bool VxStringView::contains(VxStringView view, char c) noexcept {
  for (char byte : view) {
    if (byte == c) return true;
  }
  return false;
}

char const &VxStringView::at(std::uint64_t pos) const {
  if (pos >= m_length) throwRangeError();
  return m_data[pos];
}

std::uint64_t VxStringView::copy(char *dest, std::uint64_t count, std::uint64_t pos) const {
  if (pos > m_length) throwRangeError();
  std::uint64_t const n = std::min(count, m_length - pos);
  if (n != 0) std::memcpy(dest, m_data + pos, n);
  return n;
}

VxStringView VxStringView::substr(std::uint64_t pos, std::uint64_t count) const {
  if (pos > m_length) throwRangeError();
  return VxStringView(m_data + pos, std::min(count, m_length - pos));
}

std::int32_t VxStringView::compare(VxStringView other) const noexcept {
  int const bytes = char_compare_fixed(m_data, other.m_data, std::min(m_length, other.m_length));
  if (bytes != 0) return bytes;
  if (m_length == other.m_length) return 0;
  return m_length > other.m_length ? 1 : -1;
}

std::int32_t VxStringView::compare(char const *s) const noexcept {
  return compare(measured(s));
}

std::int32_t VxStringView::compare(std::uint64_t pos, std::uint64_t count, VxStringView other) const {
  return substr(pos, count).compare(other);
}

std::int32_t VxStringView::compare(std::uint64_t pos, std::uint64_t count, char const *s) const {
  return substr(pos, count).compare(measured(s));
}

std::int32_t VxStringView::compare(std::uint64_t pos, std::uint64_t count, char const *s,
                                   std::uint64_t n) const {
  return substr(pos, count).compare(VxStringView(s, n));
}

std::int32_t VxStringView::compare(std::uint64_t pos1, std::uint64_t count1, VxStringView other,
                                   std::uint64_t pos2, std::uint64_t count2) const {
  VxStringView const right = other.substr(pos2, count2);
  return substr(pos1, count1).compare(right);
}

// Plain nested scans: no search tables are built.

std::uint64_t VxStringView::find(VxStringView v, std::uint64_t pos) const noexcept {
  std::uint64_t const n = v.m_length;
  if (n > m_length || pos > m_length - n) return npos;
  if (n == 0) return pos;
  // The first byte is tested inline before the whole needle is compared.
  for (std::uint64_t at = pos; at <= m_length - n; ++at) {
    if (m_data[at] == v.m_data[0] && char_compare_fixed(m_data + at, v.m_data, n) == 0) return at;
  }
  return npos;
}

std::uint64_t VxStringView::find(char c, std::uint64_t pos) const noexcept {
  for (std::uint64_t at = pos; at < m_length; ++at) {
    if (m_data[at] == c) return at;
  }
  return npos;
}

std::uint64_t VxStringView::rfind(VxStringView v, std::uint64_t pos) const noexcept {
  std::uint64_t const n = v.m_length;
  if (n > m_length) return npos;
  for (std::uint64_t at = std::min(m_length - n, pos);; --at) {
    if (char_compare_fixed(m_data + at, v.m_data, n) == 0) return at;
    if (at == 0) return npos;
  }
}

// The first (or last) position at or after (before) pos whose byte is in the set exactly when
// `inSet` says so.
std::uint64_t VxStringView::scanForward(VxStringView set, std::uint64_t pos, bool inSet) const noexcept {
  for (std::uint64_t at = pos; at < m_length; ++at) {
    if (contains(set, m_data[at]) == inSet) return at;
  }
  return npos;
}

std::uint64_t VxStringView::scanBackward(VxStringView set, std::uint64_t pos, bool inSet) const noexcept {
  if (m_length == 0) return npos;
  for (std::uint64_t at = std::min(pos, m_length - 1);; --at) {
    if (contains(set, m_data[at]) == inSet) return at;
    if (at == 0) return npos;
  }
}

std::uint64_t VxStringView::find_first_of(VxStringView v, std::uint64_t pos) const noexcept {
  return scanForward(v, pos, true);
}
std::uint64_t VxStringView::find_first_not_of(VxStringView v, std::uint64_t pos) const noexcept {
  return scanForward(v, pos, false);
}
std::uint64_t VxStringView::find_last_of(VxStringView v, std::uint64_t pos) const noexcept {
  return scanBackward(v, pos, true);
}
std::uint64_t VxStringView::find_last_not_of(VxStringView v, std::uint64_t pos) const noexcept {
  return scanBackward(v, pos, false);
}

// The other overloads of each search are the view overload over another needle.
#define VX_STRING_VIEW_SEARCH_FORWARDERS(name)                                                         \
  std::uint64_t VxStringView::name(char const *s, std::uint64_t pos, std::uint64_t n) const noexcept { \
    return name(VxStringView(s, n), pos);                                                              \
  }                                                                                                    \
  std::uint64_t VxStringView::name(char const *s, std::uint64_t pos) const noexcept {                  \
    return name(measured(s), pos);                                                                     \
  }

#define VX_STRING_VIEW_BYTE_SEARCH(name, setName)                              \
  std::uint64_t VxStringView::name(char c, std::uint64_t pos) const noexcept { \
    return setName(VxStringView(&c, 1), pos);                                  \
  }

VX_STRING_VIEW_SEARCH_FORWARDERS(find)
VX_STRING_VIEW_SEARCH_FORWARDERS(rfind)
VX_STRING_VIEW_SEARCH_FORWARDERS(find_first_of)
VX_STRING_VIEW_SEARCH_FORWARDERS(find_first_not_of)
VX_STRING_VIEW_SEARCH_FORWARDERS(find_last_of)
VX_STRING_VIEW_SEARCH_FORWARDERS(find_last_not_of)
VX_STRING_VIEW_BYTE_SEARCH(rfind, find_last_of)
VX_STRING_VIEW_BYTE_SEARCH(find_first_of, find_first_of)
VX_STRING_VIEW_BYTE_SEARCH(find_first_not_of, find_first_not_of)
VX_STRING_VIEW_BYTE_SEARCH(find_last_of, find_last_of)
VX_STRING_VIEW_BYTE_SEARCH(find_last_not_of, find_last_not_of)

#undef VX_STRING_VIEW_SEARCH_FORWARDERS
#undef VX_STRING_VIEW_BYTE_SEARCH

}  // namespace Tarvex::VantraCore
