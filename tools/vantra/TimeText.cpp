#include "TimeText.h"

#include <VantraCore/VantraCore.h>

#include <cstdint>
#include <cstdio>
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

}  // namespace

std::string timestampText(Timestamp value) {
  int128_t const count = value.time_since_epoch().count();
  SplitSeconds const split = splitSeconds(count);
  std::time_t const whole = static_cast<std::time_t>(split.seconds);
  std::tm calendar{};
  if (!split.exact || gmtime_r(&whole, &calendar) == nullptr) return count.str() + " fs since the epoch";
  // Four digits for the year, as parseTimestamp reads them; a sign beyond them, as ISO 8601 expands it.
  long const year = calendar.tm_year + 1900L;
  char const *const format = year >= 0 && year <= 9999 ? "%04ld" : "%+05ld";
  char text[64];
  int const length = std::snprintf(text, sizeof text, format, year);
  std::snprintf(text + length, sizeof text - length, "-%02d-%02dT%02d:%02d:%02d", calendar.tm_mon + 1,
                calendar.tm_mday, calendar.tm_hour, calendar.tm_min, calendar.tm_sec);
  return text + fraction(static_cast<std::int64_t>(split.subseconds)) + "Z";
}

namespace {

// Days since 1970-01-01 of a proleptic Gregorian date.
std::int64_t daysFromCivil(std::int64_t year, unsigned month, unsigned day) {
  year -= month <= 2;
  std::int64_t const era = (year >= 0 ? year : year - 399) / 400;
  unsigned const yoe = static_cast<unsigned>(year - era * 400);
  unsigned const doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  unsigned const doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

// Reads `count` digits at `at`, or fails.
bool digits(std::string const &text, std::size_t &at, std::size_t count, unsigned &value) {
  value = 0;
  for (std::size_t end = at + count; at < end; ++at) {
    if (at >= text.size() || text[at] < '0' || text[at] > '9') return false;
    value = value * 10 + static_cast<unsigned>(text[at] - '0');
  }
  return true;
}

bool expect(std::string const &text, std::size_t &at, char wanted) {
  if (at >= text.size() || text[at] != wanted) return false;
  ++at;
  return true;
}

}  // namespace

bool parseTimestamp(std::string const &text, Timestamp &value) {
  std::size_t at = 0;
  unsigned year, month, day, hour, minute, second;
  if (!digits(text, at, 4, year) || !expect(text, at, '-') || !digits(text, at, 2, month) ||
      !expect(text, at, '-') || !digits(text, at, 2, day) || at >= text.size() ||
      (text[at] != 'T' && text[at] != ' ') || !digits(text, ++at, 2, hour) || !expect(text, at, ':') ||
      !digits(text, at, 2, minute) || !expect(text, at, ':') || !digits(text, at, 2, second))
    return false;
  if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60) return false;
  std::int64_t femtos = 0;
  if (at < text.size() && (text[at] == '.' || text[at] == ',')) {
    std::int64_t scale = femtosecondsPerSecond;
    for (++at; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
      scale /= 10;
      femtos += (text[at] - '0') * scale;
    }
  }
  std::int64_t offset = 0;  // seconds east of UTC; none given is UTC
  if (at < text.size() && text[at] == 'Z') {
    ++at;
  } else if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
    int const sign = text[at++] == '-' ? -1 : 1;
    unsigned zoneHours, zoneMinutes;
    if (!digits(text, at, 2, zoneHours)) return false;
    if (at < text.size() && text[at] == ':') ++at;
    if (!digits(text, at, 2, zoneMinutes)) return false;
    offset = sign * static_cast<std::int64_t>(zoneHours * 3600 + zoneMinutes * 60);
  }
  if (at != text.size()) return false;
  std::int64_t const seconds =
      daysFromCivil(year, month, day) * 86400 + hour * 3600 + minute * 60 + second - offset;
  // A zone can move the time out of the years 0000 to 9999, which timestampText would not write back
  // in a form read here.
  if (seconds < daysFromCivil(0, 1, 1) * 86400 || seconds >= daysFromCivil(10000, 1, 1) * 86400) return false;
  value = Timestamp(Duration(int128_t(seconds) * int128_t(femtosecondsPerSecond) + int128_t(femtos)));
  return true;
}

namespace {

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
