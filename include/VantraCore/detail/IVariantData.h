#pragma once

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/Export.h>
#include <VantraCore/WellKnownType.h>

#include <cstdint>

namespace Tarvex::VantraCore::Internal {

// What a custom holder knows of its element type that the kind code cannot say: how to compare two
// runs of it. `identical` asks for sameness of form rather than of value.
struct CustomTypeOperations {
  bool (*equal)(void const *a, void const *b, std::uint64_t count, bool identical);
};

// The identity of an element type, compared by address only. Each module has its own copies, which
// is why tags never cross a module boundary.
template <class T>
inline constexpr char customTypeTagObject = 0;
template <class T>
constexpr void const *customTypeTagOf() noexcept {
  return &customTypeTagObject<T>;
}
// The tag that stands for no element type.
constexpr void const *noElementTypeTag() noexcept {
  return customTypeTagOf<void>();
}

// The abstract holder behind every variant: element kind, shape, ordering and one contiguous block of
// elements, plus all the work that depends on the element type. A plain pointer to a holder is one
// reference. The order of the virtual operations is a binary interface between separately built
// modules: never reorder, insert or remove one.
class IVariantData {
 public:
  // Runs from destruct at count zero, or from the owner of an in-place holder, without freeing.
  virtual ~IVariantData() = default;

  // Adds one reference.
  virtual void copy() const noexcept = 0;
  // Gives up one reference; the last one deletes the holder.
  virtual void destruct() const noexcept = 0;
  // Exchanges the caller's reference for one to a holder nobody else sees: this one when the count is
  // 1, else a clone. The caller replaces its pointer by the result before writing.
  virtual IVariantData *ensureUnique() = 0;
  // A new holder with its own storage and one reference; this one keeps all of its references.
  virtual IVariantData *clone() const = 0;
  // Capacity of the storage in elements; may exceed the shape's count after a shrinking reshape.
  virtual std::uint64_t numberAllocatedElements() const = 0;
  // A view into the holder, invalidated by any reshape of it.
  virtual ArrayDimensionsView dimensions() const = 0;
  // True only for the scalar holders; an array of one element is not scalar storage.
  virtual bool isScalarStorage() const = 0;
  virtual DataOrdering dataOrdering() const = 0;
  // 0 only for the null holder.
  virtual WellKnownType wellKnownDataType() const = 0;
  // customTypeTagOf<T>() of the element type, or null where there is none.
  virtual void const *customTypeTag() const = 0;
  // Null for all but the custom array holders.
  virtual CustomTypeOperations const *customTypeOperations() const = 0;
  // The same logical array in `ordering`, with a new reference for the caller (this holder after
  // copy() when the ordering is already that). The caller's own reference stays its own.
  virtual IVariantData *reorderData(DataOrdering ordering) const = 0;
  // Changes the shape in place, never moving an element, or throws.
  virtual void reshapeNoRealloc(ArrayDimensionsView dimensions) = 0;
  // A new zero-initialised array of this holder's element type with that shape and ordering, into
  // which source's numberAllocatedElements() elements are copied in storage order, read as this
  // holder's element type without any check. A null source copies nothing.
  virtual IVariantData *reshapeToVxVariant(IVariantData const *source, ArrayDimensionsView dimensions,
                                           DataOrdering ordering) const = 0;
  // The first element; never copies, also when shared.
  virtual void const *constStoredData() const = 0;
  // The same block for writing. No copy-on-write here: a writer calls ensureUnique first.
  virtual void *mutableStoredData() = 0;
  // A new holder of `type` with one reference, or null when an element cannot be converted under
  // `policy`.
  virtual IVariantData *convertDataTo(WellKnownType type, ConversionPolicy policy) const = 0;

 protected:
  IVariantData() = default;
  IVariantData(IVariantData const &) = default;
  IVariantData &operator=(IVariantData const &) = default;
};

// The value "nothing": immortal, uncounted, empty. Nullness is tested by kind 0, never by address.
class NullVariantData final : public IVariantData {
 public:
  void copy() const noexcept override {}
  void destruct() const noexcept override {}
  IVariantData *ensureUnique() override { return this; }
  IVariantData *clone() const override;
  std::uint64_t numberAllocatedElements() const override { return 0; }
  ArrayDimensionsView dimensions() const override { return {}; }
  bool isScalarStorage() const override { return false; }
  DataOrdering dataOrdering() const override { return rowMajor; }
  WellKnownType wellKnownDataType() const override { return {}; }
  void const *customTypeTag() const override { return nullptr; }
  CustomTypeOperations const *customTypeOperations() const override { return nullptr; }
  IVariantData *reorderData(DataOrdering ordering) const override;
  // Accepts only a shape without dimensions.
  void reshapeNoRealloc(ArrayDimensionsView dimensions) override;
  IVariantData *reshapeToVxVariant(IVariantData const *, ArrayDimensionsView, DataOrdering) const override {
    return nullptr;
  }
  void const *constStoredData() const override { return nullptr; }
  void *mutableStoredData() override { return nullptr; }
  // Kind 0 gives this holder, any other element kind an empty array of that kind.
  IVariantData *convertDataTo(WellKnownType type, ConversionPolicy policy) const override;
};

// The process's one null holder. Copying or releasing it does nothing.
VANTRACORE_API IVariantData *constructVariantNull();

// Whether two holders are the same value in the same form: kind, dimension list, ordering and
// elements (floating elements by ==, so a NaN differs from itself).
VANTRACORE_API bool isIdenticalTo(IVariantData const &a, IVariantData const &b);

// Whether two holders mean the same numbers whatever their form: empty shapes are all alike, a
// different ordering is looked through, and different kinds are compared in their common kind after
// converting under `policy`. A failure of the conversion or reordering answers false.
VANTRACORE_API bool isEquivalentTo(IVariantData const &a, IVariantData const &b, ConversionPolicy policy);

}  // namespace Tarvex::VantraCore::Internal
