#include <VantraCore/Unit.h>
#include <VantraCore/UnitType.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <shared_mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore::Experimental {

namespace {

struct Predefined {
  char const *name;
  char const *referenceSi;
  int exponents[9];
};

#define VANTRACORE_PREDEFINED_ROW(accessor, name, referenceSi, ...) {name, referenceSi, {__VA_ARGS__}},
constexpr Predefined s_predefined[] = {VANTRACORE_PREDEFINED_UNIT_TYPES(VANTRACORE_PREDEFINED_ROW)};
#undef VANTRACORE_PREDEFINED_ROW

// Each type's place in the registry.
#define VANTRACORE_PREDEFINED_INDEX(accessor, ...) accessor##Index,
enum PredefinedIndex : std::size_t { VANTRACORE_PREDEFINED_UNIT_TYPES(VANTRACORE_PREDEFINED_INDEX) };
#undef VANTRACORE_PREDEFINED_INDEX

UnitDimensions dimensionsOf(Predefined const &row) {
  int const *e = row.exponents;
  return UnitDimensions(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8]);
}

// Exponents wrap around in 32 bits, so that an absurd text such as "F^1000000000" or a huge power
// gives some answer rather than overflow.
template <class Combine>
std::array<std::int32_t, 9> combined(std::array<std::int32_t, 9> const &a,
                                     std::array<std::int32_t, 9> const &b, Combine op) noexcept {
  std::array<std::int32_t, 9> result;
  for (std::size_t i = 0; i < result.size(); ++i)
    result[i] =
        static_cast<std::int32_t>(op(static_cast<std::uint32_t>(a[i]), static_cast<std::uint32_t>(b[i])));
  return result;
}

}  // namespace

UnitDimensions UnitDimensions::operator^(int power) const noexcept {
  UnitDimensions result;
  result.m_exponents = combined(m_exponents, m_exponents,
                                [power](std::uint32_t e, std::uint32_t) { return e * std::uint32_t(power); });
  return result;
}

UnitDimensions operator*(UnitDimensions const &a, UnitDimensions const &b) noexcept {
  UnitDimensions result;
  result.m_exponents =
      combined(a.m_exponents, b.m_exponents, [](std::uint32_t x, std::uint32_t y) { return x + y; });
  return result;
}

UnitDimensions operator/(UnitDimensions const &a, UnitDimensions const &b) noexcept {
  UnitDimensions result;
  result.m_exponents =
      combined(a.m_exponents, b.m_exponents, [](std::uint32_t x, std::uint32_t y) { return x - y; });
  return result;
}

VxString UnitDimensions::SIUnitsString() const {
  static char const *const symbols[9] = {"m", "kg", "s", "A", "K", "mol", "cd", "rad", "sr"};
  std::string numerator;
  std::string denominator;
  bool severalBelow = false;
  for (std::size_t i = 0; i < 9; ++i) {
    // Widened so that the magnitude of INT_MIN prints correctly.
    long long const e = m_exponents[i];
    if (e < 0) {
      if (!denominator.empty()) {
        severalBelow = true;
        denominator += '*';
      }
      denominator += symbols[i];
      if (e < -1) denominator += '^' + std::to_string(-e);
    } else if (e > 0) {
      if (!numerator.empty()) numerator += '*';
      numerator += symbols[i];
      if (e > 1) numerator += '^' + std::to_string(e);
    }
  }
  std::string result = numerator.empty() ? std::string("1") : numerator;
  if (!denominator.empty()) result += severalBelow ? "/(" + denominator + ")" : "/" + denominator;
  return VxString(result);
}

// Entries live in a deque so that references handed out by create stay valid as it grows; the mutex
// lets registration run beside lookups.
struct VANTRACORE_HIDDEN UnitType::Registry {
  std::shared_mutex mutex;
  std::deque<UnitType> entries;
};

UnitType::Registry &UnitType::registry() {
  static Registry *const instance = [] {
    // Never destroyed: modules unloaded after this one may still hold and compare types.
    auto *registry = new Registry;
    for (Predefined const &row : s_predefined) {
      UnitDimensions const dims = dimensionsOf(row);
      VxString reference(row.referenceSi);
      if (reference.empty()) reference = dims.SIUnitsString();
      registry->entries.push_back(UnitType(VxString(row.name), reference, dims));
    }
    return registry;
  }();
  return *instance;
}

