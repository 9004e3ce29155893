#pragma once

// The words of unit text: prefixes and unit symbols. The atom pattern's alternatives are built from
// these rows, in row order, and the parser takes its factors and types from them.

#include <VantraCore/UnitType.h>

#include <string_view>

namespace Tarvex::VantraCore::Internal::IviUnitImplementation {

struct PrefixRow {
  std::string_view symbol;
  int exponent;
};

inline constexpr PrefixRow s_prefixes[] = {
    {"Y", 24}, {"Z", 21},  {"E", 18},  {"P", 15},  {"T", 12},  {"G", 9},   {"M", 6},
    {"k", 3},  {"h", 2},   {"da", 1},  {"d", -1},  {"c", -2},  {"m", -3},  {"\u00B5", -6},
    {"n", -9}, {"p", -12}, {"f", -15}, {"a", -18}, {"z", -21}, {"y", -24},
};

// The Greek small mu stands for micro as the micro sign does: most keyboards and many files give it.
// Both take two bytes in UTF-8, so reading one as the other keeps every length and position.
inline constexpr std::string_view s_microSign = "\u00B5";
inline constexpr std::string_view s_greekMu = "\u03BC";

using Experimental::UnitType;

struct UnitSymbolRow {
  std::string_view symbol;
  UnitType const *type;
  double scale;
};

// The first alternative that fits ends an atom, so the order matters: "m", "s", "W" and "S" come before
// "mol", "sr", "Wb" and "Sv", whose rows are therefore never reached.
inline constexpr UnitSymbolRow s_unitSymbols[] = {
    {"m", &UnitType::s_length, 1},
    {"g", &UnitType::s_mass, 0.001},
    {"s", &UnitType::s_time, 1},
    {"A", &UnitType::s_electricCurrent, 1},
    {"K", &UnitType::s_thermodynamicTemperature, 1},
    {"mol", &UnitType::s_amountOfSubstance, 1},
    {"cd", &UnitType::s_luminousIntensity, 1},
    {"Hz", &UnitType::s_frequency, 1},
    {"N", &UnitType::s_force, 1},
    {"Pa", &UnitType::s_pressure, 1},
    {"J", &UnitType::s_energy, 1},
    {"W", &UnitType::s_power, 1},
    {"C", &UnitType::s_electricCharge, 1},
    {"V", &UnitType::s_electricPotential, 1},
    {"F", &UnitType::s_electricCapacitance, 1},
    {"\u03A9", &UnitType::s_electricResistance, 1},
    {"S", &UnitType::s_conductance, 1},
    {"Wb", &UnitType::s_magneticFlux, 1},
    {"T", &UnitType::s_magneticFluxDensity, 1},
    {"H", &UnitType::s_inductance, 1},
    {"lm", &UnitType::s_luminousFlux, 1},
    {"lx", &UnitType::s_illuminance, 1},
    {"Bq", &UnitType::s_radioactivity, 1},
    {"Gy", &UnitType::s_absorbedDose, 1},
    {"Sv", &UnitType::s_equivalentDose, 1},
    {"kat", &UnitType::s_catalyticActivity, 1},
    {"l", &UnitType::s_volume, 0.001},
    {"L", &UnitType::s_volume, 0.001},
    {"rad", &UnitType::s_planeAngle, 1},
    {"sr", &UnitType::s_solidAngle, 1},
    {"deg", &UnitType::s_planeAngle, 0.017453292519943295},
};

}  // namespace Tarvex::VantraCore::Internal::IviUnitImplementation
