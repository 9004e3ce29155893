#include "Commands.h"
#include "Errors.h"
#include "UnitSupport.h"

#include <VantraCore/VantraCore.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;
using Experimental::SystemOfUnits;
using Experimental::UnitType;

namespace {

// Every quantity that some named unit belongs to, sorted by name.
std::vector<UnitType> quantities() {
  std::vector<UnitType> found;
  for (Unit const &unit : SystemOfUnits::instance().getAllUnits()) {
    UnitType const &type = unit.getUnitType();
    if (std::none_of(found.begin(), found.end(), [&](UnitType const &known) { return known == type; }))
      found.push_back(type);
  }
  std::sort(found.begin(), found.end(), [](UnitType const &a, UnitType const &b) {
    return plainText(a.getName()) < plainText(b.getName());
  });
  return found;
}

std::string joinedNames(UnitType const &type) {
  std::string names;
  for (VxString const &name : SystemOfUnits::instance().getUnitNames(type)) {
    if (!names.empty()) names += ", ";
    names += plainText(name);
  }
  return names;
}

// Columns line up by characters, not bytes: "µV" is two bytes wide in UTF-8.
std::string padded(std::string value, std::size_t width) {
  std::size_t const characters = static_cast<std::size_t>(
      std::count_if(value.begin(), value.end(), [](char c) { return (c & 0xC0) != 0x80; }));
  if (characters < width) value.append(width - characters, ' ');
  return value;
}

void listUnitsOf(std::string const &quantity) {
  std::vector<UnitType> const types = quantities();
  auto const type = std::find_if(types.begin(), types.end(), [&](UnitType const &candidate) {
    return plainText(candidate.getName()) == quantity;
  });
  if (type == types.end())
    throw ToolError("unknown quantity " + quoted(quantity) + ": `vantra units list` shows the known ones");
  std::cout << padded("name", 12) << padded("scale", 22) << padded("offset", 22) << "log multiplier\n";
  for (VxString const &name : SystemOfUnits::instance().getUnitNames(*type)) {
    Unit const unit = SystemOfUnits::instance().getUnitsByName(name);
    std::cout << padded(plainText(name), 12) << padded(numberText(unit.getScale()), 22)
              << padded(numberText(unit.getOffset()), 22) << numberText(unit.getLogMultiplier()) << '\n';
  }
}

void listQuantities() {
  for (UnitType const &type : quantities())
    std::cout << plainText(type.getName()) << " [" << plainText(type.getReferenceSIString())
              << "]: " << joinedNames(type) << '\n';
}

double parseNumber(std::string const &value) {
  char *end = nullptr;
  errno = 0;
  double const number = std::strtod(value.c_str(), &end);
  if (value.empty() || end != value.c_str() + value.size() || errno == ERANGE || !std::isfinite(number))
    throw ToolError(quoted(value) + " is not a number");
  return number;
}

void convertNumber(std::string const &value, std::string const &fromText, std::string const &toText) {
  double const number = parseNumber(value);
  Unit const from = lookupUnit(fromText);
  Unit const to = lookupUnit(toText);
  requireCommensurable(fromText, from, toText, to);
  std::cout << numberText(from.convertTo(to, number)) << ' ' << toText << '\n';
}

void checkUnit(std::string const &unitText) {
  bool const grammatical = Internal::IviUnitImplementation::validateIviUnitString(VxString(unitText));
  Unit const unit = lookupUnit(unitText);
  std::cout << "text:           " << unitText << '\n'
            << "grammar:        " << (grammatical ? "valid" : "no, a name of the system of units") << '\n'
            << "label:          " << plainText(unit.getUnitsLabel(Experimental::ValueTypeSemantics())) << '\n'
            << "quantity:       " << plainText(unit.getUnitType().getName()) << '\n'
            << "dimensions:     " << dimensionsText(unit) << '\n'
            << "scale:          " << numberText(unit.getScale()) << '\n'
            << "offset:         " << numberText(unit.getOffset()) << '\n'
            << "log multiplier: " << numberText(unit.getLogMultiplier()) << '\n';
}

struct UnitsOptions {
  std::string type;
  std::string value;
  std::string from;
  std::string to;
  std::string text;
};

}  // namespace

void addUnitsCommand(CLI::App &tool) {
  auto options = std::make_shared<UnitsOptions>();
  CLI::App *units = tool.add_subcommand("units", "Look up, convert and check units");
  units->require_subcommand(1);

  CLI::App *list = units->add_subcommand("list", "List the named units, by quantity");
  list->add_option("--type", options->type,
                   "one quantity, as \"electric potential\": its units with their numbers");
  list->callback([options] { options->type.empty() ? listQuantities() : listUnitsOf(options->type); });

  CLI::App *convert = units->add_subcommand("convert", "Convert one number from a unit to another");
  convert->add_option("VALUE", options->value, "the number")->required();
  convert->add_option("FROM", options->from, "its unit, as mV, degrees, dB(mW) or kg*m/s^2")->required();
  convert->add_option("TO", options->to, "the unit to convert to")->required();
  convert->callback([options] { convertNumber(options->value, options->from, options->to); });

  CLI::App *check = units->add_subcommand("check", "Tell whether a unit text is valid, and what it means");
  check->add_option("TEXT", options->text, "the unit text or name")->required();
  check->callback([options] { checkUnit(options->text); });
}

}  // namespace vantra
