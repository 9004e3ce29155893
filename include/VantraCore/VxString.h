#pragma once

#include <VantraCore/ExceptionTransport.h>
#include <VantraCore/Export.h>
#include <VantraCore/StringCApi.h>
#include <VantraCore/VxStringView.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

namespace Tarvex::VantraCore {

namespace Internal {

// The data policy of VxString: the record is reached only through the exported C functions, and a
// failure behind them is thrown anew on this side.
struct VxStringDataSharable {
  using Data = VxStringRecord;

  static Data *construct(char const *text, std::uint64_t length) {
    TransportRecord transport;
    Data *data = VxStringData_C_API_constructCString(&transport, text, length);
    rethrowTransportRecord(transport);
    return data;
  }
  static VxStringRecordAndText constructWithSize(std::uint64_t length) {
    TransportRecord transport;
    VxStringRecordAndText made = VxStringData_C_API_constructCStringWithSize(&transport, length);
    rethrowTransportRecord(transport);
    return made;
  }
  static Data *copy(Data *data) noexcept { return VxStringData_C_API_copy(data); }
  static void destruct(Data *data) noexcept { VxStringData_C_API_destruct(data); }
  static char const *text(Data const *data) noexcept { return VxStringData_C_API_getConstDataPointer(data); }
  static std::uint64_t length(Data const *data) noexcept { return VxStringData_C_API_getLength(data); }
};

// 64-bit FNV-1a over the bytes.
inline std::uint64_t fnv1aHash(VxStringView text) noexcept {
  std::uint64_t hash = 0xCBF29CE484222325ull;
  for (char byte : text) {
    hash ^= static_cast<unsigned char>(byte);
    hash *= 0x100000001B3ull;
  }
  return hash;
}

}  // namespace Internal

// The reference-counted, NUL-terminated, immutable-once-built string (UTF-8 by convention). Copies
// share one record; length and text pointer are cached so reading never touches the record. A
// default-constructed string owns no record; emptiness is a matter of length alone.
template <class Policy>
class VxStringGeneric {
 public:
  using Data = typename Policy::Data;
  static constexpr std::uint64_t npos = VxStringView::npos;

  VxStringGeneric() noexcept = default;
  // A null pointer is the empty text.
  VxStringGeneric(char const *text) : VxStringGeneric(text, text ? std::strlen(text) : 0) {}
  VxStringGeneric(char const *text, std::uint64_t length) : m_data(Policy::construct(text, length)) {
    m_length = Policy::length(m_data);
    m_text = Policy::text(m_data);
  }
  VxStringGeneric(std::string const &text) : VxStringGeneric(text.data(), text.size()) {}
  explicit VxStringGeneric(VxStringView text) : VxStringGeneric(text.data(), text.size()) {}

  VxStringGeneric(VxStringGeneric const &other) noexcept
      : m_data(other.m_data ? Policy::copy(other.m_data) : nullptr),
        m_length(other.m_length),
        m_text(other.m_text) {}
  VxStringGeneric(VxStringGeneric &&other) noexcept
      : m_data(other.m_data), m_length(other.m_length), m_text(other.m_text) {
    other.becomeEmpty();
  }
  VxStringGeneric &operator=(VxStringGeneric const &other) noexcept {
    if (other.m_data) Policy::copy(other.m_data);
    release();
    m_data = other.m_data;
    m_length = other.m_length;
    m_text = other.m_text;
    return *this;
  }
  VxStringGeneric &operator=(VxStringGeneric &&other) noexcept {
    if (this != &other) {
      release();
      m_data = other.m_data;
      m_length = other.m_length;
      m_text = other.m_text;
      other.becomeEmpty();
    }
    return *this;
  }
  ~VxStringGeneric() { release(); }

  std::uint64_t length() const noexcept { return m_length; }
  std::uint64_t size() const noexcept { return m_length; }
  bool empty() const noexcept { return m_length == 0; }
  char const *c_str() const noexcept { return m_text; }
  char const *data() const noexcept { return m_text; }
  char const *begin() const noexcept { return m_text; }
  char const *end() const noexcept { return m_text + m_length; }
  char operator[](std::uint64_t pos) const noexcept { return m_text[pos]; }
  std::string toStdString() const { return std::string(m_text, m_length); }
  VxStringView view() const noexcept { return VxStringView(m_text, m_length); }
  operator VxStringView() const noexcept { return view(); }

  // Throws std::out_of_range "VxStringView range error" when pos > length().
  VxStringGeneric substr(std::uint64_t pos, std::uint64_t count = npos) const {
    if (pos > m_length) throw std::out_of_range("VxStringView range error");
    return concatenate(m_text + pos, std::min(m_length - pos, count), nullptr, 0);
  }
  // The first `count` bytes.
  VxStringGeneric left(std::uint64_t count) const { return substr(0, count); }
  // Like substr, but a position past the end gives the empty string instead of throwing.
  VxStringGeneric mid(std::uint64_t pos, std::uint64_t count = npos) const {
    return substr(std::min(m_length, pos), count);
  }