UnitType const &UnitType::registeredDimensionless() {
  return registry().entries[dimensionlessIndex];
}

UnitType::UnitType() : m_name("none") {}

UnitType::UnitType(VxString name, VxString referenceSi, UnitDimensions dims)
    : m_name(std::move(name)), m_referenceSi(std::move(referenceSi)), m_dimensions(dims) {}

UnitType const &UnitType::create(VxString name, UnitDimensions dims, VxString referenceSi) {
  if (referenceSi.empty()) referenceSi = dims.SIUnitsString();
  Registry &r = registry();
  std::unique_lock<std::shared_mutex> const lock(r.mutex);
  r.entries.push_back(UnitType(std::move(name), std::move(referenceSi), dims));
  return r.entries.back();
}

UnitType const &UnitType::findByReferenceSiString(VxString const &referenceSi) {
  Registry &r = registry();
  {
    std::shared_lock<std::shared_mutex> const lock(r.mutex);
    for (UnitType const &entry : r.entries)
      if (entry.m_referenceSi == referenceSi) return entry;
  }
  throw std::runtime_error("Could not find a UnitType with reference SI string " + referenceSi.toStdString());
}

namespace {

template <class Entries>
std::vector<UnitType> compatibleIn(Entries const &entries, UnitDimensions const &dims) {
  std::vector<UnitType> result;
  for (UnitType const &entry : entries)
    if (entry.getDimensions() == dims) result.push_back(entry);
  return result;
}

UnitType pickByName(std::vector<UnitType> const &compatible, VxString const &name) {
  if (compatible.size() > 1) {
    std::string_view const text(name.data(), name.size());
    for (UnitType const &type : compatible) {
      VxString const reference = type.getReferenceSIString();
      if (text.find(std::string_view(reference.data(), reference.size())) != std::string_view::npos)
        return type;
    }
  }
  return compatible.front();
}

}  // namespace

std::vector<UnitType> const UnitType::findCompatibleTypes(UnitDimensions const &dims) {
  Registry &r = registry();
  std::shared_lock<std::shared_mutex> const lock(r.mutex);
  return compatibleIn(r.entries, dims);
}

UnitType const UnitType::findUnitType(UnitDimensions const &dims, VxString const &name) {
  std::vector<UnitType> compatible = findCompatibleTypes(dims);
  if (!compatible.empty()) return pickByName(compatible, name);
  // Looked at again under the writer's lock, so that racing callers register one type, not several.
  Registry &r = registry();
  std::unique_lock<std::shared_mutex> const lock(r.mutex);
  compatible = compatibleIn(r.entries, dims);
  if (!compatible.empty()) return pickByName(compatible, name);
  r.entries.push_back(UnitType(name, dims.SIUnitsString(), dims));
  return r.entries.back();
}

UnitType::DecibelType UnitType::getDBType(UnitType const &type) {
  UnitDimensions const dims = type.m_dimensions;
  bool const amplitude = dims == dimensionsOf(s_predefined[electricPotentialIndex]) ||
                         dims == dimensionsOf(s_predefined[electricCurrentIndex]);
  return amplitude ? dbAmplitude : dbPower;
}

bool UnitType::operator==(UnitType const &other) const {
  return m_name == other.m_name && m_dimensions == other.m_dimensions;
}

Unit UnitType::getBaseMKSUnits() const {
  return Unit::fromIviUnitString(m_referenceSi);
}

// Copies of the registry's entries, made in registration order while the library loads.
#define VANTRACORE_PREDEFINED_TYPE(accessor, ...) \
  UnitType const UnitType::s_##accessor = UnitType::registry().entries[accessor##Index];
VANTRACORE_PREDEFINED_UNIT_TYPES(VANTRACORE_PREDEFINED_TYPE)
#undef VANTRACORE_PREDEFINED_TYPE

}  // namespace Tarvex::VantraCore::Experimental
