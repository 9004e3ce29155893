#include <VantraCore/JsonFormatterMidFidelity.h>

#include <formatting/ForeignJsonReader.h>
#include <formatting/JsonDocument.h>

#include <utility>

namespace Tarvex::VantraCore {

VxString JsonFormatterMidFidelity::serialize(PropertyNode node, int indent, JsonNumberText numbers) {
  return JsonFormatter::serialize(std::move(node), indent, numbers);
}

void JsonFormatterMidFidelity::serialize(PropertyNode node, std::ostream &out, int indent,
                                         JsonNumberText numbers) {
  JsonFormatter::serialize(std::move(node), out, indent, numbers);
}

VxString JsonFormatterMidFidelity::serialize(FPropertyNode node, int indent, JsonNumberText numbers) {
  return JsonFormatter::serialize(std::move(node), indent, numbers);
}

void JsonFormatterMidFidelity::serialize(FPropertyNode node, std::ostream &out, int indent,
                                         JsonNumberText numbers) {
  JsonFormatter::serialize(std::move(node), out, indent, numbers);
}

VxVariant JsonFormatterMidFidelity::deserializeVxVariant(std::istream &in, std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(in, Internal::readLenientVariant, {JsonArrays::asLists, maxFilledElements});
}

VxVariant JsonFormatterMidFidelity::deserializeVxVariant(VxString text, std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(text, Internal::readLenientVariant, {JsonArrays::asLists, maxFilledElements});
}

PropertyNode JsonFormatterMidFidelity::deserializePropertyNode(std::istream &in, JsonArrays arrays,
                                                       std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(in, Internal::readLenientNode, {arrays, maxFilledElements});
}

PropertyNode JsonFormatterMidFidelity::deserializePropertyNode(VxString text, JsonArrays arrays,
                                                       std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(text, Internal::readLenientNode, {arrays, maxFilledElements});
}

PropertyNode JsonFormatterMidFidelity::deserializePropertyNodeInPlace(VxStringView text, JsonArrays arrays,
                                                              std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(text, Internal::readLenientNode, {arrays, maxFilledElements});
}

}  // namespace Tarvex::VantraCore
