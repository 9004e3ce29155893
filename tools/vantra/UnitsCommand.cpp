#include "Commands.h"
#include "Errors.h"
#include "Output.h"
#include "UnitSupport.h"

#include <VantraCore/VantraCore.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <memory>
#include <string>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;
using Experimental::SystemOfUnits;
using Experimental::UnitType;

namespace {

// Every predefined quantity and every one some named unit belongs to, sorted by name: the names
// `units check` tells.
std::vector<UnitType> quantities() {
  std::vector<UnitType> found;
  auto const add = [&](UnitType const &type) {
    if (std::none_of(found.begin(), found.end(), [&](UnitType const &known) { return known == type; }))
      found.push_back(type);
  };
#define VANTRA_ADD_QUANTITY(accessor, ...) add(UnitType::accessor());
  VANTRACORE_PREDEFINED_UNIT_TYPES(VANTRA_ADD_QUANTITY)
#undef VANTRA_ADD_QUANTITY
  for (Unit const &unit : SystemOfUnits::instance().getAllUnits())
    add(unit.getUnitType());
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

std::string quantityNames() {
  std::string names;
  for (UnitType const &type : quantities())
    names += (names.empty() ? "" : ", ") + plainText(type.getName());
  return names;
}

void listUnitsOf(std::string const &quantity) {
  std::vector<UnitType> const types = quantities();
  auto const type = std::find_if(types.begin(), types.end(), [&](UnitType const &candidate) {
    return plainText(candidate.getName()) == quantity;
  });
  if (type == types.end())
    throw ToolError("unknown quantity " + quoted(quantity) + ": `vantra units list` shows the known ones");
  std::ostringstream table;
  table << padded("name", 12) << padded("scale", 22) << padded("offset", 22) << "log multiplier\n";
  std::vector<VxString> const names = SystemOfUnits::instance().getUnitNames(*type);
  if (names.empty()) table << "(no named units; the base unit is " << plainText(type->getReferenceSIString()) << ")\n";
  for (VxString const &name : names) {
    Unit const unit = SystemOfUnits::instance().getUnitsByName(name);
    table << padded(plainText(name), 12) << padded(numberText(unit.getScale()), 22)
              << padded(numberText(unit.getOffset()), 22) << numberText(unit.getLogMultiplier()) << '\n';
  }
  writeOutput(table.str());
}

void listQuantities() {
  std::ostringstream list;
  for (UnitType const &type : quantities()) {
    std::string const names = joinedNames(type);
    if (names.empty()) continue;
    list << plainText(type.getName()) << " [" << plainText(type.getReferenceSIString())
              << "]: " << names << '\n';
  }
  writeOutput(list.str());
}

double parseNumber(std::string const &value) {
  char *end = nullptr;
  errno = 0;
  double const number = std::strtod(value.c_str(), &end);
  if (value.empty() || end != value.c_str() + value.size() || errno == ERANGE || !std::isfinite(number))
    throw ToolError(quoted(value) + " is not a number");
  return number;
}

void convertNumber(std::string const &value, std::string const &fromText, std::string const &toText,
                   bool allowNonfinite) {
  double const number = parseNumber(value);
  Unit const from = lookupUnit(fromText);
  Unit const to = lookupUnit(toText);
  requireCommensurable(fromText, from, toText, to);
  if (!allowNonfinite)
    requireFiniteLogarithm(VxVariant(number), from, fromText, to, toText, quoted(value + " " + fromText));
  writeOutput(shortestText(from.convertTo(to, number)) + ' ' + toText + '\n');
}

void checkUnit(std::string const &unitText) {
  bool const grammatical = Internal::IviUnitImplementation::validateIviUnitString(VxString(unitText));
  Unit const unit = lookupUnit(unitText);
  std::ostringstream text;
  text << "text:           " << unitText << '\n'
            << "grammar:        " << (grammatical ? "valid" : "no, a name of the system of units") << '\n'
            << "label:          " << plainText(unit.getUnitsLabel(Experimental::ValueTypeSemantics())) << '\n'
            << "quantity:       " << plainText(unit.getUnitType().getName()) << '\n'
            << "dimensions:     " << dimensionsText(unit) << '\n'
            << "scale:          " << numberText(unit.getScale()) << '\n'
            << "offset:         " << numberText(unit.getOffset()) << '\n'
            << "log multiplier: " << numberText(unit.getLogMultiplier()) << '\n';
  writeOutput(text.str());
}

struct UnitsOptions {
  std::string type;
  std::string value;
  std::string from;
  std::string to;
  std::string text;
  bool allowNonfinite = false;
};

}  // namespace

void addUnitsCommand(CLI::App &tool) {
  auto options = std::make_shared<UnitsOptions>();
  CLI::App *units = tool.add_subcommand("units", "Look up, convert and check units");
  units->require_subcommand(1);

  CLI::App *list = units->add_subcommand("list", "List the named units, by quantity");
  list->add_option("--type", options->type,
                   "one quantity, as `units check` names it: its units with their numbers. Quantities: " +
                       quantityNames());
  list->callback([options] { options->type.empty() ? listQuantities() : listUnitsOf(options->type); });

  CLI::App *convert = units->add_subcommand("convert", "Convert one number from a unit to another");
  convert->add_option("VALUE", options->value, "the number")->required();
  convert->add_option("FROM", options->from, "its unit, as mV, degrees, dB(mW) or kg*m/s^2")->required();
  convert->add_option("TO", options->to, "the unit to convert to")->required();
  convert->add_flag("--allow-nonfinite", options->allowNonfinite,
                    "convert zero or a negative value to a logarithmic unit all the same");
  convert->callback(
      [options] { convertNumber(options->value, options->from, options->to, options->allowNonfinite); });

  CLI::App *check = units->add_subcommand("check", "Tell whether a unit text is valid, and what it means");
  check->add_option("TEXT", options->text, "the unit text or name")->required();
  check->callback([options] { checkUnit(options->text); });
}

}  // namespace vantra
