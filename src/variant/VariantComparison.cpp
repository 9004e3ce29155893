#include <VantraCore/detail/IVariantData.h>
#include <variant/ElementEquality.h>
#include <variant/HolderReference.h>

#include <algorithm>
#include <cstdint>
#include <exception>

namespace Tarvex::VantraCore::Internal {

namespace {

constexpr WellKnownType noType{};
constexpr WellKnownType customType{WellKnownTypeValue::typeCustom};

bool sameDimensions(ArrayDimensionsView a, ArrayDimensionsView b) {
  return a.count == b.count && std::equal(a.begin(), a.end(), b.begin());
}

// Whether the ordering changes the bytes of a shape: [2, 3] yes, [1, 5, 1] no.
bool isMultiDimensional(ArrayDimensionsView dimensions) {
  if (elementCount(dimensions) < 2) return false;
  return std::count_if(dimensions.begin(), dimensions.end(), [](std::uint64_t size) { return size >= 2; }) >=
         2;
}

// The first `count` elements of both blocks. A shape that promises more elements than a storage holds
// never compares equal: its block is not read past the end.
bool sameElements(WellKnownType kind, CustomTypeOperations const *custom, IVariantData const &a,
                  IVariantData const &b, std::uint64_t count, bool identical) {
  if (count > a.numberAllocatedElements() || count > b.numberAllocatedElements()) return false;
  if (kind == customType) {
    if (custom == nullptr) throwUnknownType();
    return custom->equal(a.constStoredData(), b.constStoredData(), count, identical);
  }
  return elementsEqual(kind, a.constStoredData(), b.constStoredData(), count);
}

// Steps past the shape test, where a std::exception means "not equivalent".
bool equivalentContents(IVariantData const &a, IVariantData const &b, ArrayDimensionsView dimensions,
                        CustomTypeOperations const *custom, ConversionPolicy policy) {
  WellKnownType const aKind = a.wellKnownDataType();
  WellKnownType const bKind = b.wellKnownDataType();
  DataOrdering const aOrdering = a.dataOrdering();
  DataOrdering const bOrdering = b.dataOrdering();
  std::uint64_t const count = elementCount(dimensions);
  bool const orderingMatters = isMultiDimensional(dimensions);

  if (aKind == bKind) {
    if (aOrdering == bOrdering || !orderingMatters) return sameElements(aKind, custom, a, b, count, false);
    HolderReference const reordered(b.reorderData(aOrdering));
    return sameElements(aKind, custom, a, *reordered, count, false);
  }

  WellKnownType const common = WellKnownType::getCommonWellKnownType(aKind, bKind);
  if (common == noType) return false;
  // A refused conversion leaves no holder to compare: not equivalent.
  auto inCommonKind = [&](IVariantData const &holder, DataOrdering ordering) {
    HolderReference converted(holder.convertDataTo(common, policy));
    if (converted && orderingMatters) converted.reset(converted->reorderData(ordering));
    return converted;
  };
  if (aKind == common) {
    HolderReference const b2 = inCommonKind(b, aOrdering);
    return b2 && sameElements(common, nullptr, a, *b2, count, false);
  }
  if (bKind == common) {
    HolderReference const a2 = inCommonKind(a, bOrdering);
    return a2 && sameElements(common, nullptr, *a2, b, count, false);
  }
  HolderReference const a2(a.convertDataTo(common, policy));
  if (!a2) return false;
  HolderReference const b2 = inCommonKind(b, aOrdering);
  return b2 && sameElements(common, nullptr, *a2, *b2, count, false);
}

}  // namespace

bool isIdenticalTo(IVariantData const &a, IVariantData const &b) {
  WellKnownType const kind = a.wellKnownDataType();
  if (kind == noType) return b.wellKnownDataType() == noType;
  if (b.wellKnownDataType() != kind) return false;
  ArrayDimensionsView const dimensions = a.dimensions();
  if (!sameDimensions(dimensions, b.dimensions())) return false;
  if (a.dataOrdering() != b.dataOrdering()) return false;
  // The type tags are not compared: a's comparison decides.
  return sameElements(kind, a.customTypeOperations(), a, b, elementCount(dimensions), true);
}

bool isEquivalentTo(IVariantData const &a, IVariantData const &b, ConversionPolicy policy) {
  CustomTypeOperations const *custom = nullptr;
  if (a.wellKnownDataType() == customType && b.wellKnownDataType() == customType) {
    if (a.isScalarStorage() && b.isScalarStorage()) return isIdenticalTo(a, b);
    custom = a.customTypeOperations();
  }
  ArrayDimensionsView const dimensions = a.dimensions();
  if (elementCount(dimensions) == 0 && elementCount(b.dimensions()) == 0) return true;
  if (!sameDimensions(dimensions, b.dimensions())) return false;
  try {
    return equivalentContents(a, b, dimensions, custom, policy);
  } catch (std::exception const &) {
    return false;
  }
}

}  // namespace Tarvex::VantraCore::Internal
