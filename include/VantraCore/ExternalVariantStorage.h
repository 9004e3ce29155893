#pragma once

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/Export.h>
#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/VariantCApi.h>
#include <VantraCore/WellKnownType.h>

#include <cstdint>
#include <functional>

namespace Tarvex::VantraCore {

// A block of elements that belongs to a client, presented as a variant without a copy. The client
// derives from this class and keeps the block alive until it fires `detachCallback`; the adaptor then
// copies the elements and never touches this object again. The adaptor calls these operations
// through an object built by another module, so their order is a binary interface: never reorder,
// insert or remove one.
class VANTRACORE_API ExternalVariantStorageInterface {
 public:
  virtual std::uint64_t numberAllocatedElements() const = 0;
  // The view needs to live only until the call returns.
  virtual ArrayDimensionsView dimensions() const = 0;
  virtual DataOrdering dataOrdering() const = 0;
  virtual WellKnownType wellKnownDataType() const = 0;
  virtual void reshapeNoRealloc(ArrayDimensionsView dimensions) = 0;
  // Holds the slot of the operations after it; the adaptor never calls it.
  virtual void reservedOperation();
  virtual void const *constStoredData() const = 0;
  virtual void *mutableStoredData() = 0;
  // The adaptor has no further use for this object. Called once, when the adaptor dies, and not at
  // all when the storage has detached before.
  virtual void release() = 0;

  // Filled in by the adaptor, replacing what was there; the client fires it (when set) as its storage
  // is about to end, and stores nothing into it. Firing it after the adaptor died does nothing.
  std::function<void()> detachCallback;

 protected:
  ExternalVariantStorageInterface() = default;
  ExternalVariantStorageInterface(ExternalVariantStorageInterface const &) = default;
  ExternalVariantStorageInterface &operator=(ExternalVariantStorageInterface const &) = default;
  // Not virtual, so the slots above stay where they are; nothing deletes a storage through this class.
  ~ExternalVariantStorageInterface() = default;
};

namespace Internal {

// A holder over `storage`, count 1. Until the storage detaches it reads and writes the client's block
// in place; a null storage throws std::invalid_argument.
VANTRACORE_API IVariantData *constructVariantExternal(ExternalVariantStorageInterface *storage);

}  // namespace Internal
}  // namespace Tarvex::VantraCore

extern "C" {
// A new holder over `storage` with one reference (constructVariantExternal).
VANTRACORE_API VxVariantData *VxVariantData_C_API_createWithExternalStorage(
    VxTransportRecord *record, Tarvex::VantraCore::ExternalVariantStorageInterface *storage) noexcept;
}
