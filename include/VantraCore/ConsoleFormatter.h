#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <iosfwd>

namespace Tarvex::VantraCore {

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

 private:
  static std::ostream &variantToStream(VxVariant const &value, std::ostream &out);
  static std::ostream &variantToStream(VxVariantAbi const &value, std::ostream &out);
};

}  // namespace Tarvex::VantraCore
