#include "LibraryOptions.h"

#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <algorithm>
#include <cstdint>
#include <optional>


using namespace Tarvex::VantraCore;
using Experimental::Unit;

namespace vantracore {

PropertyNode parseDocument(VxStringView text, Fidelity fidelity, ArrayForm arrays,
                           std::optional<std::uint64_t> maxElements) {
  // A text of n bytes carries at most about n / 2 elements; by default a document may ask for sixteen
  // times that to be filled in, and never less than 16M elements.
  constexpr std::uint64_t leastCap = std::uint64_t(1) << 24;
  std::uint64_t const cap = maxElements ? *maxElements : std::max(leastCap, 8 * (text.length() + 1));
  if (fidelity == Fidelity::full) return JsonFormatter::deserializePropertyNodeInPlace(text, cap);
  JsonArrays const form = arrays == ArrayForm::variants ? JsonArrays::asVariants : JsonArrays::asLists;
  if (fidelity == Fidelity::mid) return JsonFormatterMidFidelity::deserializePropertyNodeInPlace(text, form, cap);
  return JsonFormatterLowFidelity::deserializePropertyNodeInPlace(text, form);
}

VxString writeDocument(PropertyNode const &node, Fidelity fidelity, int indent, NumberText numbers) {
  JsonNumberText const text =
      numbers == NumberText::roundTrip ? JsonNumberText::shortestRoundTrip : JsonNumberText::fifteenDigits;
  if (fidelity == Fidelity::low) return JsonFormatterLowFidelity::serialize(node, indent, text);
  return JsonFormatter::serialize(node, indent, text);
}

VxVariant convertElements(Unit const &from, Unit const &to, VxVariant const &values) {
  return from.convertElements(to, values);
}

}  // namespace vantracore
