#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <cstdint>
#include <iosfwd>
#include <limits>

namespace Tarvex::VantraCore {

// What a person reading a console may want that the plain text leaves out. A default-made value gives
// the plain text exactly; each member changes one thing.
struct ConsoleOptions {
  static constexpr std::uint64_t allElements = std::numeric_limits<std::uint64_t>::max();

  enum class Numbers : std::uint8_t {
    stream,             // float and double through the stream's own format ("123457" at precision 6)
    significantDigits,  // at `significantDigits` digits, as printf's %g ("123456.789" at 9)
    shortest,           // the shortest text that reads back to the same value ("123456.789")
  };
  enum class Shapes : std::uint8_t {
    hidden,         // no kind, no shape
    rank2AndAbove,  // "double[2x3] [...]" for arrays of two or more dimensions
    always,         // for every variant but the null one: "int32 7", "double[3] [...]"
  };
  enum class Order : std::uint8_t {
    storage,  // the elements as stored, whatever the data ordering
    logical,  // row-major: the last index varies fastest, for either data ordering
  };
  enum class ListElements : std::uint8_t {
    fromMargin,  // each element drawn from the left margin, records running together
    indexed,     // each element an entry of its own, " [0]: ", indented like a map's
  };

  Numbers numbers = Numbers::stream;
  int significantDigits = 6;  // taken as 1 to 17
  // Elements past this many are left out and counted: "[1, 2, ... 999998 more]". Only the shown
  // elements are read or converted.
  std::uint64_t maxElements = allElements;
  Shapes shapes = Shapes::hidden;
  Order order = Order::storage;
  // In trees, a null node draws "null", an empty list "[]" and an empty map "{}" (each with its line
  // end) where they would draw nothing.
  bool showEmptyNodes = false;
  ListElements listElements = ListElements::fromMargin;
};

// Variants and property trees drawn for people on a console; not meant to be parsed back. Stateless:
// every member is static.
//
// A variant prints "null" when null, "[]" when empty, a lone element bare, and otherwise its elements
// flat in storage order as "[1, 2, 3]": strings in single quotes, complex numbers as "(re,im)", bools
// as words (the stream's boolalpha flag stays set), numbers through the stream's own format. A tree
// draws one line per map entry, "|---> 'key': " with its value; a nested map's entries follow under
// "|    `--> 'key': ", each but the first after an empty line, and the elements of a list start again
// at the left margin. Null nodes, empty lists and empty maps draw nothing.
//
// Durations and timestamps do not print: std::runtime_error with the conversion message.
//
// The overloads taking ConsoleOptions draw the same way but for what the options change.
class VANTRACORE_API ConsoleFormatter {
 public:
  ConsoleFormatter() noexcept = default;
  ConsoleFormatter(ConsoleFormatter const &) noexcept = default;
  ConsoleFormatter &operator=(ConsoleFormatter const &) noexcept { return *this; }
  ConsoleFormatter &operator=(ConsoleFormatter &&) noexcept { return *this; }

  // The variant's text without a line end.
  template <class Storage>
  static std::ostream &serialize(VxVariantGeneric<Storage> value, std::ostream &out) {
    return variantToStream(value, out);
  }
  static std::ostream &serialize(PropertyNode node, std::ostream &out);
  static std::ostream &serialize(FPropertyNode node, std::ostream &out);

  template <class Storage>
  static std::ostream &serialize(VxVariantGeneric<Storage> value, std::ostream &out,
                                 ConsoleOptions const &options) {
    return variantToStream(value, out, options);
  }
  static std::ostream &serialize(PropertyNode node, std::ostream &out, ConsoleOptions const &options);
  static std::ostream &serialize(FPropertyNode node, std::ostream &out, ConsoleOptions const &options);

 private:
  // The two-argument forms stay exported for clients built before the options existed.
  static std::ostream &variantToStream(VxVariant const &value, std::ostream &out);
  static std::ostream &variantToStream(VxVariantAbi const &value, std::ostream &out);
  static std::ostream &variantToStream(VxVariant const &value, std::ostream &out,
                                       ConsoleOptions const &options);
  static std::ostream &variantToStream(VxVariantAbi const &value, std::ostream &out,
                                       ConsoleOptions const &options);
};

}  // namespace Tarvex::VantraCore
