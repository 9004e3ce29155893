// Console drawing of trees and variants read from JSON (plain or with metadata), under options the
// input chooses. It fails only as documented, by std::runtime_error for the times, which do not print;
// the frozen tree draws as the mutable one, default options draw as the forms without options, and the
// one-line texts never fail where the drawing does not, a list or map printing as its node does.
// Input: two bytes choosing the options, then the JSON text.
#include <VantraCore/ConsoleFormatter.h>
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>

using namespace Tarvex::VantraCore;

namespace {

// Every element may be drawn, so a document may declare few beyond those it carries.
constexpr std::uint64_t fillCap = 1 << 12;

ConsoleOptions optionsOf(std::uint8_t a, std::uint8_t b) {
  ConsoleOptions options;
  options.numbers = static_cast<ConsoleOptions::Numbers>(a % 3);
  options.shapes = static_cast<ConsoleOptions::Shapes>(a / 3 % 3);
  options.order = static_cast<ConsoleOptions::Order>(a / 9 % 2);
  options.showEmptyNodes = a / 18 % 2 != 0;
  options.listElements = static_cast<ConsoleOptions::ListElements>(a / 36 % 2);
  options.significantDigits = b % 20 - 1;
  options.maxElements = b & 0x80 ? ConsoleOptions::allElements : b % 8;
  return options;
}

// The text `draw` writes, or nothing when it refuses the times.
template <class Draw>
bool drawn(std::string &text, Draw draw) {
  std::ostringstream out;
  try {
    draw(out);
  } catch (std::runtime_error const &) {
    return false;
  }
  text = out.str();
  return true;
}

template <class Read>
bool reads(Read read) {
  try {
    read();
  } catch (std::exception const &) {
    return false;
  }
  return true;
}

void drawTree(PropertyNode const &tree, ConsoleOptions const &options) {
  FPropertyNode const frozen(tree);
  std::string mutableText, frozenText, plainText, defaultText, line;
  bool const drew =
      drawn(mutableText, [&](std::ostream &out) { ConsoleFormatter::serialize(tree, out, options); });
  if (drawn(frozenText, [&](std::ostream &out) { ConsoleFormatter::serialize(frozen, out, options); }) !=
          drew ||
      (drew && frozenText != mutableText))
    std::abort();
  bool const plain = drawn(plainText, [&](std::ostream &out) { ConsoleFormatter::serialize(tree, out); });
  if (drawn(defaultText,
            [&](std::ostream &out) { ConsoleFormatter::serialize(tree, out, ConsoleOptions()); }) != plain ||
      (plain && defaultText != plainText))
    std::abort();
  std::string frozenPlain, part;
  if (drawn(frozenPlain, [&](std::ostream &out) { ConsoleFormatter::serialize(frozen, out); }) != plain ||
      (plain && frozenPlain != plainText))
    std::abort();
  if (!drawn(line, [&](std::ostream &out) { PrintTo(tree, &out); }) && plain) std::abort();
  // A list or map alone prints as the node holding it does.
  bool const printed = drawn(part, [&](std::ostream &out) {
    if (tree.kind() == PropertyNodeKind::List) PrintTo(tree.list(), &out);
    if (tree.kind() == PropertyNodeKind::Map) PrintTo(tree.map(), &out);
  });
  bool const container = tree.kind() == PropertyNodeKind::List || tree.kind() == PropertyNodeKind::Map;
  if (container && plain && (!printed || part != line)) std::abort();
}

void drawVariant(VxVariant const &value, ConsoleOptions const &options) {
  std::string withOptions, plainText, line;
  drawn(withOptions, [&](std::ostream &out) { ConsoleFormatter::serialize(value, out, options); });
  bool const plain = drawn(plainText, [&](std::ostream &out) { ConsoleFormatter::serialize(value, out); });
  if (drawn(line, [&](std::ostream &out) { PrintTo(value, &out); }) != plain || (plain && line != plainText))
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  if (size < 2) return 0;
  ConsoleOptions const options = optionsOf(data[0], data[1]);
  VxString const text(reinterpret_cast<char const *>(data) + 2, size - 2);
  try {
    PropertyNode tree;
    VxVariant value;
    if (reads([&] {
          tree = JsonFormatterMidFidelity::deserializePropertyNode(text, JsonArrays::asVariants, fillCap);
        }))
      drawTree(tree, options);
    if (reads([&] { value = JsonFormatterMidFidelity::deserializeVxVariant(text, fillCap); }))
      drawVariant(value, options);
  } catch (...) {
    std::abort();
  }
  return 0;
}
