#pragma once

#include <VantraCore/Int128.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace vantracore {

__extension__ typedef __int128 Ticks;  // femtoseconds, as the library counts them

Ticks ticksOf(Tarvex::VantraCore::Internal::int128_t const &count);
Tarvex::VantraCore::Internal::int128_t countOf(Ticks ticks);

// NumPy's time units from femtoseconds to seconds, each a thousand times the one before.
struct TimeUnit {
  char const *name;
  Ticks ticks;
};
inline constexpr std::size_t timeUnitCount = 6;
TimeUnit const &timeUnit(std::size_t index);

// Reading: the finest of the units above in which every count is a whole number that fits 64 bits.
// A count no unit holds so throws std::range_error naming it, `what` ("duration", "timestamp") first.
std::size_t exactTimeUnit(Ticks const *counts, std::size_t count, char const *what);

// Writing: the femtoseconds of one step of a NumPy unit ("ns", "D"), `multiple` steps at a time, as a
// fraction whose denominator is 1 but for attoseconds. Units of no fixed length ("Y", "M") throw
// std::invalid_argument.
struct TicksPerStep {
  Ticks numerator;
  Ticks denominator;
};
TicksPerStep ticksPerStep(std::string const &unit, std::int64_t multiple);
// One NumPy count in femtoseconds; throws std::invalid_argument for NaT and for a count that is no
// whole number of femtoseconds.
Ticks stepsToTicks(std::int64_t steps, TicksPerStep const &scale, char const *what);

}  // namespace vantracore
