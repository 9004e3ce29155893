#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>
#include <VantraCore/VxVariant.h>

#include <cstdint>
#include <iosfwd>

namespace Tarvex::VantraCore {

// How the writers of every fidelity print a floating number. fifteenDigits: 15 significant digits, a
// float widened to double first; a double that needs 16 or 17 digits does not read back exactly.
// shortestRoundTrip: the shortest text that reads back to the same double, or for a float to the same
// float. Either way zero prints as "0.0" or "-0.0", a non-finite number as null, integers exactly.
enum class JsonNumberText : std::uint8_t { fifteenDigits, shortestRoundTrip };

// How the low- and mid-fidelity tree readers take a plain JSON array. asLists: a list of nodes, one per
// item. asVariants: an array whose items are all numbers, all booleans or all strings, or a rectangular
// nesting of such arrays up to 8 deep, becomes one array variant, row-major, shaped by the nesting, of
// kind int64 when every number is an integer that fits it, double otherwise, bool or string; every
// other array (empty, mixed, ragged, holding objects or nulls) stays a list.
enum class JsonArrays : std::uint8_t { asLists, asVariants };

// The most elements that the arrays of one document may declare beyond the items they carry (a
// `_dimensions_` larger than `_data_`, zero-filled), summed over the document. Beyond it the full- and
// mid-fidelity readers throw std::length_error naming the shape, before allocating it. For documents
// from hosts that are not trusted; the default sets no bound.
inline constexpr std::uint64_t jsonUnboundedFill = ~std::uint64_t(0);

// Variants and property trees as JSON documents that keep the element kind, shape, data order and
// data. Stateless: every member is static.
//
// indent < 0 gives compact text; indent >= 0 puts every member and element on a line of its own,
// indented by `indent` spaces per level, with one blank behind each colon. The stream forms build the
// whole text first, so a failure leaves the stream untouched. Failures: std::logic_error "Cannot
// serialze custom types", std::runtime_error "unknown type" / "not a numeric type" / "Data type
// mismatch, cannot provide iterable container".
class VANTRACORE_API JsonFormatter {
 public:
  JsonFormatter() noexcept = default;
  JsonFormatter(JsonFormatter const &) noexcept = default;
  JsonFormatter &operator=(JsonFormatter const &) noexcept { return *this; }
  JsonFormatter &operator=(JsonFormatter &&) noexcept { return *this; }

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
  // The same text, handed to the stream a block of about 1 MiB at a time as it is written: a large
  // document's text is never held whole. A failure part of the way leaves the blocks before it
  // written.
  static void serializeInBlocks(PropertyNode const &node, std::ostream &out, int indent = -1,
                                JsonNumberText numbers = JsonNumberText::fifteenDigits);

  // ---- reading ----
  // The strict readers of the documents above; each parses the whole input, which must hold exactly
  // one JSON value. Syntax errors and nesting deeper than 1000 levels throw std::invalid_argument
  // "parse error ...", a stream not good at the start "stream error"; a wrong JSON type throws
  // std::domain_error "type must be number, but is null" and the like.
  static VxVariant deserializeVxVariant(std::istream &in, std::uint64_t maxFilledElements = jsonUnboundedFill);
  static VxVariant deserializeVxVariant(VxString text, std::uint64_t maxFilledElements = jsonUnboundedFill);
  static PropertyNode deserializePropertyNode(std::istream &in,
                                              std::uint64_t maxFilledElements = jsonUnboundedFill);
  static PropertyNode deserializePropertyNode(VxString text, std::uint64_t maxFilledElements = jsonUnboundedFill);
  // The same reading of bytes that stay the caller's, without a copy: for a host whose text lives in
  // memory of its own. The bytes must not change until the call returns; the tree does not refer to
  // them. The VxString forms give their text back as soon as it is parsed, when they hold the only
  // reference, so a text moved into them is not resident while the tree is built.
  static PropertyNode deserializePropertyNodeInPlace(VxStringView text,
                                                     std::uint64_t maxFilledElements = jsonUnboundedFill);

 private:
  // The templates above for each variant flavour.
  static VxString variantText(VxVariant const &value, int indent, JsonNumberText numbers);
  static VxString variantText(VxVariantAbi const &value, int indent, JsonNumberText numbers);
  static void variantToStream(VxVariant const &value, std::ostream &out, int indent, JsonNumberText numbers);
  static void variantToStream(VxVariantAbi const &value, std::ostream &out, int indent,
                              JsonNumberText numbers);
};

}  // namespace Tarvex::VantraCore
