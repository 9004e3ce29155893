// The vantra tool's CSV import on arbitrary text: a ToolError, or a document with one channel per
// header field, each holding one sample per record. Exported and imported again, that document comes
// back the same, and so does its CSV text.
// Input: one byte choosing the delimiter (below 0x80 guessed from the header as the tool does, else one
// of a few), then the text.
#include "CsvTable.h"
#include "CsvText.h"
#include "Errors.h"

#include <VantraCore/JsonFormatter.h>
#include <VantraCore/PropertyNode.h>

#include <cstdint>
#include <cstdlib>
#include <string>

using namespace Tarvex::VantraCore;

namespace {

// Every channel names itself and holds a one-dimensional column as long as the others.
void requireColumns(PropertyNode const &document) {
  PropertyList const &channels = document.map().at(InternedString("channels")).list();
  if (channels.size() == 0) std::abort();
  std::uint64_t const rows = channels[0].map().at(InternedString("samples")).value().numberOfElements();
  for (PropertyNode const &channel : channels) {
    VxVariant const &samples = channel.map().at(InternedString("samples")).value();
    if (samples.dimensions().count != 1 || samples.numberOfElements() != rows ||
        !channel.map().at(InternedString("name")).value().isType<VxString>())
      std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  if (size == 0) return 0;
  static char const delimiters[] = {',', ';', '\t', '|', ' '};
  std::string const text(reinterpret_cast<char const *>(data) + 1, size - 1);
  char const delimiter =
      data[0] < 0x80 ? vantra::guessDelimiter(text) : delimiters[data[0] % sizeof delimiters];
  PropertyNode document;
  try {
    document = vantra::documentOfCsv(text, delimiter, "input");
  } catch (vantra::ToolError const &) {
    return 0;
  }
  requireColumns(document);
  std::string const exported = vantra::csvOfChannels(document, "channels", "input", delimiter);
  PropertyNode again = vantra::documentOfCsv(exported, delimiter, "export");
  // Written as JSON, NaN and infinities are both null; the CSV text tells them apart.
  if (JsonFormatter::serialize(again) != JsonFormatter::serialize(document) ||
      vantra::csvOfChannels(again, "channels", "export", delimiter) != exported)
    std::abort();
  return 0;
}
