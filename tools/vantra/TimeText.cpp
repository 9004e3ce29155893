#include "TimeText.h"

#include <VantraCore/VantraCore.h>

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;
using Internal::int128_t;

namespace {

// ".25" for 250000000000000 fs; nothing for 0.
std::string fraction(std::int64_t femtos) {
  if (femtos == 0) return {};
  std::string digits = std::to_string(femtos);
  digits.insert(0, 15 - digits.size(), '0');
  digits.erase(digits.find_last_not_of('0') + 1);
  return "." + digits;
}

// The magnitude is split, not the negated count: the most negative count has no positive twin.
std::string durationText(Duration value) {
  int128_t const count = value.count();
  Internal::uint128_t const magnitude = count.magnitude();
  Internal::uint128_t const perSecond(femtosecondsPerSecond);
  std::int64_t const femtos = static_cast<std::int64_t>(magnitude % perSecond);
  return (count.isNegative() ? "-" : "") + (magnitude / perSecond).str() + fraction(femtos) + " s";
}

std::string timestampText(Timestamp value) {
  int128_t const count = value.time_since_epoch().count();
  SplitSeconds const split = splitSeconds(count);
  std::time_t const whole = static_cast<std::time_t>(split.seconds);
  std::tm calendar{};
  if (!split.exact || gmtime_r(&whole, &calendar) == nullptr) return count.str() + " fs since the epoch";
  char text[64];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &calendar);
  return text + fraction(static_cast<std::int64_t>(split.subseconds)) + "Z";
}

template <class Time, class Describe>
VxVariant asText(VxVariant const &value, Describe describe) {
  std::vector<VxString> texts;
  for (Time const &element : value.asIterable<Time>())
    texts.emplace_back(describe(element));
  if (value.isScalarStorage() && texts.size() == 1) return VxVariant(texts.front());
  ArrayDimensionsView const dims = value.dimensions();
  return VxVariant(std::move(texts), std::vector<std::uint64_t>(dims.sizes, dims.sizes + dims.count),
                   value.dataOrdering());
}

}  // namespace

PropertyNode readableTimes(PropertyNode tree) {
  switch (tree.kind()) {
    case PropertyNodeKind::Value:
      if (tree.value().isType<Duration>()) return asText<Duration>(tree.value(), durationText);
      if (tree.value().isType<Timestamp>()) return asText<Timestamp>(tree.value(), timestampText);
      break;
    case PropertyNodeKind::List:
      for (PropertyNode &item : tree.list())
        item = readableTimes(std::move(item));
      break;
    case PropertyNodeKind::Map:
      for (PropertyMapEntry &entry : tree.map())
        entry.node = readableTimes(std::move(entry.node));
      break;
    case PropertyNodeKind::Null:
      break;
  }
  return tree;
}

}  // namespace vantra
