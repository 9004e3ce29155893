#include "Document.h"

#include "Errors.h"

#include <VantraCore/VantraCore.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

namespace vantra {

using Tarvex::VantraCore::JsonFormatter;
using Tarvex::VantraCore::PropertyNode;
using Tarvex::VantraCore::VxString;

CLI::Option *addFidelityOption(CLI::App &command, std::string const &name, Fidelity &fidelity,
                               std::string const &description) {
  return command
      .add_option_function<std::string>(
          name,
          [&fidelity](std::string const &text) {
            fidelity = text == "mid" ? Fidelity::mid : text == "low" ? Fidelity::low : Fidelity::full;
          },
          description)
      ->check(CLI::IsMember({"full", "mid", "low"}));
}

CLI::Option *addIndentOption(CLI::App &command, int &indent) {
  return command.add_option("--indent", indent, "spaces per level, 0 to 32; -1 for one compact line")
      ->check(CLI::Range(-1, 32))
      ->capture_default_str();
}

std::string describeSource(std::string const &file) {
  return file == "-" ? std::string("standard input") : quoted(file);
}

namespace {

std::string readAll(std::string const &file) {
  if (file == "-") {
    std::ostringstream text;
    text << std::cin.rdbuf();
    return text.str();
  }
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored))
    throw ToolError("cannot read " + quoted(file) + ": is a directory");
  std::ifstream in(file, std::ios::binary);
  if (!in) throw ToolError("cannot open " + quoted(file) + ": " + std::strerror(errno));
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) throw ToolError("cannot read " + quoted(file) + ": " + std::strerror(errno));
  return text;
}

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

}  // namespace

PropertyNode readDocument(std::string const &file, Fidelity fidelity) {
  VxString const text(readAll(file));
  std::string const context =
      "cannot read " + describeSource(file) + " as " + fidelityName(fidelity) + "-fidelity JSON";
  return withContext(context, [&] {
    switch (fidelity) {
      case Fidelity::mid:
        return Tarvex::VantraCore::JsonFormatterMidFidelity::deserializePropertyNode(text);
      case Fidelity::low:
        return Tarvex::VantraCore::JsonFormatterLowFidelity::deserializePropertyNode(text);
      case Fidelity::full:
        break;
    }
    return JsonFormatter::deserializePropertyNode(text);
  });
}

std::string documentText(PropertyNode const &tree, Fidelity fidelity, int indent) {
  VxString const text = withContext("cannot write the document", [&] {
    switch (fidelity) {
      case Fidelity::mid:
        return Tarvex::VantraCore::JsonFormatterMidFidelity::serialize(tree, indent);
      case Fidelity::low:
        return Tarvex::VantraCore::JsonFormatterLowFidelity::serialize(tree, indent);
      case Fidelity::full:
        break;
    }
    return JsonFormatter::serialize(tree, indent);
  });
  return std::string(text.data(), text.length()) + "\n";
}

}  // namespace vantra
