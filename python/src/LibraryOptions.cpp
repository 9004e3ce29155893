#include "LibraryOptions.h"

#include "Errors.h"

#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <stdexcept>

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

// Numbers are written at 15 significant digits only, until the writers offer the shortest round-trip
// text (JsonNumberText).
VxString writeDocument(PropertyNode const &node, Fidelity fidelity, int indent, NumberText numbers) {
  if (numbers == NumberText::roundTrip)
    throw NotSupportedYet("numbers=\"roundtrip\" needs a library that writes shortest round-trip numbers; "
                          "pass numbers=\"15\"");
  if (fidelity == Fidelity::low) return JsonFormatterLowFidelity::serialize(node, indent);
  return JsonFormatter::serialize(node, indent);
}

// The variant conversion leaves values alone when the two SI texts are equal (degrees Celsius and
// kelvin share "K"); a source text that no unit has makes it apply the formula every time. To be
// replaced by Unit::convertElements.
VxVariant convertElements(Unit const &from, Unit const &to, VxVariant const &values) {
  if (!from.isCommensurable(to)) return from.convertTo(to, values);  // throws the library's message
  Unit source = from;
  source.setSiUnits(VxString("\x01"));
  try {
    return source.convertTo(to, values);
  } catch (std::runtime_error const &) {
    throw std::runtime_error("Failed convering units from " + from.getSiUnits().toStdString() + " to " +
                             to.getSiUnits().toStdString());
  }
}

}  // namespace vantracore
