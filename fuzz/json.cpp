// The JSON readers of the three fidelities, variant and tree, on arbitrary text. Whatever a reader accepts its writer must
// write, and that text must read back to a value that writes the same text again. Failures must be
// standard exceptions, never crashes.
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <cstdint>
#include <cstdlib>
#include <exception>

using namespace Tarvex::VantraCore;

namespace {

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

template <class Formatter>
void readerPair(VxString const &text) {
  roundTrip<Formatter>(text, [](VxString const &t) { return Formatter::deserializeVxVariant(t); });
  roundTrip<Formatter>(text, [](VxString const &t) { return Formatter::deserializePropertyNode(t); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  VxString const text(reinterpret_cast<char const *>(data), size);
  try {
    readerPair<JsonFormatter>(text);
    readerPair<JsonFormatterMidFidelity>(text);
    readerPair<JsonFormatterLowFidelity>(text);
  } catch (...) {
    std::abort();
  }
  return 0;
}
