#pragma once

#include <VantraCore/ExternalVariantStorage.h>
#include <VantraCore/detail/IVariantData.h>
#include <variant/VariantConversion.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace Tarvex::VantraCore::Internal {

// A holder over a client's block. While attached every operation goes to the storage and nothing is
// copied; when the storage fires its detach callback the elements are copied into a private array,
// and from then on the adaptor forwards to that. Variants sharing the adaptor never notice the change.
class ExternalVariantStorageAdaptor final : public IVariantData {
 public:
  // Takes the storage's detach callback for this adaptor.
  explicit ExternalVariantStorageAdaptor(ExternalVariantStorageInterface *storage);
  ~ExternalVariantStorageAdaptor() override;
  ExternalVariantStorageAdaptor(ExternalVariantStorageAdaptor const &) = delete;
  ExternalVariantStorageAdaptor &operator=(ExternalVariantStorageAdaptor const &) = delete;

  std::uint64_t referenceCount() const noexcept { return m_count.load(); }
  bool isAttached() const noexcept { return m_storage != nullptr; }
  // What the detach callback runs: copy the elements (again, when already detached) into a private
  // array and stop using the storage, without releasing it.
  void detach();

  void copy() const noexcept override { m_count.fetch_add(1); }
  void destruct() const noexcept override {
    if (m_count.fetch_sub(1) == 1) delete this;
  }
  IVariantData *ensureUnique() override;
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
  mutable std::atomic<std::uint64_t> m_count{1};
  // The adaptor as the storage's callback reaches it: cleared when the adaptor dies, so a callback
  // fired afterwards finds nothing to detach.
  std::shared_ptr<ExternalVariantStorageAdaptor *> m_callbackTarget;
};

}  // namespace Tarvex::VantraCore::Internal
