#pragma once

#include <VantraCore/VxString.h>

#include <cstdint>
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
  VxString const &intern(char const *text, std::uint64_t length, std::uint64_t hash);
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

  void grow();

  std::vector<Node *> m_buckets;
  std::uint64_t m_size = 0;
};

}  // namespace Tarvex::VantraCore::Internal
