#pragma once

// The arithmetic of a unit conversion, for one number and for whole arrays of elements.

#include <VantraCore/Unit.h>
#include <VantraCore/VxVariant.h>

#include <cmath>
#include <cstdint>

namespace Tarvex::VantraCore::Internal::UnitConversion {

// The six numbers of a conversion from one unit to another, read once.
struct Formula {
  double fromLog, fromScale, fromOffset, toLog, toScale, toOffset;

  Formula(Experimental::Unit const &from, Experimental::Unit const &to)
      : fromLog(from.getLogMultiplier()),
        fromScale(from.getScale()),
        fromOffset(from.getOffset()),
        toLog(to.getLogMultiplier()),
        toScale(to.getScale()),
        toOffset(to.getOffset()) {}

  // A NaN multiplier counts as logarithmic; 1e-300 > y keeps a NaN y as NaN.
  template <bool FromLog, bool ToLog>
  double apply(double x) const {
    double l = x;
    if constexpr (FromLog) l = std::pow(10.0, x / fromLog);
    double const y = ((fromScale * l + fromOffset) - toOffset) / toScale;
    if constexpr (!ToLog) return y;
    return std::log10(1e-300 > y ? 1e-300 : y) * toLog;
  }

  double operator()(double x) const {
    bool const fromLogarithmic = fromLog != 0.0;
    bool const toLogarithmic = toLog != 0.0;
    if (fromLogarithmic) return toLogarithmic ? apply<true, true>(x) : apply<true, false>(x);
    return toLogarithmic ? apply<false, true>(x) : apply<false, false>(x);
  }

  // `count` numbers from `in` to `out`, which may be the same run.
  void applyAll(double const *in, double *out, std::uint64_t count) const;
};

// Every element of `value` through `formula` into a new array of the same shape and ordering: double
// elements, complex double for complex kinds, whose parts go through alike. Numbers are cast and
// converted in one pass. Throws for a null value and for elements that are no numbers.
VxVariant convertedElements(Formula const &formula, VxVariant const &value);

// The same, but an array of doubles is converted in its own block when `value` held the only reference
// to it (a copy of it otherwise).
VxVariant convertedElementsReusing(Formula const &formula, VxVariant value);

}  // namespace Tarvex::VantraCore::Internal::UnitConversion
