#include <VantraCore/detail/IVariantData.h>
#include <variant/VariantConversion.h>

#include <stdexcept>

namespace Tarvex::VantraCore::Internal {

IVariantData *NullVariantData::clone() const {
  return const_cast<NullVariantData *>(this);
}

IVariantData *NullVariantData::reorderData(DataOrdering) const {
  return const_cast<NullVariantData *>(this);
}

void NullVariantData::reshapeNoRealloc(ArrayDimensionsView dimensions) {
  if (dimensions.count == 0) return;
  throw std::invalid_argument(
      "Cannot reshape an empty VxVariant to one containing more than zero elements without reallocating.");
}

IVariantData *NullVariantData::convertDataTo(WellKnownType type, ConversionPolicy policy) const {
  if (type == WellKnownType()) return const_cast<NullVariantData *>(this);
  return convertVariantData({WellKnownType(), nullptr, 0, {}, rowMajor}, ConvertedHolder::vector, type,
                            policy);
}

IVariantData *constructVariantNull() {
  // Never destroyed, so that variants released by other statics at exit still find it.
  static NullVariantData *const instance = new NullVariantData;
  return instance;
}

}  // namespace Tarvex::VantraCore::Internal
