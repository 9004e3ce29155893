#pragma once

#include <VantraCore/VxString.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace Tarvex::VantraCore::Internal {

// The hash set behind InternedString: chained buckets of VxString, hashed by FNV-1a. The bucket
// count starts at 8; when size exceeds the bucket count (load factor 1.0) it grows eightfold below
// 512 buckets and twofold above. Elements are never changed or removed. Not locked: the caller
// serialises access.
class InternedStringSet {
 public:
  InternedStringSet();
  ~InternedStringSet();
  InternedStringSet(InternedStringSet const &) = delete;
  InternedStringSet &operator=(InternedStringSet const &) = delete;

  // The element equal to the text, added first if there is none; on any failure the set is as it was.
  // `hash` is fnv1aHash of the text, which a caller may work out before taking the set's lock.
  VxString const &intern(char const *text, std::uint64_t length, std::uint64_t hash) {
    VxString const *found = find(text, length, hash);
    return found != nullptr ? *found : add(text, length, hash);
  }
  VxString const &intern(char const *text, std::uint64_t length) {
    return intern(text, length, fnv1aHash(VxStringView(text, length)));
  }

  std::uint64_t size() const noexcept { return m_size; }
  std::uint64_t bucketCount() const noexcept { return m_buckets.size(); }

 private:
  struct Node {
    Node *next;
    std::uint64_t hash;
    VxString value;
  };

  // Inline, with the comparison: a name is short, and a call costs more than its bytes.
  VxString const *find(char const *text, std::uint64_t length, std::uint64_t hash) const noexcept {
    for (Node const *node = m_buckets[hash & (m_buckets.size() - 1)]; node != nullptr; node = node->next) {
      if (node->hash == hash && node->value.length() == length && sameBytes(node->value.data(), text, length))
        return &node->value;
    }
    return nullptr;
  }
  static bool sameBytes(char const *a, char const *b, std::uint64_t length) noexcept {
    if (length < sizeof(std::uint64_t)) {
      for (std::uint64_t i = 0; i < length; ++i)
        if (a[i] != b[i]) return false;
      return true;
    }
    // Whole words, the last one overlapping the one before.
    for (std::uint64_t i = 0; i + sizeof(std::uint64_t) < length; i += sizeof(std::uint64_t))
      if (word(a + i) != word(b + i)) return false;
    return word(a + length - sizeof(std::uint64_t)) == word(b + length - sizeof(std::uint64_t));
  }
  static std::uint64_t word(char const *at) noexcept {
    std::uint64_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
  }
  VxString const &add(char const *text, std::uint64_t length, std::uint64_t hash);
  void grow();

  std::vector<Node *> m_buckets;
  std::uint64_t m_size = 0;
};

}  // namespace Tarvex::VantraCore::Internal
