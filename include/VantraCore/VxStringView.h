#pragma once

#include <VantraCore/Export.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <ostream>
#include <string>

namespace Tarvex::VantraCore {

// A non-owning run of bytes: length, then data pointer. The text must outlive the view. Bytes, not
// characters: nothing here looks at UTF-8 structure. Failures throw std::out_of_range with
// "VxStringView range error".
class VANTRACORE_API VxStringView {
 public:
  using value_type = char;
  using size_type = std::uint64_t;
  using const_pointer = char const *;
  using const_reference = char const &;
  using const_iterator = char const *;
  using iterator = const_iterator;
  using const_reverse_iterator = std::reverse_iterator<const_iterator>;
  using reverse_iterator = const_reverse_iterator;

  static constexpr std::uint64_t npos = 0xFFFFFFFFFFFFFFFFull;

  constexpr VxStringView() noexcept = default;
  VxStringView(std::string const &text) noexcept : m_length(text.size()), m_data(text.data()) {}
  // Also serves char *; a null pointer gives the empty view.
  VxStringView(char const *text) noexcept : m_length(text ? std::strlen(text) : 0), m_data(text) {}
  constexpr VxStringView(char const *text, std::uint64_t length) noexcept : m_length(length), m_data(text) {}

  // Keeps embedded NULs.
  operator std::string() const { return to_string(); }
  std::string to_string() const { return m_length ? std::string(m_data, m_length) : std::string(); }

  char const &operator[](std::uint64_t pos) const noexcept { return m_data[pos]; }
  char const &at(std::uint64_t pos) const;
  char const &front() const noexcept { return m_data[0]; }
  char const &back() const noexcept { return m_data[m_length - 1]; }
  char const *data() const noexcept { return m_data; }

  const_iterator begin() const noexcept { return m_data; }
  const_iterator cbegin() const noexcept { return m_data; }
  const_iterator end() const noexcept { return m_data + m_length; }
  const_iterator cend() const noexcept { return m_data + m_length; }
  const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
  const_reverse_iterator crbegin() const noexcept { return const_reverse_iterator(end()); }
  const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }
  const_reverse_iterator crend() const noexcept { return const_reverse_iterator(begin()); }

  std::uint64_t size() const noexcept { return m_length; }
  std::uint64_t length() const noexcept { return m_length; }
  bool empty() const noexcept { return m_length == 0; }
  static constexpr std::uint64_t max_size() noexcept { return npos; }

  void remove_prefix(std::uint64_t n) noexcept {
    m_length -= n;
    m_data += n;
  }
  void remove_suffix(std::uint64_t n) noexcept { m_length -= n; }
  void swap(VxStringView &other) noexcept {
    VxStringView kept = *this;
    *this = other;
    other = kept;
  }

  std::uint64_t copy(char *dest, std::uint64_t count, std::uint64_t pos = 0) const;
  VxStringView substr(std::uint64_t pos = 0, std::uint64_t count = npos) const;

  // Negative, zero or positive; a differing byte gives the byte difference as it stands.
  std::int32_t compare(VxStringView other) const noexcept;
  std::int32_t compare(char const *s) const noexcept;
  std::int32_t compare(std::uint64_t pos, std::uint64_t count, VxStringView other) const;
  std::int32_t compare(std::uint64_t pos, std::uint64_t count, char const *s) const;
  std::int32_t compare(std::uint64_t pos, std::uint64_t count, char const *s, std::uint64_t n) const;
  std::int32_t compare(std::uint64_t pos1, std::uint64_t count1, VxStringView other, std::uint64_t pos2,
                       std::uint64_t count2) const;

  // Searches answer a position or npos and never throw. A null char const * is an empty needle.
  std::uint64_t find(char c, std::uint64_t pos = 0) const noexcept;
  std::uint64_t find(char const *s, std::uint64_t pos, std::uint64_t n) const noexcept;
  std::uint64_t find(char const *s, std::uint64_t pos = 0) const noexcept;
  std::uint64_t find(VxStringView v, std::uint64_t pos = 0) const noexcept;

