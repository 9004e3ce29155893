#include <units/UnitElements.h>

#include <numerics/ElementConversion.h>

#include <VantraCore/WellKnownType.h>
#include <VantraCore/detail/ElementKinds.h>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore::Internal::UnitConversion {

namespace {

template <bool FromLog, bool ToLog>
void applyEach(Formula const &formula, double const *in, double *out, std::uint64_t count) {
  Formula const f = formula;  // a local copy, so the compiler need not reload it through `out`
  for (std::uint64_t i = 0; i < count; ++i)
    out[i] = f.apply<FromLog, ToLog>(in[i]);
}

WellKnownType doublesFor(WellKnownType kind) {
  return isComplexKind(kind) ? wellKnownTypeOf<std::complex<double>>() : wellKnownTypeOf<double>();
}

// Parts of all elements: a complex element is its real part followed by its imaginary one.
std::uint64_t partsOf(WellKnownType kind, std::uint64_t count) {
  return isComplexKind(kind) ? 2 * count : count;
}

[[noreturn]] void throwNotNumbers() {
  throw std::runtime_error("elements are no numbers");
}

// Elements of other kinds are cast a cache-sized run at a time and converted while the run is still
// in cache, so the whole array is read and written once.
constexpr std::uint64_t s_castRun = 1024;

// `count` stored elements of number kind `kind` as doubles through `formula`, into `out`.
void convertRun(Formula const &formula, WellKnownType kind, void const *source, double *out,
                std::uint64_t count) {
  if (realPartKind(kind) == wellKnownTypeOf<double>()) {
    formula.applyAll(static_cast<double const *>(source), out, partsOf(kind, count));
    return;
  }
  ElementConverter const cast = elementConverter(kind, doublesFor(kind));
  std::size_t const size = elementSize(kind);
  for (std::uint64_t start = 0; start < count; start += s_castRun) {
    std::uint64_t const n = std::min(s_castRun, count - start);
    double *const run = out + partsOf(kind, start);
    if (!cast(static_cast<char const *>(source) + start * size, run, n, conversionCast)) throwNotNumbers();
    formula.applyAll(run, run, partsOf(kind, n));
  }
}

// `converted` holds doubles or complex doubles: converted in place, in a copy of its block if shared.
VxVariant convertedInPlace(Formula const &formula, VxVariant converted) {
  std::uint64_t const parts = partsOf(converted.wellKnownDataType(), converted.numberOfElements());
  if (parts == 0) return converted;
  double *const data = converted.mutableStoredData<double>();
  formula.applyAll(data, data, parts);
  return converted;
}

void requireValue(VxVariant const &value) {
  // A null value has nothing to convert and fails like a refused element.
  if (value.isNull()) throwNotNumbers();
}

}  // namespace

// The logarithm choices are made once, outside the loop, so the linear loop vectorises.
void Formula::applyAll(double const *in, double *out, std::uint64_t count) const {
  bool const fromLogarithmic = fromLog != 0.0;
  bool const toLogarithmic = toLog != 0.0;
  if (fromLogarithmic)
    toLogarithmic ? applyEach<true, true>(*this, in, out, count)
                  : applyEach<true, false>(*this, in, out, count);
  else
    toLogarithmic ? applyEach<false, true>(*this, in, out, count)
                  : applyEach<false, false>(*this, in, out, count);
}

VxVariant convertedElements(Formula const &formula, VxVariant const &value) {
  requireValue(value);
  WellKnownType const kind = value.wellKnownDataType();
  // Scalars, custom holders and truth values take the variant's own conversion first; strings and
  // times fail there.
  if (value.isScalarStorage() || !isNumberKind(kind))
    return convertedInPlace(formula, value.convertTo(doublesFor(kind), conversionCast));
  ArrayDimensionsView const shape = value.dimensions();
  std::vector<std::uint64_t> const dims(shape.begin(), shape.end());
  VxVariant result = isComplexKind(kind)
                         ? VxVariant::withShape<std::complex<double>>(dims, value.dataOrdering())
                         : VxVariant::withShape<double>(dims, value.dataOrdering());
  std::uint64_t const count = result.numberOfElements();
  if (count != 0)
    convertRun(formula, kind, value.constStoredData(), result.mutableStoredData<double>(), count);
  return result;
}

VxVariant convertedElementsReusing(Formula const &formula, VxVariant value) {
  requireValue(value);
  if (value.wellKnownDataType() == doublesFor(value.wellKnownDataType()))
    return convertedInPlace(formula, std::move(value));
  return convertedElements(formula, value);
}

}  // namespace Tarvex::VantraCore::Internal::UnitConversion
