#include "LibraryOptions.h"

#include "Errors.h"

#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>


using namespace Tarvex::VantraCore;
using Experimental::Unit;

namespace vantracore {

// Plain JSON arrays become lists only, until the readers can make array variants of them (JsonArrays).
PropertyNode parseDocument(VxString const &text, Fidelity fidelity, ArrayForm arrays) {
  if (fidelity == Fidelity::full) return JsonFormatter::deserializePropertyNode(text);
  if (arrays == ArrayForm::variants)
    throw NotSupportedYet("arrays=\"variants\" needs a library that reads plain JSON arrays as arrays; "
                          "pass arrays=\"lists\"");
  if (fidelity == Fidelity::mid) return JsonFormatterMidFidelity::deserializePropertyNode(text);
  return JsonFormatterLowFidelity::deserializePropertyNode(text);
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
