#include <VantraCore/ExternalVariantStorage.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/VectorVariantData.h>
#include <variant/ArrayHolders.h>
#include <variant/ExternalStorageAdaptor.h>
#include <variant/VariantConversion.h>

#include <stdexcept>

namespace Tarvex::VantraCore {

void ExternalVariantStorageInterface::reservedOperation() {}

namespace Internal {

ExternalVariantStorageAdaptor::ExternalVariantStorageAdaptor(ExternalVariantStorageInterface *storage)
    : m_storage(storage), m_callbackTarget(std::make_shared<ExternalVariantStorageAdaptor *>(this)) {
  storage->detachCallback = [target = m_callbackTarget] {
    if (*target != nullptr) (*target)->detach();
  };
}

ExternalVariantStorageAdaptor::~ExternalVariantStorageAdaptor() {
  *m_callbackTarget = nullptr;
  if (m_storage != nullptr) m_storage->release();
  if (m_detachedData != nullptr) m_detachedData->destruct();
}

ConversionSource ExternalVariantStorageAdaptor::storedBlock() const {
  if (m_storage == nullptr) {
    IVariantData const &data = *m_detachedData;
    return {data.wellKnownDataType(), data.constStoredData(), data.numberAllocatedElements(),
            data.dimensions(), data.dataOrdering()};
  }
  // The storage's view of its shape need not outlive the call, so the block reads the cache.
  ArrayDimensionsView const dims = dimensions();
  ConversionSource const block{m_storage->wellKnownDataType(), m_storage->constStoredData(),
                               m_storage->numberAllocatedElements(), dims, m_storage->dataOrdering()};
  if (block.data == nullptr && block.count != 0) throw std::invalid_argument("External storage has no data.");
  return block;
}

void ExternalVariantStorageAdaptor::detach() {
  WellKnownType const kind = wellKnownDataType();
  IVariantData *const copy = m_storage != nullptr ? convertStoredElements(storedBlock(), kind, conversionCast)
                                                  : m_detachedData->convertDataTo(kind, conversionCast);
  // A kind converted to itself is copied; only a broken holder could refuse.
  if (copy == nullptr) throw std::runtime_error("Cannot copy external storage.");
  if (m_detachedData != nullptr) m_detachedData->destruct();
  m_detachedData = copy;
  m_storage = nullptr;
}

IVariantData *ExternalVariantStorageAdaptor::clone() const {
  ConversionSource const block = storedBlock();
  return dispatchWellKnownType(block.kind, [&](auto tag) {
    using T = typename decltype(tag)::type;
    return constructVariantVectorWithDataWithDimsUnresolved<T>(block.data, block.count, block.dimensions,
                                                               block.ordering);
  });
}

std::uint64_t ExternalVariantStorageAdaptor::numberAllocatedElements() const {
  return m_storage != nullptr ? m_storage->numberAllocatedElements()
                              : m_detachedData->numberAllocatedElements();
}

ArrayDimensionsView ExternalVariantStorageAdaptor::dimensions() const {
  if (m_storage == nullptr) return m_detachedData->dimensions();
  ArrayDimensionsView const dims = m_storage->dimensions();
  ArrayHolderDetail::requireSizes(dims);
  m_dimensionsCache.assign(dims.begin(), dims.end());
  return m_dimensionsCache;
}

DataOrdering ExternalVariantStorageAdaptor::dataOrdering() const {
  return m_storage != nullptr ? m_storage->dataOrdering() : m_detachedData->dataOrdering();
}

WellKnownType ExternalVariantStorageAdaptor::wellKnownDataType() const {
  return m_storage != nullptr ? m_storage->wellKnownDataType() : m_detachedData->wellKnownDataType();
}

IVariantData *ExternalVariantStorageAdaptor::reorderData(DataOrdering ordering) const {
  if (m_storage != nullptr) throw std::runtime_error("Not implemented!");
  // The private copy's own reference must not escape: a sole owner of the adaptor writes into it.
  if (ordering == m_detachedData->dataOrdering()) {
    copy();
    return const_cast<ExternalVariantStorageAdaptor *>(this);
  }
  return m_detachedData->reorderData(ordering);
}

void ExternalVariantStorageAdaptor::reshapeNoRealloc(ArrayDimensionsView dims) {
  if (m_storage != nullptr) return m_storage->reshapeNoRealloc(dims);
  // The private copy is never shared, so the adaptor's own count decides.
  ArrayHolderDetail::requireSizes(dims);
  if (isShared() && !ArrayHolderDetail::sameDimensions(dims, m_detachedData->dimensions()))
    ArrayHolderDetail::throwSharedReshape();
  m_detachedData->reshapeNoRealloc(dims);
}

IVariantData *ExternalVariantStorageAdaptor::reshapeToVxVariant(IVariantData const *source,
                                                                ArrayDimensionsView dims,
                                                                DataOrdering ordering) const {
  return dispatchWellKnownType(wellKnownDataType(), [&](auto tag) -> IVariantData * {
    using T = typename decltype(tag)::type;
    return CustomVectorVariantData<T>::createReshaped(source, dims, ordering);
  });
}

void const *ExternalVariantStorageAdaptor::constStoredData() const {
  return m_storage != nullptr ? m_storage->constStoredData() : m_detachedData->constStoredData();
}

void *ExternalVariantStorageAdaptor::mutableStoredData() {
  return m_storage != nullptr ? m_storage->mutableStoredData() : m_detachedData->mutableStoredData();
}

IVariantData *ExternalVariantStorageAdaptor::convertDataTo(WellKnownType type,
                                                           ConversionPolicy policy) const {
  if (m_storage == nullptr) return m_detachedData->convertDataTo(type, policy);
  return convertStoredElements(storedBlock(), type, policy);
}

IVariantData *constructVariantExternal(ExternalVariantStorageInterface *storage) {
  if (storage == nullptr) throw std::invalid_argument("External storage is null.");
  return new ExternalVariantStorageAdaptor(storage);
}

}  // namespace Internal
}  // namespace Tarvex::VantraCore
