#include <text/InternedStringSet.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>

namespace Tarvex::VantraCore::Internal {

namespace {

constexpr std::uint64_t initialBucketCount = 8;

}  // namespace

InternedStringSet::InternedStringSet() : m_buckets(initialBucketCount, nullptr) {}

InternedStringSet::~InternedStringSet() {
  for (Node *head : m_buckets) {
    for (Node *node = head; node != nullptr;) {
      Node *next = node->next;
      delete node;
      node = next;
    }
  }
}

// Every byte up to `length` takes part in hash and equality, embedded NULs included. A name that is
// already there is found from the caller's bytes by find, with nothing allocated.
VxString const &InternedStringSet::add(char const *text, std::uint64_t length, std::uint64_t hash) {
  Node *&head = m_buckets[hash & (m_buckets.size() - 1)];
  std::unique_ptr<Node> candidate(new Node{nullptr, hash, VxString(text, length)});

  constexpr std::uint64_t maxSize = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(Node);
  if (m_size >= maxSize) throw std::length_error("list<T> too long");
  Node *added = candidate.release();
  added->next = head;
  head = added;
  ++m_size;
  if (m_size > m_buckets.size()) {
    try {
      grow();
    } catch (...) {
      // No half-added name: the new element is still the head of its bucket.
      head = added->next;
      --m_size;
      delete added;
      throw;
    }
  }
  return added->value;
}

void InternedStringSet::grow() {
  std::uint64_t const oldCount = m_buckets.size();
  std::uint64_t const newCount = oldCount < 512 ? oldCount * 8 : oldCount * 2;
  std::vector<Node *> buckets(newCount, nullptr);
  for (Node *head : m_buckets) {
    for (Node *node = head; node != nullptr;) {
      Node *next = node->next;
      Node *&newHead = buckets[node->hash & (newCount - 1)];
      node->next = newHead;
      newHead = node;
      node = next;
    }
  }
  m_buckets.swap(buckets);
}

}  // namespace Tarvex::VantraCore::Internal
