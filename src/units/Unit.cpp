#include <units/UnitElements.h>
#include <units/UnitParser.h>

#include <VantraCore/InternedString.h>
#include <VantraCore/Unit.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace Tarvex::VantraCore::Experimental {

namespace {

struct UnitKeys {
  InternedString scale{"Scale"};
  InternedString offset{"Offset"};
  InternedString logMultiplier{"LogMultiplier"};
  InternedString siUnits{"SiUnits"};
  InternedString unitTypeReferenceString{"UnitTypeReferenceString"};
  InternedString displayUnit{"DisplayUnit"};
};

UnitKeys const &keys() {
  static UnitKeys const instance;
  return instance;
}

// The one way into the node for every getter, so all of them fail with the node's own messages.
VxVariant const &storedValue(PropertyNode const &node, InternedString key) {
  return node.map().at(key).value();
}

template <class T>
T storedOr(PropertyNode const &node, InternedString key, T fallback) {
  VxVariant const &value = storedValue(node, key);
  try {
    return value.get<T>();
  } catch (std::exception const &) {
    return fallback;
  }
}

VxString const &storedText(PropertyNode const &node, InternedString key) {
  return storedValue(node, key).at<VxString>(0);
}

PropertyNode makeNode(double scale, double offset, double logMultiplier, VxString const &siUnits,
                      VxString const &referenceSi, VxString const &displayUnit) {
  UnitKeys const &k = keys();
  PropertyNode node;
  node.set(k.scale, VxVariant(scale));
  node.set(k.offset, VxVariant(offset));
  node.set(k.logMultiplier, VxVariant(logMultiplier));
  node.set(k.siUnits, VxVariant(siUnits));
  node.set(k.unitTypeReferenceString, VxVariant(referenceSi));
  node.set(k.displayUnit, VxVariant(displayUnit));
  return node;
}

bool holdsStoredForm(PropertyNode const &node) {
  if (node.kind() != PropertyNodeKind::Map) return false;
  UnitKeys const &k = keys();
  PropertyMap const &map = node.map();
  for (InternedString key : {k.scale, k.offset, k.siUnits, k.unitTypeReferenceString, k.displayUnit})
    if (map.find(key) == map.end()) return false;
  return true;
}

std::string siText(Unit const &unit) {
  return unit.getSiUnits(ValueTypeSemantics()).toStdString();
}

// The checks and messages that every conversion of a whole variant shares.
template <class Convert>
VxVariant convertedVariant(Unit const &from, Unit const &to, Convert &&convert) {
  if (!from.isCommensurable(to))
    throw std::runtime_error("To units are not commensurable - from: " + siText(from) + " to " + siText(to));
  try {
    return convert(Internal::UnitConversion::Formula(from, to));
  } catch (...) {
    throw std::runtime_error("Failed convering units from " + siText(from) + " to " + siText(to));
  }
}

}  // namespace

using Internal::IviUnitImplementation::throwWithText;
using Internal::IviUnitImplementation::viewOf;
using Internal::UnitConversion::Formula;

Unit::Unit()
    : m_node(makeNode(0.0, 0.0, 0.0, VxString(), VxString(), VxString())),
      m_unitType(UnitType::registeredDimensionless()) {}

Unit::Unit(UnitType const &type, VxString displayUnit, double scale, double offset, double logMultiplier)
    : m_node(makeNode(scale, offset, logMultiplier, type.getReferenceSIString(), type.getReferenceSIString(),
                      displayUnit)),
      m_unitType(type) {}

Unit::Unit(PropertyNode node) : m_unitType(UnitType::registeredDimensionless()) {
  if (!holdsStoredForm(node)) throw std::runtime_error("schema validation failed");
  m_node = std::move(node);
}

Unit::Unit(Unit const &other) = default;
Unit::Unit(Unit &&other) noexcept = default;
Unit &Unit::operator=(Unit const &other) = default;
Unit &Unit::operator=(Unit &&other) noexcept = default;
Unit::~Unit() = default;

double Unit::getScale() const {
  return storedOr(m_node, keys().scale, 0.0);
}
double Unit::getOffset() const {
  return storedOr(m_node, keys().offset, 0.0);
}
double Unit::getLogMultiplier() const {
  return storedOr(m_node, keys().logMultiplier, 0.0);
}
void Unit::setScale(double scale) {
  m_node.set(keys().scale, VxVariant(scale));
}
void Unit::setOffset(double offset) {
  m_node.set(keys().offset, VxVariant(offset));
}
void Unit::setLogMultiplier(double logMultiplier) {
  m_node.set(keys().logMultiplier, VxVariant(logMultiplier));
}

VxString Unit::getSiUnits(ValueTypeSemantics) const {
  return storedOr(m_node, keys().siUnits, VxString());
}
VxString const &Unit::getSiUnits(ReferenceTypeSemantics) const {
  return storedText(m_node, keys().siUnits);
}
VxString Unit::getDisplayUnit(ValueTypeSemantics) const {
  return storedOr(m_node, keys().displayUnit, VxString());
}
VxString const &Unit::getDisplayUnit(ReferenceTypeSemantics) const {
  return storedText(m_node, keys().displayUnit);
}
VxString Unit::getUnitTypeReferenceString(ValueTypeSemantics) const {
  return storedOr(m_node, keys().unitTypeReferenceString, VxString());
}
VxString const &Unit::getUnitTypeReferenceString(ReferenceTypeSemantics) const {
  return storedText(m_node, keys().unitTypeReferenceString);
}
void Unit::setSiUnits(VxString const &siUnits) {
  m_node.set(keys().siUnits, VxVariant(siUnits));
}
void Unit::setDisplayUnit(VxString const &displayUnit) {
  m_node.set(keys().displayUnit, VxVariant(displayUnit));
}
void Unit::setUnitTypeReferenceString(VxString const &referenceSi) {
  m_node.set(keys().unitTypeReferenceString, VxVariant(referenceSi));
}

