#pragma once

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/WellKnownType.h>
#include <VantraCore/detail/CountedHolder.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/IVariantData.h>

#include <variant/ArrayHolders.h>
#include <variant/HolderReference.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace Tarvex::VantraCore::Internal {

namespace TransmuteDetail {

inline void requireNumeric(WellKnownType kind) {
  if (!hasNumericBase(kind))
    throw std::runtime_error("Can not convert non-numeric data type to complex numeric type");
}

// The bytes of `holder`'s block, as far as its kind tells them; 0 for a kind without an element type.
inline std::uint64_t storedBytes(IVariantData const &holder) {
  return holder.numberAllocatedElements() * elementSize(holder.wellKnownDataType());
}

}  // namespace TransmuteDetail

// A view of another holder's block under another element kind. Derived gives the kind, the capacity,
// the conversion, and how the fastest dimension scales (adjustFastestDimension).
template <class Derived>
class TransmuteVariant : public CountedHolder<IVariantData> {
 public:
  TransmuteVariant(TransmuteVariant const &) = delete;
  TransmuteVariant &operator=(TransmuteVariant const &) = delete;

  // Even a sole owner gets a plain array: writing must not reach the inner holder, which others may see.
  IVariantData *ensureUnique() override {
    IVariantData *const unique = clone();
    destruct();
    return unique;
  }
  IVariantData *clone() const override {
    return dispatchWellKnownType(derived().wellKnownDataType(), [&](auto tag) -> IVariantData * {
      using T = typename decltype(tag)::type;
      std::uint64_t const count = elementCount(dimensions());
      return VectorVariantData<T>::createCopy(dimensions(), dataOrdering(), count, elementsAs<T>(),
                                              std::min(count, readableElements<T>()));
    });
  }
  ArrayDimensionsView dimensions() const override { return m_dimensions; }
  bool isScalarStorage() const override { return false; }
  DataOrdering dataOrdering() const override { return m_inner->dataOrdering(); }
  void const *customTypeTag() const override { return nullptr; }
  CustomTypeOperations const *customTypeOperations() const override { return nullptr; }
  IVariantData *reorderData(DataOrdering ordering) const override {
    if (ordering == dataOrdering()) {
      copy();
      return const_cast<TransmuteVariant *>(this);
    }
    return dispatchWellKnownType(derived().wellKnownDataType(), [&](auto tag) -> IVariantData * {
      using T = typename decltype(tag)::type;
      return VectorVariantData<T>::createReordered(elementsAs<T>(), readableElements<T>(), dataOrdering(),
                                                   dimensions(), ordering);
    });
  }
  // Only the view's shape changes; the inner holder keeps its own. Any length of list fits.
  void reshapeNoRealloc(ArrayDimensionsView dims) override {
    ArrayHolderDetail::requireSizes(dims);
    if (ArrayHolderDetail::sameDimensions(dims, dimensions())) return;
    if (isShared()) ArrayHolderDetail::throwSharedReshape();
    if (elementCount(dims) > derived().numberAllocatedElements())
      ArrayHolderDetail::throwReshapeBeyondStorage();
    m_dimensions.assign(dims.begin(), dims.end());
  }
  IVariantData *reshapeToVxVariant(IVariantData const *, ArrayDimensionsView, DataOrdering) const override {
    throw std::runtime_error("Reshaping to VxVariant is not allowed for Transmute Variant");
  }
  void const *constStoredData() const override { return m_inner->constStoredData(); }
  void *mutableStoredData() override { return m_inner->mutableStoredData(); }

 protected:
  // Takes over the reference to `inner`. The fastest dimension (last in row-major, first in
  // column-major) is the one whose elements are interleaved, so it is the one that scales.
  explicit TransmuteVariant(IVariantData *inner) : m_inner(inner) {
    ArrayDimensionsView const dims = inner->dimensions();
    ArrayHolderDetail::requireSizes(dims);
    m_dimensions.assign(dims.begin(), dims.end());
    if (!m_dimensions.empty()) {
      std::uint64_t &fastest =
          inner->dataOrdering() == columnMajor ? m_dimensions.front() : m_dimensions.back();
      fastest = Derived::adjustFastestDimension(fastest);
    }
  }
  ~TransmuteVariant() override { m_inner->destruct(); }

  IVariantData *m_inner;

  // Wraps a converted inner holder in a new view of this class, or passes a refusal on as null.
  static IVariantData *wrap(IVariantData *converted) {
    if (converted == nullptr) return nullptr;
    HolderReference guard(converted);
    IVariantData *const view = new Derived(converted);
    guard.release();
    return view;
  }

 private:
  Derived const &derived() const noexcept { return static_cast<Derived const &>(*this); }
  template <class T>
  T const *elementsAs() const {
    return static_cast<T const *>(m_inner->constStoredData());
  }
  // What the view's own operations may read as T: never past the inner block, whatever the view claims.
  template <class T>
  std::uint64_t readableElements() const {
    return std::min(derived().numberAllocatedElements(), TransmuteDetail::storedBytes(*m_inner) / sizeof(T));
  }

  std::vector<std::uint64_t> m_dimensions;
};

// N complex values seen as 2N interleaved reals.
class TransmuteComplexToRealVariant final : public TransmuteVariant<TransmuteComplexToRealVariant> {
 public:
  explicit TransmuteComplexToRealVariant(IVariantData *inner) : TransmuteVariant(inner) {}
  static std::uint64_t adjustFastestDimension(std::uint64_t size) noexcept { return size * 2; }

  std::uint64_t numberAllocatedElements() const override { return m_inner->numberAllocatedElements() * 2; }
  WellKnownType wellKnownDataType() const override { return realPartKind(m_inner->wellKnownDataType()); }
  IVariantData *convertDataTo(WellKnownType type, ConversionPolicy policy) const override {
    TransmuteDetail::requireNumeric(type);
    return wrap(m_inner->convertDataTo(complexKindOf(type), policy));
  }
};

// 2N interleaved reals seen as N complex values; an odd last real is out of reach.
class TransmuteRealToComplexVariant final : public TransmuteVariant<TransmuteRealToComplexVariant> {
 public:
  explicit TransmuteRealToComplexVariant(IVariantData *inner) : TransmuteVariant(inner) {}
  static std::uint64_t adjustFastestDimension(std::uint64_t size) noexcept { return size / 2; }

  std::uint64_t numberAllocatedElements() const override { return m_inner->numberAllocatedElements() / 2; }
  WellKnownType wellKnownDataType() const override {
    WellKnownType const kind = m_inner->wellKnownDataType();
    TransmuteDetail::requireNumeric(kind);
    return complexKindOf(kind);
  }
  IVariantData *convertDataTo(WellKnownType type, ConversionPolicy policy) const override {
    return wrap(m_inner->convertDataTo(realPartKind(type), policy));
  }
};

}  // namespace Tarvex::VantraCore::Internal