  // The concatenating builder: one record of aLength + bLength bytes. Each side is copied up to its
  // length or its first NUL, so a NUL inside cuts the cached length while the record keeps the sum.
  // A null side is allowed with length 0.
  static VxStringGeneric concatenate(char const *a, std::uint64_t aLength, char const *b,
                                     std::uint64_t bLength) {
    if (aLength > npos - bLength) throw std::bad_alloc();
    VxStringGeneric result;
    Internal::VxStringRecordAndText made = Policy::constructWithSize(aLength + bLength);
    result.m_data = made.record;
    std::uint64_t const aCopied = boundedCopy(made.text, a, aLength);
    std::uint64_t const bCopied = boundedCopy(made.text + aLength, b, bLength);
    made.text[aLength + bLength] = '\0';
    result.m_text = made.text;
    result.m_length = aCopied < aLength ? aCopied : aLength + bCopied;
    return result;
  }

  // A string of exactly `length` bytes that `fill(char *)` writes in place: one allocation.
  template <class Fill>
  static VxStringGeneric build(std::uint64_t length, Fill &&fill) {
    VxStringGeneric result;
    Internal::VxStringRecordAndText made = Policy::constructWithSize(length);
    result.m_data = made.record;  // owned from here on, should `fill` throw
    std::forward<Fill>(fill)(made.text);
    made.text[length] = '\0';
    result.m_text = made.text;
    result.m_length = length;
    return result;
  }

  VxStringGeneric &operator+=(VxStringGeneric const &other) {
    return *this = concatenate(m_text, m_length, other.m_text, other.m_length);
  }
  VxStringGeneric &operator+=(char const *other) { return *this += VxStringView(other); }
  VxStringGeneric &operator+=(VxStringView other) {
    return *this = concatenate(m_text, m_length, other.data(), other.size());
  }

  friend VxStringGeneric operator+(VxStringGeneric const &a, VxStringGeneric const &b) {
    return concatenate(a.m_text, a.m_length, b.m_text, b.m_length);
  }
  friend VxStringGeneric operator+(VxStringGeneric const &a, char const *b) {
    VxStringView const right(b);
    return concatenate(a.m_text, a.m_length, right.data(), right.size());
  }
  friend VxStringGeneric operator+(char const *a, VxStringGeneric const &b) {
    VxStringView const left(a);
    return concatenate(left.data(), left.size(), b.m_text, b.m_length);
  }

  friend bool operator==(VxStringGeneric const &a, VxStringGeneric const &b) noexcept {
    return sameBytes(a.view(), b.view());
  }
  friend bool operator==(VxStringGeneric const &a, char const *b) noexcept { return sameBytes(a.view(), b); }
  friend bool operator==(char const *a, VxStringGeneric const &b) noexcept { return sameBytes(a, b.view()); }
  friend bool operator!=(VxStringGeneric const &a, VxStringGeneric const &b) noexcept { return !(a == b); }
  friend bool operator!=(VxStringGeneric const &a, char const *b) noexcept { return !(a == b); }
  friend bool operator!=(char const *a, VxStringGeneric const &b) noexcept { return !(a == b); }
  // Byte order; on a common prefix the shorter string comes first.
  friend bool operator<(VxStringGeneric const &a, VxStringGeneric const &b) noexcept {
    return a.view().compare(b.view()) < 0;
  }

  friend std::ostream &operator<<(std::ostream &out, VxStringGeneric const &text) {
    return out << text.view();
  }

 private:
  static constexpr char s_emptyText[1] = {'\0'};

  static bool sameBytes(VxStringView a, VxStringView b) noexcept {
    return a.size() == b.size() && (a.size() == 0 || std::memcmp(a.data(), b.data(), a.size()) == 0);
  }
  // Copies up to n bytes or up to the first NUL, zeroes the rest, and answers how many were copied.
  static std::uint64_t boundedCopy(char *to, char const *from, std::uint64_t n) noexcept {
    if (n == 0) return 0;
    void const *nul = std::memchr(from, '\0', n);
    std::uint64_t const copied = nul ? static_cast<std::uint64_t>(static_cast<char const *>(nul) - from) : n;
    std::memcpy(to, from, copied);
    std::memset(to + copied, 0, n - copied);
    return copied;
  }
  void release() noexcept {
    if (m_data) Policy::destruct(m_data);
  }
  void becomeEmpty() noexcept {
    m_data = nullptr;
    m_length = 0;
    m_text = s_emptyText;
  }

  Data *m_data = nullptr;
  std::uint64_t m_length = 0;
  char const *m_text = s_emptyText;
};

using VxString = VxStringGeneric<Internal::VxStringDataSharable>;

}  // namespace Tarvex::VantraCore

template <class Policy>
struct std::hash<Tarvex::VantraCore::VxStringGeneric<Policy>> {
  std::size_t operator()(Tarvex::VantraCore::VxStringGeneric<Policy> const &text) const noexcept {
    return Tarvex::VantraCore::Internal::fnv1aHash(text.view());
  }
};
