#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <numerics/ElementConversion.h>
#include <variant/ArrayHolders.h>
#include <variant/HolderReference.h>
#include <variant/VariantConversion.h>

#include <algorithm>
#include <cstdint>

namespace Tarvex::VantraCore::Internal {

namespace {

// A holder of U of the class that `form` names, for the converter to write every element of.
template <class U>
HolderReference makeTarget(ConvertedHolder form, ArrayDimensionsView dimensions, DataOrdering ordering,
                           std::uint64_t count) {
  switch (form) {
    case ConvertedHolder::scalar:
      return HolderReference(new ScalarVariantDataRefCounted<U>(U()));
    case ConvertedHolder::vector:
      return HolderReference(
          VectorVariantData<U>::create(dimensions, ordering, count, ElementStart::overwritten));
    case ConvertedHolder::customVector:
      return HolderReference(
          CustomVectorVariantData<U>::create(dimensions, ordering, count, ElementStart::overwritten));
  }
  throwUnknownType();
}

}  // namespace

IVariantData *convertVariantData(ConversionSource const &source, ConvertedHolder form, WellKnownType target,
                                 ConversionPolicy policy) {
  return dispatchWellKnownType(target, [&](auto tag) -> IVariantData * {
    using U = typename decltype(tag)::type;
    if (source.kind == WellKnownType()) return makeTarget<U>(form, {}, rowMajor, 0).release();
    ElementConverter const convert = elementConverter(source.kind, target);
    HolderReference result = makeTarget<U>(form, source.dimensions, source.ordering, source.count);
    std::uint64_t const count = std::min(source.count, result->numberAllocatedElements());
    return convert(source.data, result->mutableStoredData(), count, policy) ? result.release() : nullptr;
  });
}

IVariantData *convertStoredElements(ConversionSource const &source, WellKnownType target,
                                    ConversionPolicy policy) {
  if (source.kind == WellKnownType()) throwUnknownType();
  return convertVariantData(source, ConvertedHolder::vector, target, policy);
}

}  // namespace Tarvex::VantraCore::Internal
