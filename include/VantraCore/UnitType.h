#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/VxString.h>

#include <array>
#include <cstdint>
#include <vector>

// The predefined quantities in registration order, which settles every "first hit" search and so must
// not change: X(accessor, name, reference SI string, exponents of m kg s A K mol cd rad sr). An empty
// reference string stands for the computed one.
#define VANTRACORE_PREDEFINED_UNIT_TYPES(X)                                                \
  X(length, "length", "m", 1, 0, 0, 0, 0, 0, 0, 0, 0)                                      \
  X(mass, "mass", "kg", 0, 1, 0, 0, 0, 0, 0, 0, 0)                                         \
  X(time, "time", "s", 0, 0, 1, 0, 0, 0, 0, 0, 0)                                          \
  X(area, "area", "m^2", 2, 0, 0, 0, 0, 0, 0, 0, 0)                                        \
  X(volume, "volume", "m^3", 3, 0, 0, 0, 0, 0, 0, 0, 0)                                    \
  X(planeAngle, "plane angle", "rad", 0, 0, 0, 0, 0, 0, 0, 1, 0)                           \
  X(solidAngle, "solid angle", "sr", 0, 0, 0, 0, 0, 0, 0, 0, 1)                            \
  X(velocity, "velocity", "m/s", 1, 0, -1, 0, 0, 0, 0, 0, 0)                               \
  X(acceleration, "acceleration", "m/s^2", 1, 0, -2, 0, 0, 0, 0, 0, 0)                     \
  X(force, "force", "N", 1, 1, -2, 0, 0, 0, 0, 0, 0)                                       \
  X(pressure, "pressure", "Pa", -1, 1, -2, 0, 0, 0, 0, 0, 0)                               \
  X(energy, "energy", "J", 2, 1, -2, 0, 0, 0, 0, 0, 0)                                     \
  X(power, "power", "W", 2, 1, -3, 0, 0, 0, 0, 0, 0)                                       \
  X(frequency, "frequency", "Hz", 0, 0, -1, 0, 0, 0, 0, 0, 0)                              \
  X(electricCurrent, "electric current", "A", 0, 0, 0, 1, 0, 0, 0, 0, 0)                   \
  X(electricCharge, "electric charge", "C", 0, 0, 1, 1, 0, 0, 0, 0, 0)                     \
  X(electricPotential, "electric potential", "V", 2, 1, -3, -1, 0, 0, 0, 0, 0)             \
  X(electricResistance, "electric resistance", "\u03A9", 2, 1, -3, -2, 0, 0, 0, 0, 0)      \
  X(electricCapacitance, "electric capacitance", "F", -2, -1, 4, 2, 0, 0, 0, 0, 0)         \
  X(magneticFlux, "magnetic flux", "Wb", 2, 1, -2, -1, 0, 0, 0, 0, 0)                      \
  X(magneticFluxDensity, "magnetic flux density", "T", 0, 1, -2, -1, 0, 0, 0, 0, 0)        \
  X(inductance, "inductance", "H", 2, 1, -2, -2, 0, 0, 0, 0, 0)                            \
  X(conductance, "conductance", "S", -2, -1, 3, 2, 0, 0, 0, 0, 0)                          \
  X(thermodynamicTemperature, "thermodynamic temperature", "K", 0, 0, 0, 0, 1, 0, 0, 0, 0) \
  X(amountOfSubstance, "amount of substance", "mol", 0, 0, 0, 0, 0, 1, 0, 0, 0)            \
  X(luminousIntensity, "luminous intensity", "cd", 0, 0, 0, 0, 0, 0, 1, 0, 0)              \
  X(luminousFlux, "luminous flux", "lm", 0, 0, 0, 0, 0, 0, 1, 0, 1)                        \
  X(illuminance, "illuminance", "lx", -2, 0, 0, 0, 0, 0, 1, 0, 1)                          \
  X(radioactivity, "radioactivity", "Bq", 0, 0, -1, 0, 0, 0, 0, 0, 0)                      \
  X(absorbedDose, "absorbed dose of radiation", "Gy", 2, 0, -2, 0, 0, 0, 0, 0, 0)          \
  X(equivalentDose, "equivalent dose of radiation", "Sv", 2, 0, -2, 0, 0, 0, 0, 0, 0)      \
  X(catalyticActivity, "catalytic activity", "kat", 0, 0, -1, 0, 0, 1, 0, 0, 0)            \
  X(dimensionless, "scalar", "", 0, 0, 0, 0, 0, 0, 0, 0, 0)

