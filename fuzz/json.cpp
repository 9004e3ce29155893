// The JSON readers of the three fidelities, variant and tree, on arbitrary text. Whatever a reader accepts
// its writer must write, and that text must read back to a value that writes the same text again. Failures
// must be standard exceptions, never crashes. Beneath the readers, the quick parse and the library's parse
// must agree: what the quick one takes, the library takes to the same document, numbers to the bit; what
// the library alone takes is an integer beyond 64 bits, a byte order mark, or a text cut by a NUL byte.
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>
#include <VantraCore/Unit.h>

#include <formatting/JsonDocument.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

using namespace Tarvex::VantraCore;

namespace {

// A document may ask for any shape beyond the items it carries; the sanitizers end the run on an
// allocation beyond memory instead of throwing std::bad_alloc, so the readers are told to refuse it.
constexpr std::uint64_t fillCap = std::uint64_t(1) << 22;
// The further ways in and out (streams, shortest numbers) read and write each value several times more:
// a smaller bound keeps an input's work near what the first ways take.
constexpr std::uint64_t furtherFillCap = std::uint64_t(1) << 14;

// Runs read, then write, read, write; the two written texts must agree, unless the first held a
// non-finite number, which no number reads back from.
template <class Formatter, class Read>
void roundTrip(VxString const &text, Read read, JsonNumberText numbers = JsonNumberText::fifteenDigits) {
  VxString first;
  try {
    first = Formatter::serialize(read(text), -1, numbers);
  } catch (std::exception const &) {
    return;
  }
  VxString second;
  try {
    second = Formatter::serialize(read(first), -1, numbers);
  } catch (std::exception const &failure) {
    // A number beyond its kind's range reads as infinite, which is written as null and lost.
    if (std::string_view(failure.what()) != "type must be number, but is null") std::abort();
    return;
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
    static_cast<void>(unit.convertTo(unit, 1.0) + unit.getScale() + unit.getOffset() +
                      unit.getLogMultiplier());
  } catch (std::exception const &) {
  }
}

// What `read` takes from the text (or a stream of its bytes, `read` taking either) into `value`, and
// its text into `written`; read from the stream it must write the same. False when the text is refused.
template <class Formatter, class Value, class Read>
bool readAlsoFromStream(VxString const &text, Read read, Value &value, VxString &written) {
  try {
    value = read(text);
  } catch (std::exception const &) {
    return false;
  }
  std::istringstream in(std::string(text.data(), text.size()));
  written = Formatter::serialize(value);
  if (Formatter::serialize(read(in)) != written) std::abort();
  return true;
}

// The stream reader must read what the text reader reads, and the frozen tree must write what the
// mutable one writes, to a text and to a stream alike, as the mutable one writes to a stream; a unit
// is read from the tree.
template <class Formatter, class Read>
void streamsAndFrozen(VxString const &text, Read read) {
  PropertyNode tree;
  VxString written;
  if (!readAlsoFromStream<Formatter>(text, read, tree, written)) return;
  storedUnit(tree);
  FPropertyNode const frozen(tree);
  std::ostringstream out, treeOut;
  Formatter::serialize(frozen, out, 1);
  Formatter::serialize(tree, treeOut, 1);
  VxString const indented = Formatter::serialize(tree, 1);
  if (Formatter::serialize(frozen) != written || VxString(out.str().data(), out.str().size()) != indented ||
      VxString(treeOut.str().data(), treeOut.str().size()) != indented)
    std::abort();
}

// A variant read from a stream is the one read from the text, and one written to a stream is the one
// written to a text.
template <class Formatter, class Read>
void variantStreams(VxString const &text, Read read) {
  VxVariant value;
  VxString written;
  if (!readAlsoFromStream<Formatter>(text, read, value, written)) return;
  std::ostringstream out;
  Formatter::serialize(value, out);
  if (VxString(out.str().data(), out.str().size()) != written) std::abort();
}

template <class Formatter>
void readerPair(VxString const &text) {
  auto const tree = [](auto &&source) { return Formatter::deserializePropertyNode(source, fillCap); };
  auto const smallerTree = [](auto &&source) {
    return Formatter::deserializePropertyNode(source, furtherFillCap);
  };
  roundTrip<Formatter>(text, [](VxString const &t) { return Formatter::deserializeVxVariant(t, fillCap); });
  roundTrip<Formatter>(text, tree);
  roundTrip<Formatter>(text, smallerTree, JsonNumberText::shortestRoundTrip);
  streamsAndFrozen<Formatter>(text, tree);
  variantStreams<Formatter>(
      text, [](auto &&source) { return Formatter::deserializeVxVariant(source, furtherFillCap); });
}

// What the full-fidelity reader accepts, variant or tree, the plainer writers must write as JSON.
void plainerWriters(VxString const &text) {
  PropertyNode tree;
  VxVariant value;
  try {
    tree = JsonFormatter::deserializePropertyNode(text, fillCap);
    value = JsonFormatter::deserializeVxVariant(text, fillCap);
  } catch (std::exception const &) {
  }
  VxString const written[] = {
      JsonFormatterMidFidelity::serialize(tree), JsonFormatterLowFidelity::serialize(tree),
      JsonFormatterMidFidelity::serialize(value), JsonFormatterLowFidelity::serialize(value, 1)};
  for (VxString const &json : written)
    if (!nlohmann::json::accept(json.data(), json.data() + json.size())) std::abort();
}

// The lower fidelities, their trees with arrays read both ways, and their streams.
void foreignReaders(VxString const &text) {
  using Mid = JsonFormatterMidFidelity;
  using Low = JsonFormatterLowFidelity;
  roundTrip<Mid>(text, [](VxString const &t) { return Mid::deserializeVxVariant(t, fillCap); });
  for (JsonArrays arrays : {JsonArrays::asLists, JsonArrays::asVariants}) {
    roundTrip<Mid>(text,
                   [arrays](VxString const &t) { return Mid::deserializePropertyNode(t, arrays, fillCap); });
    roundTrip<Low>(text, [arrays](VxString const &t) { return Low::deserializePropertyNode(t, arrays); });
  }
  roundTrip<Low>(text, [](VxString const &t) { return Low::deserializeVxVariant(t); });
  roundTrip<Low>(
      text, [](VxString const &t) { return Low::deserializeVxVariant(t); },
      JsonNumberText::shortestRoundTrip);
  streamsAndFrozen<Mid>(text, [](auto &&source) {
    return Mid::deserializePropertyNode(source, JsonArrays::asVariants, furtherFillCap);
  });
  streamsAndFrozen<Low>(text, [](auto &&source) { return Low::deserializePropertyNode(source); });
  variantStreams<Mid>(text, [](auto &&source) { return Mid::deserializeVxVariant(source, furtherFillCap); });
  variantStreams<Low>(text, [](auto &&source) { return Low::deserializeVxVariant(source); });
}

namespace Json = Tarvex::VantraCore::Internal;

bool hasIntegerBeyondSixtyFourBits(std::string_view text) {
  std::size_t digits = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    char const c = i < text.size() ? text[i] : ' ';
    if (std::isdigit(static_cast<unsigned char>(c))) {
      ++digits;
    } else if (c == '.' || c == 'e' || c == 'E') {
      digits = 0;
      while (i + 1 < text.size() && std::isdigit(static_cast<unsigned char>(text[i + 1])))
        ++i;
    } else {
      if (digits >= 19) return true;
      digits = 0;
    }
  }
  return false;
}

void compareParses(std::string_view text) {
  Json::JsonDocument quick;
  bool const quickTakes = Json::parseJsonDocumentQuickly(text, text.size(), quick);
  Json::JsonDocument library;
  bool libraryTakes = true;
  try {
    library = Json::parseJsonDocumentByLibrary(text);
  } catch (std::invalid_argument const &) {
    libraryTakes = false;
  }
  if (quickTakes && !(libraryTakes && Json::sameJsonDocument(quick, library))) std::abort();
  if (!quickTakes && libraryTakes) {
    bool const byteOrderMark = text.substr(0, 3) == "\xEF\xBB\xBF";
    bool const nul = text.find('\0') != std::string_view::npos;
    if (!byteOrderMark && !nul && !hasIntegerBeyondSixtyFourBits(text)) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  VxString const text(reinterpret_cast<char const *>(data), size);
  compareParses(std::string_view(text.data(), text.length()));
  try {
    readerPair<JsonFormatter>(text);
    foreignReaders(text);
    plainerWriters(text);
  } catch (...) {
    std::abort();
  }
  return 0;
}
