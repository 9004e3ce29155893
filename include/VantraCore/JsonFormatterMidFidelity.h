#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>
#include <VantraCore/VxVariant.h>

#include <cstdint>
#include <iosfwd>
#include <utility>

namespace Tarvex::VantraCore {

// Writes the documents of JsonFormatter, and reads them leniently: missing metadata is made up for.
// Stateless: every member is static.
//
// Reading a variant: an object must have `_data_` (else std::runtime_error "Cannot deserialize JSON
// object to VxVariant without VxVariant metadata."); a missing `_wellknowntype_` is inferred from the
// data (numbers "double", objects with "re"/"im" "complexDouble", with "seconds"/"subseconds"
// "timestamp"), a missing `_dimensions_` is the item count of `_data_`, a missing `_dataorder_`
// row-major. Any other JSON value is read as JsonFormatterLowFidelity reads it. Reading a tree: bare
// numbers, strings and booleans are values, arrays lists, objects with `_data_` values, others maps.
class VANTRACORE_API JsonFormatterMidFidelity {
 public:
  JsonFormatterMidFidelity() noexcept = default;
  JsonFormatterMidFidelity(JsonFormatterMidFidelity const &) noexcept = default;
  JsonFormatterMidFidelity &operator=(JsonFormatterMidFidelity const &) noexcept { return *this; }
  JsonFormatterMidFidelity &operator=(JsonFormatterMidFidelity &&) noexcept { return *this; }

  // ---- writing: exactly as JsonFormatter ----
  template <class Storage>
  static VxString serialize(VxVariantGeneric<Storage> value, int indent = -1,
                            JsonNumberText numbers = JsonNumberText::fifteenDigits) {
    return JsonFormatter::serialize(std::move(value), indent, numbers);
  }
  template <class Storage>
  static void serialize(VxVariantGeneric<Storage> value, std::ostream &out, int indent = -1,
                        JsonNumberText numbers = JsonNumberText::fifteenDigits) {
    JsonFormatter::serialize(std::move(value), out, indent, numbers);
  }
  static VxString serialize(PropertyNode node, int indent = -1,
                            JsonNumberText numbers = JsonNumberText::fifteenDigits);
  static void serialize(PropertyNode node, std::ostream &out, int indent = -1,
                        JsonNumberText numbers = JsonNumberText::fifteenDigits);
  static VxString serialize(FPropertyNode node, int indent = -1,
                            JsonNumberText numbers = JsonNumberText::fifteenDigits);
  static void serialize(FPropertyNode node, std::ostream &out, int indent = -1,
                        JsonNumberText numbers = JsonNumberText::fifteenDigits);

  // ---- reading ----
  // Syntax errors as JsonFormatter; a wrong JSON type of a metadata member throws std::domain_error
  // "type must be string, but is number" and the like, a bad `_dataorder_` std::runtime_error
  // "dataOrder value: '<value>' is not recognized in conversion from JSON.".
  // `maxFilledElements` as in JsonFormatter; `arrays` says how a tree takes plain arrays.
  static VxVariant deserializeVxVariant(std::istream &in, std::uint64_t maxFilledElements = jsonUnboundedFill);
  static VxVariant deserializeVxVariant(VxString text, std::uint64_t maxFilledElements = jsonUnboundedFill);
  static PropertyNode deserializePropertyNode(std::istream &in, JsonArrays arrays = JsonArrays::asLists,
                                              std::uint64_t maxFilledElements = jsonUnboundedFill);
  static PropertyNode deserializePropertyNode(VxString text, JsonArrays arrays = JsonArrays::asLists,
                                              std::uint64_t maxFilledElements = jsonUnboundedFill);
  // Bytes that stay the caller's, read without a copy, as JsonFormatter's.
  static PropertyNode deserializePropertyNodeInPlace(VxStringView text, JsonArrays arrays = JsonArrays::asLists,
                                                     std::uint64_t maxFilledElements = jsonUnboundedFill);
};

}  // namespace Tarvex::VantraCore
