#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/UnitType.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxVariant.h>

#include <complex>

namespace Tarvex::VantraCore::Experimental {

// Tags for the text accessors: a VxString by value, or a reference into the stored node.
struct ValueTypeSemantics {};
struct ReferenceTypeSemantics {};

// A unit of measure. Its value x is, in SI, Scale * l + Offset, where l is x for a linear unit and
// 10^(x / LogMultiplier) for a logarithmic one. The numbers and labels live in a Map node under the keys
// "Scale", "Offset", "LogMultiplier", "SiUnits", "UnitTypeReferenceString" and "DisplayUnit"; the
// dimensions are those of the unit's type.
//
// Getters throw std::out_of_range "PropertyNode is not a map", "Key not found: <key>" or "PropertyNode is
// not a value" for a malformed node; setters turn a null node into a Map and throw "PropertyNode is not a
// Map" for a node of another kind.
class VANTRACORE_API Unit {
 public:
  // Scale 0.0 (so converting from it gives zero and to it divides by zero), dimensionless.
  Unit();
  // "SiUnits" and "UnitTypeReferenceString" both become the type's reference string.
  Unit(UnitType const &type, VxString displayUnit, double scale, double offset, double logMultiplier);
  // A node stored earlier: a Map with "Scale", "Offset", "SiUnits", "UnitTypeReferenceString" and
  // "DisplayUnit", else std::runtime_error "schema validation failed". The type stays dimensionless.
  explicit Unit(PropertyNode node);
  Unit(Unit const &other);
  Unit(Unit &&other) noexcept;
  Unit &operator=(Unit const &other);
  Unit &operator=(Unit &&other) noexcept;
  ~Unit();

  // 0.0 when the stored value does not convert to double.
  double getScale() const;
  double getOffset() const;
  double getLogMultiplier() const;
  void setScale(double scale);
  void setOffset(double offset);
  void setLogMultiplier(double logMultiplier);

  // The value forms give "" for a stored value that is no text; the reference forms throw the variant's
  // element errors instead.
  VxString getSiUnits(ValueTypeSemantics = ValueTypeSemantics()) const;
  VxString const &getSiUnits(ReferenceTypeSemantics) const;
  VxString getDisplayUnit(ValueTypeSemantics = ValueTypeSemantics()) const;
  VxString const &getDisplayUnit(ReferenceTypeSemantics) const;
  VxString getUnitTypeReferenceString(ValueTypeSemantics = ValueTypeSemantics()) const;
  VxString const &getUnitTypeReferenceString(ReferenceTypeSemantics) const;
  void setSiUnits(VxString const &siUnits);
  void setDisplayUnit(VxString const &displayUnit);
  void setUnitTypeReferenceString(VxString const &referenceSi);

  // "DisplayUnit", or "SiUnits" when that is empty. The reference form first writes the SI text into an
  // empty "DisplayUnit", even of a const unit.
  VxString getUnitsLabel(ValueTypeSemantics = ValueTypeSemantics()) const;
  VxString const &getUnitsLabel(ReferenceTypeSemantics) const;
  Unit &setUnitsLabel(VxString const &label);

  UnitType const &getUnitType() const { return m_unitType; }
  // The stored form, for keeping the unit in a property tree.
  PropertyNode const &getPropertyNode() const { return m_node; }

  bool isCommensurable(Unit const &other) const;
  // The type equals UnitType::dimensionless(), name included.
  bool isDimensionless() const;
  // A log multiplier other than 0.0; NaN counts.
  bool isLogarithmic() const;

  // `value` in this unit expressed in `to`. Incommensurable units throw std::runtime_error "Units <to>
  // is not commensurable to <this>" ("Commensurable" for the complex form).
  double convertTo(Unit const &to, double value) const;
  std::complex<double> convertTo(Unit const &to, std::complex<double> value) const;
  // Every element converted, as double (complex double for complex kinds) in the same shape and order.
  // Units with byte-equal "SiUnits" return `value` untouched. Throws std::runtime_error "To units are not
  // commensurable - from: <this> to <to>", or "Failed convering units from <this> to <to>" when the
  // elements do not convert to numbers.
  VxVariant convertTo(Unit const &to, VxVariant value) const;
  // As the variant convertTo, with the same checks and messages, but every element goes through scale,
  // offset and logarithm whatever the SI texts say: "°C" to "K" adds 273.15 although both read "K".
  // Always a new array (or scalar); `value` is left as it is.
  VxVariant convertElements(Unit const &to, VxVariant const &value) const;

  // The unit of a unit text such as "mV" or "kg*m/s^2"; std::runtime_error "Error constructing a unit
  // from SI String <text>" if it does not parse.
  static Unit fromIviUnitString(VxString const &text);
  // Parses `text` into this unit: type, "Offset", "Scale", "LogMultiplier", then "SiUnits". Throws
  // std::runtime_error "Invalid units string <text>".
  void parseAndSetSiUnits(VxString const &text);

 private:
  friend class UnitType;

  // Parsing may replace the type; everything else fixes it at construction.
  void setUnitType(UnitType const &type) { m_unitType = type; }

  PropertyNode m_node;
  UnitType m_unitType;
};

// Dimensions, offset, scale, log multiplier, then the labels of the reference forms.
VANTRACORE_API bool operator==(Unit const &a, Unit const &b);
VANTRACORE_API bool operator!=(Unit const &a, Unit const &b);
// Scale 1.0, offset 0.0, linear, labelled "(a)*b", "a/(b)", "(a)^n"; the type is found or registered
// for the combined dimensions.
VANTRACORE_API Unit operator*(Unit const &a, Unit const &b);
VANTRACORE_API Unit operator/(Unit const &a, Unit const &b);
VANTRACORE_API Unit operator^(Unit const &a, int power);

}  // namespace Tarvex::VantraCore::Experimental
