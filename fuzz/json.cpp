// The JSON readers of the three fidelities, variant and tree, on arbitrary text. Whatever a reader accepts
// its writer must write, and that text must read back to a value that writes the same text again. Failures
// must be standard exceptions, never crashes.
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>
#include <VantraCore/Unit.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <string>

using namespace Tarvex::VantraCore;

namespace {

// A document may ask for any shape, and the readers allocate it as asked; the sanitizers end the run
// on an allocation beyond memory instead of throwing std::bad_alloc. Such inputs are skipped.
constexpr double largestShape = 1 << 22;

bool asksForHugeShape(nlohmann::json const &value) {
  if (value.is_object()) {
    auto const dims = value.find("_dimensions_");
    if (dims != value.end() && dims->is_array()) {
      double product = 1;
      for (nlohmann::json const &size : *dims)
        if (size.is_number()) product *= std::abs(size.get<double>());
      if (product > largestShape) return true;
    }
  }
  if (value.is_structured())
    for (nlohmann::json const &item : value)
      if (asksForHugeShape(item)) return true;
  return false;
}

// Runs read, then write, read, write; the two written texts must agree.
template <class Formatter, class Read>
void roundTrip(VxString const &text, Read read) {
  VxString first;
  try {
    first = Formatter::serialize(read(text));
  } catch (std::exception const &) {
    return;
  }
  VxString second;
  try {
    second = Formatter::serialize(read(first));
  } catch (std::exception const &) {
    std::abort();
  }
  if (second != first) std::abort();
}

// A unit stored in a document is read from the tree: whatever the tree holds, it fails by exception.
void storedUnit(PropertyNode const &tree) {
  using Tarvex::VantraCore::Experimental::ReferenceTypeSemantics;
  using Tarvex::VantraCore::Experimental::Unit;
  try {
    Unit const unit(tree);
    static_cast<void>(unit.getSiUnits(ReferenceTypeSemantics()).size() +
                      unit.getDisplayUnit(ReferenceTypeSemantics()).size() +
                      unit.getUnitTypeReferenceString(ReferenceTypeSemantics()).size() +
                      unit.getUnitsLabel(ReferenceTypeSemantics()).size());
    static_cast<void>(unit.convertTo(unit, 1.0) + unit.getScale() + unit.getOffset() + unit.getLogMultiplier());
  } catch (std::exception const &) {
  }
}

// The stream reader must read what the text reader reads, and the frozen tree must write what the
// mutable one writes, to a text and to a stream alike; a unit is read from the tree.
template <class Formatter>
void streamsAndFrozen(VxString const &text) {
  PropertyNode tree;
  try {
    tree = Formatter::deserializePropertyNode(text);
  } catch (std::exception const &) {
    return;
  }
  std::istringstream in(std::string(text.data(), text.size()));
  VxString const written = Formatter::serialize(tree);
  if (Formatter::serialize(Formatter::deserializePropertyNode(in)) != written) std::abort();
  storedUnit(tree);
  FPropertyNode const frozen(tree);
  std::ostringstream out;
  Formatter::serialize(frozen, out, 1);
  if (Formatter::serialize(frozen) != written || VxString(out.str().data(), out.str().size()) != Formatter::serialize(tree, 1))
    std::abort();
}

template <class Formatter>
void readerPair(VxString const &text) {
  roundTrip<Formatter>(text, [](VxString const &t) { return Formatter::deserializeVxVariant(t); });
  roundTrip<Formatter>(text, [](VxString const &t) { return Formatter::deserializePropertyNode(t); });
  streamsAndFrozen<Formatter>(text);
}

// What the full-fidelity reader accepts, variant or tree, the plainer writers must write as JSON.
void plainerWriters(VxString const &text) {
  PropertyNode tree;
  VxVariant value;
  try {
    tree = JsonFormatter::deserializePropertyNode(text);
    value = JsonFormatter::deserializeVxVariant(text);
  } catch (std::exception const &) {
  }
  VxString const written[] = {JsonFormatterMidFidelity::serialize(tree), JsonFormatterLowFidelity::serialize(tree),
                              JsonFormatterMidFidelity::serialize(value), JsonFormatterLowFidelity::serialize(value, 1)};
  for (VxString const &json : written)
    if (!nlohmann::json::accept(json.data(), json.data() + json.size())) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  VxString const text(reinterpret_cast<char const *>(data), size);
  nlohmann::json const parsed = nlohmann::json::parse(data, data + size, nullptr, false);
  if (!parsed.is_discarded() && asksForHugeShape(parsed)) return 0;
  try {
    readerPair<JsonFormatter>(text);
    readerPair<JsonFormatterMidFidelity>(text);
    readerPair<JsonFormatterLowFidelity>(text);
    plainerWriters(text);
  } catch (...) {
    std::abort();
  }
  return 0;
}
