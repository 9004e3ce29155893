#include <VantraCore/SystemOfUnits.h>

#include <initializer_list>
#include <map>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <stdexcept>
#include <string>
#include <utility>

namespace Tarvex::VantraCore::Experimental {

// The lock covers the map alone: parsing, unit comparison and the type registry run outside it, so
// nothing called under it can come back here.
struct SystemOfUnits::Table {
  mutable std::shared_mutex mutex;
  std::map<VxString, Unit> units;  // VxString orders by bytes, shorter first on a common prefix

  std::optional<Unit> find(VxString const &name) const {
    std::shared_lock<std::shared_mutex> const lock(mutex);
    auto const found = units.find(name);
    if (found == units.end()) return std::nullopt;
    return found->second;
  }

  // Calls `visit(name, unit)` for each unit whose type is `type`, in key order, under the lock.
  template <class Visit>
  void forEachOfType(UnitType const &type, Visit &&visit) const {
    std::shared_lock<std::shared_mutex> const lock(mutex);
    for (auto const &[name, unit] : units) {
      if (unit.getUnitType() == type) visit(name, unit);
    }
  }
};

namespace {

std::string messageWith(char const *head, VxString const &name, char const *tail) {
  return std::string(head).append(name.data(), name.size()).append(tail);
}

// Replaces the first `from` in `text`, if any.
void replaceFirst(std::string &text, std::string_view from, std::string_view to) {
  std::size_t const at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
}

// Every Greek small mu (U+03BC) as the micro sign (U+00B5).
std::string withMicroSign(VxString const &name) {
  std::string text = name.toStdString();
  for (std::size_t at = text.find("\u03BC"); at != std::string::npos; at = text.find("\u03BC", at))
    text.replace(at, 2, "\u00B5");
  return text;
}

}  // namespace

SystemOfUnits::SystemOfUnits() : m_table(std::make_unique<Table>()) {
  auto &units = m_table->units;
  auto const fromText = [&units](std::initializer_list<char const *> texts) {
    for (char const *text : texts)
      units.emplace(text, Unit::fromIviUnitString(text));
  };
  auto const labelled = [&units](char const *text, char const *label) {
    units.emplace(label, Unit::fromIviUnitString(text).setUnitsLabel(label));
  };
  auto const made = [&units](UnitType const &type, char const *label, double scale, double offset,
                             double logMultiplier) -> Unit const & {
    return units.emplace(label, Unit(type, label, scale, offset, logMultiplier)).first->second;
  };

  fromText({"m", "nm", "\u00B5m", "mm", "cm", "km"});
  made(UnitType::length(), "mil", 2.54e-05, 0, 0);
  made(UnitType::length(), "in", 0.0254, 0, 0);
  fromText({"m^2", "mm^2", "cm^2", "km^2"});
  made(UnitType::area(), "in^2", 0.00064516, 0, 0);
  fromText({"m^3", "mm^3", "cm^3", "L", "mL"});
  made(UnitType::volume(), "in^3", 1.6387064e-05, 0, 0);
  fromText({"kg", "g", "mg", "\u00B5g"});
  fromText({"s", "ms", "\u00B5s", "ns", "ps"});
  made(UnitType::time(), "min", 60, 0, 0);
  made(UnitType::time(), "h", 3600, 0, 0);
  fromText({"rad"});
  units.emplace("radians", Unit::fromIviUnitString("rad"));
  units.emplace("degrees", made(UnitType::planeAngle(), "\u00B0", 0.017453292519943295, 0, 0));
  fromText({"m/s", "km/s"});
  made(UnitType::velocity(), "km/h", 0.2777777777777778, 0, 0);
  made(UnitType::velocity(), "miles/h", 0.44704, 0, 0);
  fromText({"m/s^2", "N"});
  fromText({"J", "kJ", "mJ", "\u00B5J"});
  made(UnitType::energy(), "kWh", 3600000, 0, 0);
  fromText({"W", "kW", "MW", "mW", "\u00B5W"});
  labelled("dB(W)", "dBW");
  labelled("dB(mW)", "dBm");
  labelled("dB(\u00B5W)", "dB\u00B5");
  fromText({"Hz", "kHz", "MHz", "GHz", "THz"});
  fromText({"A", "kA", "mA", "\u00B5A", "nA", "pA"});
  fromText({"C", "kC", "mC", "\u00B5C", "nC", "pC"});
  fromText({"V", "kV", "mV", "\u00B5V", "nV", "pV"});
  labelled("dB(V)", "dBV");
  labelled("dB(mV)", "dBmV");
  labelled("dB(\u00B5V)", "dB\u00B5V");
  fromText({"\u03A9", "k\u03A9", "M\u03A9", "G\u03A9", "m\u03A9"});
  fromText({"F", "mF", "\u00B5F", "nF", "pF", "fF"});
  fromText({"S", "mS", "\u00B5S", "nS", "pS"});
  // The reciprocal ohm is listed only under its old name.
  units.emplace("mho", Unit(UnitType::conductance(), "1/\u03A9", 1, 0, 0));
  fromText({"H", "mH", "\u00B5H", "nH", "pH", "fH"});
  made(UnitType::magneticFlux(), "Mx", 1e-08, 0, 0);
  fromText({"T"});
  made(UnitType::magneticFluxDensity(), "Gs", 0.0001, 0, 0);
  fromText({"K"});
  units.emplace("Celsius", made(UnitType::thermodynamicTemperature(), "\u00B0C", 1, 273.15, 0));
  units.emplace("Fahrenheit", made(UnitType::thermodynamicTemperature(), "\u00B0F", 0.5555555555555556,
                                   255.37222222222223, 0));
  made(UnitType::dimensionless(), "log", 1, 0, 1);
  units.emplace("dB", made(UnitType::dimensionless(), "dB10", 1, 0, 10));
  made(UnitType::dimensionless(), "dB20", 1, 0, 20);
  made(UnitType::dimensionless(), "hundreds", 100, 0, 0);
  made(UnitType::dimensionless(), "thousands", 1000, 0, 0);
  made(UnitType::dimensionless(), "millions", 1000000, 0, 0);
  made(UnitType::dimensionless(), "%", 0.01, 0, 0);
  made(UnitType::dimensionless(), "Abs", 1, 0, 0);
}

SystemOfUnits::~SystemOfUnits() = default;

SystemOfUnits &SystemOfUnits::instance() {
  static SystemOfUnits system;
  return system;
}

Unit SystemOfUnits::getUnitsByName(VxString const &name) const {
  std::optional<Unit> found = m_table->find(name);
  if (!found) {
    // Names spell micro with the micro sign; the Greek mu finds them too, and a unit labelled by its
    // name keeps the name as written.
    VxString const microName(withMicroSign(name));
    if (microName != name) found = m_table->find(microName);
    if (found && found->getUnitsLabel(ValueTypeSemantics()) == microName) found->setUnitsLabel(name);
  }
  if (!found)
    throw std::logic_error(messageWith("Error: in GetUnitsByName: unit-name '", name, "' not found."));
  return std::move(*found);
}

Unit SystemOfUnits::getUnitsFromString(VxString const &text) const {
  std::string lenient = text.toStdString();
  if (lenient != "Celsius" && lenient != "hundreds" && lenient != "thousands") {
    replaceFirst(lenient, "Ohm", "\u03A9");
    replaceFirst(lenient, "u", "\u00B5");
  }
  VxString const name(lenient);
  try {
    return getUnitsByName(name);
  } catch (...) {
  }
  // Outside the handler and the lock: the parser registers unit types under a lock of its own.
  return Unit::fromIviUnitString(name);
}

void SystemOfUnits::insertUnits(VxString const &name, Unit const &unit) {
  std::unique_lock<std::shared_mutex> const lock(m_table->mutex);
  if (!m_table->units.emplace(name, unit).second) {
    throw std::logic_error(
        messageWith("Error: insertUnits: Cannot insert duplicate unit-name '", name, "'."));
  }
}

void SystemOfUnits::insertUnits(Unit const &unit) {
  // The label is read first: its reference form may write into `unit`, and must not do so under the lock.
  VxString const label = unit.getUnitsLabel(ReferenceTypeSemantics());
  insertUnits(label, unit);
}

void SystemOfUnits::removeUnits(VxString const &name) {
  try {
    std::unique_lock<std::shared_mutex> const lock(m_table->mutex);
    m_table->units.erase(name);
  } catch (...) {
    throw std::logic_error(messageWith("Error: RemoveUnits: Cannot find unit-name '", name, "'."));
  }
}

std::vector<Unit> const SystemOfUnits::getAllUnits() const {
  std::vector<Unit> all;
  std::shared_lock<std::shared_mutex> const lock(m_table->mutex);
  all.reserve(m_table->units.size());
  for (auto const &[name, unit] : m_table->units)
    all.push_back(unit);
  return all;
}

std::vector<VxString> SystemOfUnits::getUnitNames(UnitType const &type) const {
  std::vector<VxString> names;
  m_table->forEachOfType(type, [&names](VxString const &name, Unit const &) { names.push_back(name); });
  return names;
}

std::vector<Unit> SystemOfUnits::getUnits(UnitType const &type) const {
  // Copied under the lock, compared outside it.
  std::vector<Unit> ofType;
  m_table->forEachOfType(type, [&ofType](VxString const &, Unit const &unit) { ofType.push_back(unit); });
  std::vector<Unit> distinct;
  for (Unit &unit : ofType) {
    bool seen = false;
    for (Unit const &kept : distinct) {
      if (kept == unit) {
        seen = true;
        break;
      }
    }
    if (!seen) distinct.push_back(std::move(unit));
  }
  return distinct;
}

std::vector<Unit> SystemOfUnits::getCompatibleUnits(Unit const &unit) const {
  std::vector<Unit> compatible{unit};
  for (Unit &other : getUnits(unit.getUnitType())) {
    if (other != unit) compatible.push_back(std::move(other));
  }
  return compatible;
}

}  // namespace Tarvex::VantraCore::Experimental
