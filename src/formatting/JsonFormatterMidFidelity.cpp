#include <VantraCore/JsonFormatterMidFidelity.h>

#include <formatting/ForeignJsonReader.h>
#include <formatting/JsonDocument.h>

#include <utility>

namespace Tarvex::VantraCore {

VxString JsonFormatterMidFidelity::serialize(PropertyNode node, int indent) {
  return JsonFormatter::serialize(std::move(node), indent);
}

void JsonFormatterMidFidelity::serialize(PropertyNode node, std::ostream &out, int indent) {
  JsonFormatter::serialize(std::move(node), out, indent);
}

VxString JsonFormatterMidFidelity::serialize(FPropertyNode node, int indent) {
  return JsonFormatter::serialize(std::move(node), indent);
}

void JsonFormatterMidFidelity::serialize(FPropertyNode node, std::ostream &out, int indent) {
  JsonFormatter::serialize(std::move(node), out, indent);
}

VxVariant JsonFormatterMidFidelity::deserializeVxVariant(std::istream &in) {
  return Internal::readJsonDocument(in, Internal::readLenientVariant);
}

VxVariant JsonFormatterMidFidelity::deserializeVxVariant(VxString text) {
  return Internal::readJsonDocument(text, Internal::readLenientVariant);
}

PropertyNode JsonFormatterMidFidelity::deserializePropertyNode(std::istream &in) {
  return Internal::readJsonDocument(in, Internal::readLenientNode);
}

PropertyNode JsonFormatterMidFidelity::deserializePropertyNode(VxString text) {
  return Internal::readJsonDocument(text, Internal::readLenientNode);
}

}  // namespace Tarvex::VantraCore
