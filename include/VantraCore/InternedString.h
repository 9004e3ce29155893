#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/VxStringView.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

namespace Tarvex::VantraCore {

namespace Internal {

// Keeps the process-wide set of interned names alive across the unordered start and end of static
// objects: the first manager to be constructed makes the set and its mutex, the last one destroyed
// tears them down. Every translation unit that includes this header owns one (see below), made
// before any of its own static names.
class VANTRACORE_API InternedStringSetManager {
 public:
  InternedStringSetManager();
  ~InternedStringSetManager();
  InternedStringSetManager(InternedStringSetManager const &) = delete;
  InternedStringSetManager &operator=(InternedStringSetManager const &) = delete;
};

static InternedStringSetManager s_internedStringSetManager;

}  // namespace Internal

// A name held once per process: equal texts share one address, so names compare by pointer. The
// text belongs to the set and stays valid until the set is torn down at module unload.
class VANTRACORE_API InternedString {
 public:
  // A null pointer is the empty name.
  InternedString(char const *text) : m_view(create(text, text ? std::strlen(text) : 0)) {}
  InternedString(char const *text, std::uint64_t length) : m_view(create(text, length)) {}
  explicit InternedString(VxStringView text) : m_view(create(text.data(), text.size())) {}

  VxStringView view() const noexcept { return m_view; }
  operator VxStringView() const noexcept { return m_view; }
  char const *data() const noexcept { return m_view.data(); }
  std::uint64_t length() const noexcept { return m_view.length(); }

  // Only the addresses are compared: equal text implies the same address.
  friend bool operator==(InternedString a, InternedString b) noexcept { return a.data() == b.data(); }
  friend bool operator!=(InternedString a, InternedString b) noexcept { return a.data() != b.data(); }

 private:
  // Finds or adds the text under the set's mutex; the view is over the set's own copy.
  static VxStringView create(char const *text, std::uint64_t length);

  VxStringView m_view;
};

}  // namespace Tarvex::VantraCore

template <>
struct std::hash<Tarvex::VantraCore::InternedString> {
  std::size_t operator()(Tarvex::VantraCore::InternedString name) const noexcept {
    return std::hash<char const *>()(name.data());
  }
};
