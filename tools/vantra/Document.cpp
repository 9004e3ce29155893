#include "Document.h"

#include "DocumentCheck.h"
#include "Errors.h"
#include "Output.h"

#include <VantraCore/VantraCore.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;

char const *fidelityName(Fidelity fidelity) {
  switch (fidelity) {
    case Fidelity::mid:
      return "mid";
    case Fidelity::low:
      return "low";
    case Fidelity::full:
      break;
  }
  return "full";
}

bool parseFidelity(std::string const &text, Fidelity &fidelity) {
  for (Fidelity const known : {Fidelity::full, Fidelity::mid, Fidelity::low}) {
    if (text == fidelityName(known)) {
      fidelity = known;
      return true;
    }
  }
  return false;
}

CLI::Option *addFidelityOption(CLI::App &command, std::string const &name, Fidelity &fidelity,
                               std::string const &description) {
  return command
      .add_option_function<std::string>(
          name, [&fidelity](std::string const &text) { parseFidelity(text, fidelity); }, description)
      ->check(CLI::IsMember({"full", "mid", "low"}));
}

void addListsOption(CLI::App &command, ReadOptions &options) {
  command.add_flag("--lists", options.lists,
                   "with --from mid or low, keep plain arrays as lists of values instead of arrays");
  command.add_option("--max-elements", options.maxElements,
                     "the most array elements a document may declare beyond those it carries "
                     "(default: the larger of 16M and 16 times what its text can carry)");
}

void addReadOptions(CLI::App &command, ReadOptions &options, std::string const &alias) {
  std::string const names = alias.empty() ? "--from" : "--from," + alias;
  addFidelityOption(command, names, options.fidelity,
                    "fidelity the document is in: full (default), mid or low");
  addListsOption(command, options);
}

namespace {

// Integers only: the range check that follows would call "abc" out of range.
std::string integerProblem(std::string &typed) {
  std::string const &text = typed;
  char *end = nullptr;
  errno = 0;
  long const number = std::strtol(text.c_str(), &end, 10);
  static_cast<void>(number);
  if (text.empty() || *end != '\0' || errno == ERANGE) return quoted(text) + " is not a number";
  return {};
}

}  // namespace

CLI::Option *addIndentOption(CLI::App &command, int &indent) {
  return command.add_option("--indent", indent, "spaces per level, 0 to 32; -1 for one compact line")
      ->check(CLI::Validator(integerProblem, "INT"))
      ->check(CLI::Range(-1, 32))
      ->capture_default_str();
}

void addWriteOptions(CLI::App &command, WriteOptions &options) {
  addIndentOption(command, options.indent);
  command
      .add_option_function<std::string>(
          "--digits",
          [&options](std::string const &text) {
            options.numbers = text == "15" ? NumberText::fifteenDigits : NumberText::shortest;
          },
          "number text: shortest (default; reads back to the same value) or 15 significant digits")
      ->check(CLI::IsMember({"shortest", "15"}));
  command.add_flag("--strict", options.strict,
                   "fail, writing nothing, where the document would not read back the same");
}

std::string describeSource(std::string const &file) {
  return file == "-" ? std::string("standard input") : quoted(file);
}

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

File openFile(std::string const &file) {
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored))
    throw ToolError("cannot read " + quoted(file) + ": is a directory");
  File in(std::fopen(file.c_str(), "rb"), std::fclose);
  if (!in) throw ToolError("cannot open " + quoted(file) + ": " + std::strerror(errno));
  return in;
}

}  // namespace

std::string readAll(std::string const &file) {
  if (file == "-") {
    std::ostringstream text;
    text << std::cin.rdbuf();
    return text.str();
  }
  File const in = openFile(file);
  std::string text;
  char block[1 << 16];
  std::size_t got = 0;
  while ((got = std::fread(block, 1, sizeof block, in.get())) > 0)
    text.append(block, got);
  if (std::ferror(in.get())) throw ToolError("cannot read " + quoted(file) + ": " + std::strerror(errno));
  return text;
}

namespace {

// The text as a library string, read straight into it: a document may be a large part of memory.
VxString documentText(std::string const &file) {
  if (file == "-") return VxString(readAll(file));
  File const in = openFile(file);
  std::error_code failure;
  std::uintmax_t const size = std::filesystem::file_size(file, failure);
  if (failure) return VxString(readAll(file));  // no regular file: read as a stream
  bool complete = true;
  VxString text = VxString::build(size, [&](char *into) {
    complete = std::fread(into, 1, size, in.get()) == size;
  });
  if (!complete) throw ToolError("cannot read " + quoted(file) + ": " + std::strerror(errno));
  return text;
}

// The one place a document's text becomes a tree. A document may not ask for far more memory than it
// carries: every element takes at least two bytes of text ("1,"), so 8 elements a byte is 16 times
// the most it can carry.
// The text is handed over: the library lets it go once parsed, before the tree takes its memory.
PropertyNode parseTree(VxString text, ReadOptions const &options) {
  constexpr std::uint64_t leastCap = std::uint64_t(16) << 20;
  std::uint64_t const cap = options.maxElements != 0 ? options.maxElements
                                                     : std::max(leastCap, 8 * (std::uint64_t(text.length()) + 1));
  JsonArrays const arrays = options.lists ? JsonArrays::asLists : JsonArrays::asVariants;
  switch (options.fidelity) {
    case Fidelity::mid:
      return JsonFormatterMidFidelity::deserializePropertyNode(std::move(text), arrays, cap);
    case Fidelity::low:
      return JsonFormatterLowFidelity::deserializePropertyNode(std::move(text), arrays);
    case Fidelity::full:
      break;
  }
  return JsonFormatter::deserializePropertyNode(std::move(text), cap);
}

// The one place a tree becomes a document's text, handed to `out` a block at a time: the text of a
// large document is never held whole. Mid fidelity writes as full does.
void serializeTree(PropertyNode const &tree, WriteOptions const &options, std::ostream &out) {
  JsonNumberText const numbers = options.numbers == NumberText::shortest ? JsonNumberText::shortestRoundTrip
                                                                         : JsonNumberText::fifteenDigits;
  if (options.fidelity == Fidelity::low) return JsonFormatterLowFidelity::serializeInBlocks(tree, out, options.indent, numbers);
  JsonFormatter::serializeInBlocks(tree, out, options.indent, numbers);
}

}  // namespace

PropertyNode readDocument(std::string const &file, ReadOptions const &options) {
  std::string const context =
      "cannot read " + describeSource(file) + " as " + fidelityName(options.fidelity) + "-fidelity JSON";
  VxString text = withContext(context, [&] { return documentText(file); });
  // Looked for before the text goes to the reader; warned of only once the document has read.
  std::vector<std::string> const losses =
      options.fidelity != Fidelity::low ? readingLosses(text.data(), text.length()) : std::vector<std::string>();
  PropertyNode tree = withContext(context, [&] { return parseTree(std::move(text), options); });
  for (std::string const &loss : losses)
    warn(loss);
  return tree;
}

void writeDocument(PropertyNode const &tree, WriteOptions const &options) {
  warnOfWritingLosses(tree);
  releaseWarnings(options.strict);
  withContext("cannot write the document", [&] {
    writeOutputThrough([&](std::ostream &out) { serializeTree(tree, options, out); });
  });
  writeOutput("\n");
}

}  // namespace vantra
