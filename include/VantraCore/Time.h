#pragma once

#include <chrono>
#include <cstdint>
#include <ratio>
#include <type_traits>

#include <VantraCore/Int128.h>

namespace Tarvex::VantraCore {

// A signed 128-bit count of femtoseconds. std::chrono takes Internal::int128_t as its count type
// through its integer operators and the numeric_limits of <VantraCore/Int128.h>.
using Duration = std::chrono::duration<Internal::int128_t, std::femto>;

// Femtoseconds since the epoch of the system clock.
using Timestamp = std::chrono::time_point<std::chrono::system_clock, Duration>;

// 10^15 (0x38D7EA4C68000): ticks of a Duration per second.
inline constexpr std::int64_t femtosecondsPerSecond = 1000000000000000;

// A count of femtoseconds as whole seconds and the femtoseconds after them.
struct SplitSeconds {
  std::int64_t seconds;
  Internal::int128_t subseconds;
  // False when the whole seconds do not fit 64 bits; `seconds` then keeps the quotient's low bits and
  // `subseconds` is what the count holds beyond them, out of range.
  bool exact;
};

// The seconds rounded down, so that the subseconds lie in [0, 10^15) for every count whose seconds
// fit 64 bits.
inline SplitSeconds splitSeconds(Internal::int128_t const &count) {
  Internal::int128_t const perSecond(femtosecondsPerSecond);
  auto seconds = static_cast<std::int64_t>(count / perSecond);
  Internal::int128_t rest = count - Internal::int128_t(seconds) * perSecond;
  if (seconds < 1 && rest < Internal::int128_t(0)) {
    // Wraps rather than overflows at the least 64-bit value; `exact` tells.
    seconds = static_cast<std::int64_t>(static_cast<std::uint64_t>(seconds) - 1);
    rest = perSecond - Internal::int128_t(rest.magnitude());
  }
  bool const exact = !(rest < Internal::int128_t(0)) && rest < perSecond &&
                     Internal::int128_t(seconds) * perSecond + rest == count;
  return {seconds, rest, exact};
}

static_assert(sizeof(Duration) == 16 && sizeof(Timestamp) == 16, "one 128-bit count, nothing added");
static_assert(std::is_trivially_copyable<Duration>::value && std::is_trivially_copyable<Timestamp>::value,
              "time elements are copied as raw memory");

}  // namespace Tarvex::VantraCore
