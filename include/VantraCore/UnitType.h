#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/VxString.h>

#include <array>
#include <cstdint>
#include <vector>

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
// process-wide registry that starts with the 33 predefined quantities below, in this order, and only
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

  static UnitType const s_length;
  static UnitType const s_mass;
  static UnitType const s_time;
  static UnitType const s_area;
  static UnitType const s_volume;
  static UnitType const s_planeAngle;
  static UnitType const s_solidAngle;
  static UnitType const s_velocity;
  static UnitType const s_acceleration;
  static UnitType const s_force;
  static UnitType const s_pressure;
  static UnitType const s_energy;
  static UnitType const s_power;
  static UnitType const s_frequency;
  static UnitType const s_electricCurrent;
  static UnitType const s_electricCharge;
  static UnitType const s_electricPotential;
  static UnitType const s_electricResistance;
  static UnitType const s_electricCapacitance;
  static UnitType const s_magneticFlux;
  static UnitType const s_magneticFluxDensity;
  static UnitType const s_inductance;
  static UnitType const s_conductance;
  static UnitType const s_thermodynamicTemperature;
  static UnitType const s_amountOfSubstance;
  static UnitType const s_luminousIntensity;
  static UnitType const s_luminousFlux;
  static UnitType const s_illuminance;
  static UnitType const s_radioactivity;
  static UnitType const s_absorbedDose;
  static UnitType const s_equivalentDose;
  static UnitType const s_catalyticActivity;
  static UnitType const s_dimensionless;

  static UnitType const &length() { return s_length; }
  static UnitType const &mass() { return s_mass; }
  static UnitType const &time() { return s_time; }
  static UnitType const &area() { return s_area; }
  static UnitType const &volume() { return s_volume; }
  static UnitType const &planeAngle() { return s_planeAngle; }
  static UnitType const &solidAngle() { return s_solidAngle; }
  static UnitType const &velocity() { return s_velocity; }
  static UnitType const &acceleration() { return s_acceleration; }
  static UnitType const &force() { return s_force; }
  static UnitType const &pressure() { return s_pressure; }
  static UnitType const &energy() { return s_energy; }
  static UnitType const &power() { return s_power; }
  static UnitType const &frequency() { return s_frequency; }
  static UnitType const &electricCurrent() { return s_electricCurrent; }
  static UnitType const &electricCharge() { return s_electricCharge; }
  static UnitType const &electricPotential() { return s_electricPotential; }
  static UnitType const &electricResistance() { return s_electricResistance; }
  static UnitType const &electricCapacitance() { return s_electricCapacitance; }
  static UnitType const &magneticFlux() { return s_magneticFlux; }
  static UnitType const &magneticFluxDensity() { return s_magneticFluxDensity; }
  static UnitType const &inductance() { return s_inductance; }
  static UnitType const &conductance() { return s_conductance; }
  static UnitType const &thermodynamicTemperature() { return s_thermodynamicTemperature; }
  static UnitType const &amountOfSubstance() { return s_amountOfSubstance; }
  static UnitType const &luminousIntensity() { return s_luminousIntensity; }
  static UnitType const &luminousFlux() { return s_luminousFlux; }
  static UnitType const &illuminance() { return s_illuminance; }
  static UnitType const &radioactivity() { return s_radioactivity; }
  static UnitType const &absorbedDose() { return s_absorbedDose; }
  static UnitType const &equivalentDose() { return s_equivalentDose; }
  static UnitType const &catalyticActivity() { return s_catalyticActivity; }
  static UnitType const &dimensionless() { return s_dimensionless; }

 private:
  friend class Unit;
  struct Registry;
  __attribute__((visibility("hidden"))) static Registry &registry();
  // The registry's own dimensionless entry, valid even while other modules' static initialisers run.
  __attribute__((visibility("hidden"))) static UnitType const &registeredDimensionless();
  UnitType(VxString name, VxString referenceSi, UnitDimensions dims);

  VxString m_name;
  VxString m_referenceSi;
  UnitDimensions m_dimensions;
};

}  // namespace Tarvex::VantraCore::Experimental
