#pragma once

#include <VantraCore/ExternalVariantStorage.h>
#include <VantraCore/detail/CountedHolder.h>
#include <VantraCore/detail/IVariantData.h>
#include <variant/VariantConversion.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Tarvex::VantraCore::Internal {

// A holder over a client's block. While attached every operation goes to the storage and nothing is
// copied; when the storage fires its detach callback the elements are copied into a private array,
// and from then on the adaptor forwards to that. Variants sharing the adaptor never notice the change.
class ExternalVariantStorageAdaptor final : public CountedHolder<IVariantData, std::uint64_t> {
 public:
  // Takes the storage's detach callback for this adaptor.
  explicit ExternalVariantStorageAdaptor(ExternalVariantStorageInterface *storage);
  ~ExternalVariantStorageAdaptor() override;
  ExternalVariantStorageAdaptor(ExternalVariantStorageAdaptor const &) = delete;
  ExternalVariantStorageAdaptor &operator=(ExternalVariantStorageAdaptor const &) = delete;

  // What the detach callback runs: copy the elements (again, when already detached) into a private
  // array and stop using the storage, without releasing it.
  void detach();

  IVariantData *clone() const override;
  std::uint64_t numberAllocatedElements() const override;
  ArrayDimensionsView dimensions() const override;
  bool isScalarStorage() const override { return false; }
  DataOrdering dataOrdering() const override;
  WellKnownType wellKnownDataType() const override;
  void const *customTypeTag() const override { return nullptr; }
  CustomTypeOperations const *customTypeOperations() const override { return nullptr; }
  IVariantData *reorderData(DataOrdering ordering) const override;
  void reshapeNoRealloc(ArrayDimensionsView dimensions) override;
  IVariantData *reshapeToVxVariant(IVariantData const *source, ArrayDimensionsView dimensions,
                                   DataOrdering ordering) const override;
  void const *constStoredData() const override;
  void *mutableStoredData() override;
  IVariantData *convertDataTo(WellKnownType type, ConversionPolicy policy) const override;

 private:
  // The storage's block as the conversion reads it; refuses a block that claims elements it lacks.
  ConversionSource storedBlock() const;

  ExternalVariantStorageInterface *m_storage;
  mutable std::vector<std::uint64_t> m_dimensionsCache;
  IVariantData *m_detachedData = nullptr;
  // The adaptor as the storage's callback reaches it: cleared when the adaptor dies, so a callback
  // fired afterwards finds nothing to detach.
  std::shared_ptr<ExternalVariantStorageAdaptor *> m_callbackTarget;
};

}  // namespace Tarvex::VantraCore::Internal
