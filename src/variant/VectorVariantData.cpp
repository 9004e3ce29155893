#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/VectorVariantData.h>

#include <variant/ArrayHolders.h>

#include <cstdint>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore::Internal {

namespace {

[[noreturn]] void throwDimensionMismatch() {
  throw std::length_error("dimensions do not match data length");
}

}  // namespace

template <class T>
IVariantData *constructVariantVectorWithDataWithDimsUnresolved(void const *data, std::uint64_t count,
                                                               ArrayDimensionsView dimensions,
                                                               DataOrdering ordering) {
  ArrayHolderDetail::requireSizes(dimensions);
  if (data == nullptr && count != 0) throw std::invalid_argument("Array data missing.");
  std::uint64_t const wholeArray[1] = {count};
  if (dimensions.count == 0 && count != 0) dimensions = ArrayDimensionsView(wholeArray, 1);
  if (elementCount(dimensions) != count) throwDimensionMismatch();
  return VectorVariantData<T>::createCopy(dimensions, ordering, count, static_cast<T const *>(data), count);
}

template <class T>
IVariantData *constructVariantVectorWithoutDataWithDimsUnresolved(ArrayDimensionsView dimensions,
                                                                  DataOrdering ordering) {
  ArrayHolderDetail::requireSizes(dimensions);
  return VectorVariantData<T>::create(dimensions, ordering, elementCount(dimensions));
}

template <class T>
IVariantData *constructVariantDataFromMovedVector(std::vector<T> data, ArrayDimensionsView dimensions,
                                                  DataOrdering ordering) {
  ArrayHolderDetail::requireSizes(dimensions);
  std::uint64_t const wholeArray[1] = {data.size()};
  if (elementCount(dimensions) == 0 && !data.empty()) dimensions = ArrayDimensionsView(wholeArray, 1);
  if (elementCount(dimensions) != data.size()) throwDimensionMismatch();
  return new StdVectorVariantData<T>(std::move(data), dimensions, ordering);
}

// The exported instances, from the kind list. Their explicit instantiation carries the export: an
// implicit one would take the hidden visibility of kinds such as Complex<T>.
#define VANTRACORE_ARRAY_FACTORIES(Type, Code, Name, MessageName)                                  \
  template VANTRACORE_API IVariantData *constructVariantVectorWithDataWithDimsUnresolved<Type>(    \
      void const *, std::uint64_t, ArrayDimensionsView, DataOrdering);                             \
  template VANTRACORE_API IVariantData *constructVariantVectorWithoutDataWithDimsUnresolved<Type>( \
      ArrayDimensionsView, DataOrdering);
#define VANTRACORE_MOVED_VECTOR_FACTORY(Type, Code, Name, MessageName)             \
  template VANTRACORE_API IVariantData *constructVariantDataFromMovedVector<Type>( \
      std::vector<Type>, ArrayDimensionsView, DataOrdering);
VANTRACORE_ELEMENT_KINDS(VANTRACORE_ARRAY_FACTORIES)
// Every kind but bool, whose std::vector keeps no block of elements to adopt.
VANTRACORE_NUMERIC_ELEMENT_KINDS(VANTRACORE_MOVED_VECTOR_FACTORY)
VANTRACORE_OTHER_ELEMENT_KINDS(VANTRACORE_MOVED_VECTOR_FACTORY)
static_assert(std::is_same_v<TruthElementKinds, TypeList<bool, Complex<bool>>>, "the truth kinds");
VANTRACORE_MOVED_VECTOR_FACTORY(Complex<bool>, typeComplexBool, , )
#undef VANTRACORE_MOVED_VECTOR_FACTORY
#undef VANTRACORE_ARRAY_FACTORIES

}  // namespace Tarvex::VantraCore::Internal
