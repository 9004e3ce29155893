#pragma once

#include <VantraCore/InternedString.h>
#include <VantraCore/PropertyNode.h>

#include <cstddef>
#include <iterator>
#include <unordered_set>
#include <utility>

// Building a map from many entries at once, in time linear in their number: a map is a flat vector
// searched key by key, which is right for a handful of keys and quadratic for a bulk build.
namespace Tarvex::VantraCore::Internal {

struct PropertyMapAccess {
  // Appends without looking for the key: the caller knows that the map does not hold it.
  static void appendDistinct(PropertyMap &map, InternedString key, PropertyNode node) {
    map.m_items.emplace_back(key, std::move(node));
  }
};

// keep(entry) for each entry whose key no earlier entry has, in order.
template <class Entries, class Keep>
void forFirstOfEachKey(Entries &entries, Keep const &keep) {
  constexpr std::size_t fewEntries = 16;
  auto const first = std::begin(entries);
  auto const last = std::end(entries);
  if (static_cast<std::size_t>(std::distance(first, last)) <= fewEntries) {
    for (auto entry = first; entry != last; ++entry) {
      auto earlier = first;
      while (earlier != entry && earlier->key != entry->key)
        ++earlier;
      if (earlier == entry) keep(*entry);
    }
    return;
  }
  std::unordered_set<InternedString> seen;
  seen.reserve(static_cast<std::size_t>(std::distance(first, last)));
  for (auto entry = first; entry != last; ++entry)
    if (seen.insert(entry->key).second) keep(*entry);
}

}  // namespace Tarvex::VantraCore::Internal
