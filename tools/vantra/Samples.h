#pragma once

#include "Errors.h"

#include <VantraCore/VantraCore.h>
#include <VantraCore/detail/ElementKinds.h>

#include <cstdint>
#include <string>

namespace vantra {

// Calls `f(position, number)` for every element of `value` in storage order, each as a double: real
// numbers, durations and timestamps (in seconds since `origin`, the epoch by default). Any other
// kind throws ToolError naming `where`.
template <class F>
void forEachNumber(Tarvex::VantraCore::VxVariant const &value, std::string const &where, F &&f,
                   Tarvex::VantraCore::Timestamp origin = Tarvex::VantraCore::Timestamp()) {
  using namespace Tarvex::VantraCore;
  WellKnownType const kind = value.wellKnownDataType();
  auto const each = [&](auto const *data, auto &&asDouble) {
    std::uint64_t const count = value.numberOfElements();
    for (std::uint64_t i = 0; i < count; ++i)
      f(i, asDouble(data[i]));
  };
  auto const seconds = [](Duration span) {
    SplitSeconds const split = splitSeconds(span.count());
    return static_cast<double>(split.seconds) +
           static_cast<double>(static_cast<std::int64_t>(split.subseconds)) / 1e15;
  };
  if (kind == wellKnownTypeOf<Duration>())
    return each(value.constStoredData<Duration>(), seconds);
  if (kind == wellKnownTypeOf<Timestamp>())
    return each(value.constStoredData<Timestamp>(), [&](Timestamp t) { return seconds(t - origin); });
  if (!isNumberKind(kind) || isComplexKind(kind))
    throw ToolError(where + " holds " + (value.isNull() ? std::string("null") : std::string(kind.toString())) +
                    " values, not real numbers");
  Internal::dispatchNumericType(kind, [&](auto tag) {
    using T = typename decltype(tag)::type;
    if constexpr (!isComplexElement<T>)
      each(value.constStoredData<T>(), [](T element) { return static_cast<double>(element); });
  });
}

}  // namespace vantra
