#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>
#include <VantraCore/VxVariant.h>

#include <iosfwd>

namespace Tarvex::VantraCore {

// Variants and property trees as plain JSON, without metadata, for other programs. Stateless: every
// member is static. Number text, escaping and `indent` are those of JsonFormatter.
//
// Writing: arrays nest by dimension in logical index order, whatever their data ordering; null and
// empty variants, and every variant of a complex kind, write null; a duration writes its tick count
// (10^-15 s) as a decimal string, a timestamp the asctime text of its UTC second, line feed included.
// A custom kind throws std::runtime_error "unknown type".
//
// Reading: numbers become double, booleans bool, strings string. A variant is read from a scalar or an
// array nested up to 8 levels, whose first elements decide kind and shape; an array that does not fit
// throws std::runtime_error "VxVariant cannot be created because of heterogeneous data format". An
// object, an empty array or one whose first element is null reads as the null variant. A tree reads
// every array as a list and every object as a map.
class VANTRACORE_API JsonFormatterLowFidelity {
 public:
  JsonFormatterLowFidelity() noexcept = default;
  JsonFormatterLowFidelity(JsonFormatterLowFidelity const &) noexcept = default;
  JsonFormatterLowFidelity &operator=(JsonFormatterLowFidelity const &) noexcept { return *this; }
  JsonFormatterLowFidelity &operator=(JsonFormatterLowFidelity &&) noexcept { return *this; }

  // ---- writing ----
  template <class Storage>
  static VxString serialize(VxVariantGeneric<Storage> value, int indent = -1,
                            JsonNumberText numbers = JsonNumberText::fifteenDigits) {
    return variantText(value, indent, numbers);
  }
  template <class Storage>
  static void serialize(VxVariantGeneric<Storage> value, std::ostream &out, int indent = -1,
                        JsonNumberText numbers = JsonNumberText::fifteenDigits) {
    variantToStream(value, out, indent, numbers);
  }
  static VxString serialize(PropertyNode node, int indent = -1,
                            JsonNumberText numbers = JsonNumberText::fifteenDigits);
  static void serialize(PropertyNode node, std::ostream &out, int indent = -1,
                        JsonNumberText numbers = JsonNumberText::fifteenDigits);
  static VxString serialize(FPropertyNode node, int indent = -1,
                            JsonNumberText numbers = JsonNumberText::fifteenDigits);
  static void serialize(FPropertyNode node, std::ostream &out, int indent = -1,
                        JsonNumberText numbers = JsonNumberText::fifteenDigits);
  // A block at a time, as JsonFormatter's.
  static void serializeInBlocks(PropertyNode const &node, std::ostream &out, int indent = -1,
                                JsonNumberText numbers = JsonNumberText::fifteenDigits);

  // ---- reading ----
  // Syntax errors as JsonFormatter.
  static VxVariant deserializeVxVariant(std::istream &in);
  static VxVariant deserializeVxVariant(VxString text);
  // `arrays` says how a tree takes plain arrays; asLists is the reading described above.
  static PropertyNode deserializePropertyNode(std::istream &in, JsonArrays arrays = JsonArrays::asLists);
  static PropertyNode deserializePropertyNode(VxString text, JsonArrays arrays = JsonArrays::asLists);
  // Bytes that stay the caller's, read without a copy, as JsonFormatter's.
  static PropertyNode deserializePropertyNodeInPlace(VxStringView text, JsonArrays arrays = JsonArrays::asLists);

 private:
  // The templates above for each variant flavour.
  static VxString variantText(VxVariant const &value, int indent, JsonNumberText numbers);
  static VxString variantText(VxVariantAbi const &value, int indent, JsonNumberText numbers);
  static void variantToStream(VxVariant const &value, std::ostream &out, int indent, JsonNumberText numbers);
  static void variantToStream(VxVariantAbi const &value, std::ostream &out, int indent,
                              JsonNumberText numbers);
};

}  // namespace Tarvex::VantraCore