  std::uint64_t rfind(char c, std::uint64_t pos = npos) const noexcept;
  std::uint64_t rfind(char const *s, std::uint64_t pos, std::uint64_t n) const noexcept;
  std::uint64_t rfind(char const *s, std::uint64_t pos = npos) const noexcept;
  std::uint64_t rfind(VxStringView v, std::uint64_t pos = npos) const noexcept;

  std::uint64_t find_first_of(char c, std::uint64_t pos = 0) const noexcept;
  std::uint64_t find_first_of(char const *s, std::uint64_t pos, std::uint64_t n) const noexcept;
  std::uint64_t find_first_of(char const *s, std::uint64_t pos = 0) const noexcept;
  std::uint64_t find_first_of(VxStringView v, std::uint64_t pos = 0) const noexcept;

  std::uint64_t find_first_not_of(char c, std::uint64_t pos = 0) const noexcept;
  std::uint64_t find_first_not_of(char const *s, std::uint64_t pos, std::uint64_t n) const noexcept;
  std::uint64_t find_first_not_of(char const *s, std::uint64_t pos = 0) const noexcept;
  std::uint64_t find_first_not_of(VxStringView v, std::uint64_t pos = 0) const noexcept;

  std::uint64_t find_last_of(char c, std::uint64_t pos = npos) const noexcept;
  std::uint64_t find_last_of(char const *s, std::uint64_t pos, std::uint64_t n) const noexcept;
  std::uint64_t find_last_of(char const *s, std::uint64_t pos = npos) const noexcept;
  std::uint64_t find_last_of(VxStringView v, std::uint64_t pos = npos) const noexcept;

  std::uint64_t find_last_not_of(char c, std::uint64_t pos = npos) const noexcept;
  std::uint64_t find_last_not_of(char const *s, std::uint64_t pos, std::uint64_t n) const noexcept;
  std::uint64_t find_last_not_of(char const *s, std::uint64_t pos = npos) const noexcept;
  std::uint64_t find_last_not_of(VxStringView v, std::uint64_t pos = npos) const noexcept;

 private:
  static int char_compare_fixed(char const *a, char const *b, std::uint64_t n) noexcept;
  static bool contains(VxStringView view, char c) noexcept;
  // Hidden: shared loops of the set searches, not part of the exported surface.
  VANTRACORE_HIDDEN std::uint64_t scanForward(VxStringView set, std::uint64_t pos, bool inSet) const noexcept;
  VANTRACORE_HIDDEN std::uint64_t scanBackward(VxStringView set, std::uint64_t pos,
                                               bool inSet) const noexcept;

  std::uint64_t m_length = 0;
  char const *m_data = nullptr;
};

// Text with static storage: length as the constructor was told it, and the pointer.
class VANTRACORE_API VxStringLiteral {
 public:
  constexpr VxStringLiteral(char const *text, std::uint64_t length) noexcept
      : m_length(length), m_data(text) {}

  constexpr operator char const *() const noexcept { return m_data; }
  // Measures the text again and ignores the stored length, so an embedded NUL ends it.
  operator std::string() const { return m_data ? std::string(m_data) : std::string(); }

  constexpr std::uint64_t length() const noexcept { return m_length; }
  constexpr char const *data() const noexcept { return m_data; }

 private:
  std::uint64_t m_length;
  char const *m_data;
};

inline bool operator==(VxStringView a, VxStringView b) noexcept {
  return a.compare(b) == 0;
}
inline bool operator!=(VxStringView a, VxStringView b) noexcept {
  return a.compare(b) != 0;
}
inline bool operator<(VxStringView a, VxStringView b) noexcept {
  return a.compare(b) < 0;
}

inline std::ostream &operator<<(std::ostream &out, VxStringView text) {
  return out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace Tarvex::VantraCore
