#include "TimeUnits.h"

#include <limits>
#include <stdexcept>

namespace vantracore {
namespace {

__extension__ typedef unsigned __int128 UnsignedTicks;

constexpr Ticks thousand = 1000;
constexpr TimeUnit units[timeUnitCount] = {
    {"fs", 1},
    {"ps", thousand},
    {"ns", thousand * thousand},
    {"us", thousand * thousand * thousand},
    {"ms", thousand * thousand * thousand * thousand},
    {"s", thousand * thousand * thousand * thousand * thousand},
};

std::string decimal(Ticks value) {
  UnsignedTicks magnitude = value < 0 ? -static_cast<UnsignedTicks>(value) : static_cast<UnsignedTicks>(value);
  std::string digits;
  do {
    digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(magnitude % 10)));
    magnitude /= 10;
  } while (magnitude != 0);
  return value < 0 ? "-" + digits : digits;
}

bool fits64(Ticks value) {
  return value >= std::numeric_limits<std::int64_t>::min() && value <= std::numeric_limits<std::int64_t>::max();
}

[[noreturn]] void throwUnheld(Ticks count, char const *what) {
  throw std::range_error(std::string(what) + " " + decimal(count) +
                         " fs is no 64-bit count of fs, ps, ns, us, ms or s");
}

}  // namespace

Ticks ticksOf(Tarvex::VantraCore::Internal::int128_t const &count) {
  return static_cast<Ticks>((static_cast<UnsignedTicks>(count.upper()) << 64) | count.lower());
}

Tarvex::VantraCore::Internal::int128_t countOf(Ticks ticks) {
  auto const bits = static_cast<UnsignedTicks>(ticks);
  return {static_cast<std::uint64_t>(bits >> 64), static_cast<std::uint64_t>(bits)};
}

TimeUnit const &timeUnit(std::size_t index) {
  return units[index];
}

std::size_t exactTimeUnit(Ticks const *counts, std::size_t count, char const *what) {
  // The coarsest unit any count needs to fit, then whether every count is whole in it.
  std::size_t chosen = 0;
  for (std::size_t i = 0; i < count; ++i) {
    while (chosen < timeUnitCount && !fits64(counts[i] / units[chosen].ticks))
      ++chosen;
    if (chosen == timeUnitCount) throwUnheld(counts[i], what);
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (counts[i] % units[chosen].ticks != 0) throwUnheld(counts[i], what);
  }
  return chosen;
}

TicksPerStep ticksPerStep(std::string const &unit, std::int64_t multiple) {
  constexpr Ticks second = thousand * thousand * thousand * thousand * thousand;
  Ticks numerator = 0;
  Ticks denominator = 1;
  if (unit == "W") numerator = 7 * 86400 * second;
  else if (unit == "D") numerator = 86400 * second;
  else if (unit == "h") numerator = 3600 * second;
  else if (unit == "m") numerator = 60 * second;
  else if (unit == "as") numerator = 1, denominator = thousand;
  else {
    for (TimeUnit const &known : units) {
      if (unit == known.name) numerator = known.ticks;
    }
  }
  if (numerator == 0) throw std::invalid_argument("the NumPy time unit '" + unit + "' has no fixed length");
  return {numerator * multiple, denominator};
}

Ticks stepsToTicks(std::int64_t steps, TicksPerStep const &scale, char const *what) {
  if (steps == std::numeric_limits<std::int64_t>::min())
    throw std::invalid_argument(std::string(what) + " NaT has no value to store");
  Ticks const scaled = static_cast<Ticks>(steps) * scale.numerator;
  if (scaled % scale.denominator != 0)
    throw std::invalid_argument(std::string(what) + " of " + decimal(scaled) +
                                " as is no whole number of femtoseconds");
  return scaled / scale.denominator;
}

}  // namespace vantracore
