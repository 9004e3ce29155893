#include <VantraCore/TransmuteVariant.h>
#include <variant/TransmuteHolders.h>

#include <stdexcept>

namespace Tarvex::VantraCore::Internal {

namespace {

template <class View>
IVariantData *constructView(IVariantData *inner) {
  if (inner == nullptr) throw std::invalid_argument("VxVariant data is null");
  return new View(inner);
}

}  // namespace

IVariantData *constructTransmuteComplexToRealVariant(IVariantData *inner) {
  return constructView<TransmuteComplexToRealVariant>(inner);
}

IVariantData *constructTransmuteRealToComplexVariant(IVariantData *inner) {
  return constructView<TransmuteRealToComplexVariant>(inner);
}

}  // namespace Tarvex::VantraCore::Internal
