#pragma once

#include <chrono>
#include <ratio>
#include <type_traits>

#include <VantraCore/Int128.h>

namespace Tarvex::VantraCore {

// A signed 128-bit count of femtoseconds. std::chrono takes Internal::int128_t as its count type
// through its integer operators and the numeric_limits of <VantraCore/Int128.h>.
using Duration = std::chrono::duration<Internal::int128_t, std::femto>;

// Femtoseconds since the epoch of the system clock.
using Timestamp = std::chrono::time_point<std::chrono::system_clock, Duration>;

static_assert(sizeof(Duration) == 16 && sizeof(Timestamp) == 16, "one 128-bit count, nothing added");
static_assert(std::is_trivially_copyable<Duration>::value && std::is_trivially_copyable<Timestamp>::value,
              "time elements are copied as raw memory");

}  // namespace Tarvex::VantraCore
