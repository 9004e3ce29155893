#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/Unit.h>
#include <VantraCore/UnitType.h>
#include <VantraCore/VxString.h>

#include <memory>
#include <vector>

namespace Tarvex::VantraCore::Experimental {

// The process-wide registry of named units, from a default table of 119 names ("m", "mV", "dBm",
// "Celsius", ...). Names are ordered by bytes, case-sensitively, and every listing walks them in that
// order. Safe for concurrent readers and writers.
class VANTRACORE_API SystemOfUnits {
 public:
  // The one object, filled with the default table on first use.
  static SystemOfUnits &instance();
  ~SystemOfUnits();
  SystemOfUnits(SystemOfUnits const &) = delete;
  SystemOfUnits &operator=(SystemOfUnits const &) = delete;

  // The unit under exactly this name, else std::logic_error "Error: in GetUnitsByName: unit-name
  // '<name>' not found.". A name with the Greek mu (U+03BC) for micro also finds the name spelt with the
  // micro sign (U+00B5): "μV" gives the "µV" unit, labelled "μV" as written.
  Unit getUnitsByName(VxString const &name) const;
  // Lenient lookup: unless the text is "Celsius", "hundreds" or "thousands", the first "Ohm" becomes
  // "Ω" and then the first "u" becomes "µ". A name not in the table is parsed as unit text, which
  // throws std::runtime_error "Error constructing a unit from SI String <text>" if it does not parse.
  Unit getUnitsFromString(VxString const &text) const;

  // A duplicate name throws std::logic_error "Error: insertUnits: Cannot insert duplicate unit-name
  // '<name>'.".
  void insertUnits(VxString const &name, Unit const &unit);
  // Under the unit's label.
  void insertUnits(Unit const &unit);
  // Removing a name that is not there does nothing.
  void removeUnits(VxString const &name);

  // Every entry, aliases included.
  std::vector<Unit> const getAllUnits() const;
  // Every name whose unit has this type (name and dimensions), aliases included.
  std::vector<VxString> getUnitNames(UnitType const &type) const;
  // The units of this type, each equal unit once, at the place of its first name.
  std::vector<Unit> getUnits(UnitType const &type) const;
  // `unit` first, then the other units of its type.
  std::vector<Unit> getCompatibleUnits(Unit const &unit) const;

 private:
  SystemOfUnits();

  struct Table;
  std::unique_ptr<Table> m_table;
};

}  // namespace Tarvex::VantraCore::Experimental