namespace Tarvex::VantraCore::Experimental {

class Unit;
class UnitDimensions;

// Exponent-wise sum (a product of quantities) and difference (a quotient).
VANTRACORE_API UnitDimensions operator*(UnitDimensions const &a, UnitDimensions const &b) noexcept;
VANTRACORE_API UnitDimensions operator/(UnitDimensions const &a, UnitDimensions const &b) noexcept;

// The nine SI exponents of a quantity: m, kg, s, A, K, mol, cd, rad, sr. The two angles count as full
// dimensions, so a plane angle is not dimensionless.
class VANTRACORE_API UnitDimensions {
 public:
  UnitDimensions() noexcept : m_exponents{} {}
  UnitDimensions(int length, int mass, int time, int electricalCurrent, int thermodynamicTemperature,
                 int quantityOfSubstance, int luminousIntensity, int angle, int solidAngle) noexcept
      : m_exponents{length,
                    mass,
                    time,
                    electricalCurrent,
                    thermodynamicTemperature,
                    quantityOfSubstance,
                    luminousIntensity,
                    angle,
                    solidAngle} {}

  int length() const noexcept { return m_exponents[0]; }
  int mass() const noexcept { return m_exponents[1]; }
  int time() const noexcept { return m_exponents[2]; }
  int electricalCurrent() const noexcept { return m_exponents[3]; }
  int thermodynamicTemperature() const noexcept { return m_exponents[4]; }
  int quantityOfSubstance() const noexcept { return m_exponents[5]; }
  int luminousIntensity() const noexcept { return m_exponents[6]; }
  int angle() const noexcept { return m_exponents[7]; }
  int solidAngle() const noexcept { return m_exponents[8]; }

  // Every exponent times `power`.
  UnitDimensions operator^(int power) const noexcept;

  // "1", "m/s", "1/s", "kg/(m*s^2)": positive exponents over negative ones, the denominator in
  // parentheses when it has more than one factor.
  VxString SIUnitsString() const;

  friend bool operator==(UnitDimensions const &a, UnitDimensions const &b) noexcept {
    return a.m_exponents == b.m_exponents;
  }
  friend bool operator!=(UnitDimensions const &a, UnitDimensions const &b) noexcept { return !(a == b); }
  friend UnitDimensions operator*(UnitDimensions const &a, UnitDimensions const &b) noexcept;
  friend UnitDimensions operator/(UnitDimensions const &a, UnitDimensions const &b) noexcept;

 private:
  std::array<std::int32_t, 9> m_exponents;
};

// A named physical quantity: name, the text of its base unit and its dimensions. Types are kept in a
// process-wide registry that starts with the 33 predefined quantities above, in their order, and only
// grows. The registry is safe for concurrent readers and writers.
class VANTRACORE_API UnitType {
 public:
  enum DecibelType { dbPower = 0, dbAmplitude = 1 };

  // Name "none", empty reference string, all-zero dimensions.
  UnitType();
  UnitType(UnitType const &other) = default;
  UnitType(UnitType &&other) noexcept = default;
  UnitType &operator=(UnitType const &other) = default;
  UnitType &operator=(UnitType &&other) noexcept = default;
  ~UnitType() = default;

  // Appends a new entry, duplicates included. An empty `referenceSi` becomes dims.SIUnitsString().
  // The reference stays valid for the life of the process.
  static UnitType const &create(VxString name, UnitDimensions dims, VxString referenceSi);
  // The first entry with this reference string, else std::runtime_error "Could not find a UnitType with
  // reference SI string " and the text.
  static UnitType const &findByReferenceSiString(VxString const &referenceSi);
  // Copies of every entry with these dimensions, in registry order.
  static std::vector<UnitType> const findCompatibleTypes(UnitDimensions const &dims);
  // The quantity of a unit text: the only compatible type, else the first whose reference string
  // occurs in `name`, else the first compatible one. Without any, registers a type named `name`.
  static UnitType const findUnitType(UnitDimensions const &dims, VxString const &name);
  // dbAmplitude (20 log10) for the dimensions of voltage and current, dbPower (10 log10) otherwise.
  static DecibelType getDBType(UnitType const &type);

  VxString getName() const { return m_name; }
  VxString getReferenceSIString() const { return m_referenceSi; }
  UnitDimensions getDimensions() const { return m_dimensions; }
  // The unit of the reference string, read as unit text.
  Unit getBaseMKSUnits() const;

  // Name and dimensions; the reference string takes no part.
  bool operator==(UnitType const &other) const;

  // s_<accessor>, a copy of the registry's entry made while the library loads, and <accessor>().
#define VANTRACORE_PREDEFINED_UNIT_TYPE_MEMBERS(accessor, ...) \
  static UnitType const s_##accessor;                          \
  static UnitType const &accessor() {                          \
    return s_##accessor;                                       \
  }
  VANTRACORE_PREDEFINED_UNIT_TYPES(VANTRACORE_PREDEFINED_UNIT_TYPE_MEMBERS)
#undef VANTRACORE_PREDEFINED_UNIT_TYPE_MEMBERS

 private:
  friend class Unit;
  struct Registry;
  VANTRACORE_HIDDEN static Registry &registry();
  // The registry's own dimensionless entry, valid even while other modules' static initialisers run.
  VANTRACORE_HIDDEN static UnitType const &registeredDimensionless();
  UnitType(VxString name, VxString referenceSi, UnitDimensions dims);

  VxString m_name;
  VxString m_referenceSi;
  UnitDimensions m_dimensions;
};

}  // namespace Tarvex::VantraCore::Experimental