VxString Unit::getUnitsLabel(ValueTypeSemantics) const {
  VxString display = getDisplayUnit(ValueTypeSemantics());
  return display.empty() ? getSiUnits(ValueTypeSemantics()) : display;
}

VxString const &Unit::getUnitsLabel(ReferenceTypeSemantics) const {
  VxString const &display = getDisplayUnit(ReferenceTypeSemantics());
  if (!display.empty()) return display;
  // The label is filled in on first use, even through a const unit; the node is ours to change.
  VxVariant &stored = const_cast<PropertyNode &>(m_node).map().at(keys().displayUnit).value();
  stored = VxVariant(getSiUnits(ValueTypeSemantics()));
  return stored.at<VxString>(0);
}

Unit &Unit::setUnitsLabel(VxString const &label) {
  setDisplayUnit(label);
  return *this;
}

void Unit::parseAndSetSiUnits(VxString const &text) {
  try {
    auto const parsed = Internal::IviUnitImplementation::parseUnitsText(viewOf(text));
    setUnitType(parsed.type);
    setOffset(0.0);
    setScale(parsed.scale);
    setLogMultiplier(parsed.logMultiplier);
    setSiUnits(text);
  } catch (...) {
    throwWithText("Invalid units string ", viewOf(text));
  }
}

Unit Unit::fromIviUnitString(VxString const &text) {
  Unit unit;
  // Parsing writes into a null node, which fixes the stored key order of a unit read from text.
  unit.m_node = PropertyNode();
  try {
    unit.parseAndSetSiUnits(text);
    unit.setDisplayUnit(text);
    unit.setUnitTypeReferenceString(unit.m_unitType.getReferenceSIString());
  } catch (...) {
    throwWithText("Error constructing a unit from SI String ", viewOf(text));
  }
  return unit;
}

bool Unit::isCommensurable(Unit const &other) const {
  return m_unitType.getDimensions() == other.m_unitType.getDimensions();
}

bool Unit::isDimensionless() const {
  return m_unitType == UnitType::dimensionless();
}

bool Unit::isLogarithmic() const {
  return getLogMultiplier() != 0.0;
}

double Unit::convertTo(Unit const &to, double value) const {
  if (!isCommensurable(to))
    throw std::runtime_error("Units " + siText(to) + " is not commensurable to " + siText(*this));
  return Formula(*this, to)(value);
}

std::complex<double> Unit::convertTo(Unit const &to, std::complex<double> value) const {
  if (!isCommensurable(to))
    throw std::runtime_error("Units " + siText(to) + " is not Commensurable to " + siText(*this));
  Formula const formula(*this, to);
  return {formula(value.real()), formula(value.imag())};
}

VxVariant Unit::convertTo(Unit const &to, VxVariant value) const {
  if (getSiUnits(ValueTypeSemantics()) == to.getSiUnits(ValueTypeSemantics())) return value;
  // Taking our reference along lets a moved-in array of doubles be converted without a copy.
  return convertedVariant(*this, to, [&value](Formula const &formula) {
    return Internal::UnitConversion::convertedElementsReusing(formula, std::move(value));
  });
}

VxVariant Unit::convertElements(Unit const &to, VxVariant const &value) const {
  return convertedVariant(*this, to, [&value](Formula const &formula) {
    return Internal::UnitConversion::convertedElements(formula, value);
  });
}

bool operator==(Unit const &a, Unit const &b) {
  return a.getUnitType().getDimensions() == b.getUnitType().getDimensions() &&
         a.getOffset() == b.getOffset() && a.getScale() == b.getScale() &&
         a.getLogMultiplier() == b.getLogMultiplier() &&
         a.getUnitsLabel(ReferenceTypeSemantics()) == b.getUnitsLabel(ReferenceTypeSemantics());
}

bool operator!=(Unit const &a, Unit const &b) {
  return !(a == b);
}

namespace {

Unit combined(UnitDimensions const &dims, std::string const &label) {
  VxString const text(label);
  return Unit(UnitType::findUnitType(dims, text), text, 1.0, 0.0, 0.0);
}

std::string labelOf(Unit const &unit) {
  return unit.getUnitsLabel(ReferenceTypeSemantics()).toStdString();
}

}  // namespace

Unit operator*(Unit const &a, Unit const &b) {
  return combined(a.getUnitType().getDimensions() * b.getUnitType().getDimensions(),
                  "(" + labelOf(a) + ")*" + labelOf(b));
}

Unit operator/(Unit const &a, Unit const &b) {
  return combined(a.getUnitType().getDimensions() / b.getUnitType().getDimensions(),
                  labelOf(a) + "/(" + labelOf(b) + ")");
}

Unit operator^(Unit const &a, int power) {
  return combined(a.getUnitType().getDimensions() ^ power, "(" + labelOf(a) + ")^" + std::to_string(power));
}

}  // namespace Tarvex::VantraCore::Experimental
