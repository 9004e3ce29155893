#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <variant/ArrayHolders.h>
#include <variant/VariantConversion.h>

#include <new>
#include <stdexcept>
#include <utility>

namespace Tarvex::VantraCore::Internal {

template <class T>
void ScalarVariantData<T>::reshapeNoRealloc(ArrayDimensionsView dimensions) {
  if (dimensions.count == 1 && dimensions.sizes[0] == 1) return;
  throw std::invalid_argument(
      "Cannot reshape a scalar VxVariant to different dimensions without reallocating.");
}

template <class T>
IVariantData *ScalarVariantData<T>::convertDataTo(WellKnownType type, ConversionPolicy policy) const {
  return convertVariantData({wellKnownTypeOf<T>(), &value, 1, dimensions(), rowMajor},
                            ConvertedHolder::scalar, type, policy);
}

template <class T>
IVariantData *ScalarVariantData<T>::reshapeToVxVariant(IVariantData const *source,
                                                       ArrayDimensionsView dimensions,
                                                       DataOrdering ordering) const {
  return VectorVariantData<T>::createReshaped(source, dimensions, ordering);
}

template <class T>
IVariantData *constructVariantScalar(void *buffer, std::size_t bufferSize, T value) {
  if (buffer != nullptr && bufferSize >= sizeof(ScalarVariantDataNonCounted<T>))
    return new (buffer) ScalarVariantDataNonCounted<T>(std::move(value));
  return new ScalarVariantDataRefCounted<T>(std::move(value));
}

IVariantData *copyConstructVariantScalar(void *buffer, std::size_t bufferSize,
                                         VxVariantDirectStorage const &source) {
  if (source.data == nullptr) throw std::invalid_argument("VxVariant data is null");
  IVariantData const &holder = *source.data;
  return findElementKind(
      holder.wellKnownDataType(),
      [&](auto tag) {
        using T = typename decltype(tag)::type;
        if (!holder.isScalarStorage())
          throw std::invalid_argument("Cannot copy an array VxVariant as a scalar.");
        return constructVariantScalar<T>(buffer, bufferSize,
                                         *static_cast<T const *>(holder.constStoredData()));
      },
      []() -> IVariantData * { throwUnknownType(); });
}

// Every scalar must fit the direct storage's buffer, which stands in place wherever it fits.
#define VANTRACORE_SCALAR_HOLDERS(Type, Code, Name, MessageName)                                   \
  template class ScalarVariantData<Type>;                                                          \
  template class ScalarVariantDataRefCounted<Type>;                                                \
  template class ScalarVariantDataNonCounted<Type>;                                                \
  template VANTRACORE_API IVariantData *constructVariantScalar<Type>(void *, std::size_t, Type);   \
  static_assert(sizeof(ScalarVariantDataNonCounted<Type>) <= VxVariantDirectStorage::bufferSize && \
                    alignof(ScalarVariantDataNonCounted<Type>) <= alignof(VxVariantDirectStorage), \
                "an in-place scalar fits the direct storage's buffer");
VANTRACORE_ELEMENT_KINDS(VANTRACORE_SCALAR_HOLDERS)
#undef VANTRACORE_SCALAR_HOLDERS

}  // namespace Tarvex::VantraCore::Internal
