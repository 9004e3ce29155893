#pragma once

// The array holders: VectorVariantData<T> with header, dimension list and elements in one
// allocation, CustomVectorVariantData<T> (the same under the kind customType), and
// StdVectorVariantData<T> around a std::vector that was moved in.

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/WellKnownType.h>
#include <VantraCore/detail/CountedHolder.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/IVariantData.h>

#include <numerics/OrderingConversion.h>
#include <variant/BulkAllocation.h>
#include <variant/ElementEquality.h>
#include <variant/HolderReference.h>
#include <variant/VariantConversion.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore::Internal {

namespace ArrayHolderDetail {

[[noreturn]] inline void throwSharedReshape() {
  throw std::runtime_error("Reference count is greater than 1 - cannot reshape without reallocating.");
}
[[noreturn]] inline void throwReshapeBeyondStorage() {
  throw std::length_error("Cannot reshape array to given dimensions without reallocating.");
}

inline bool sameDimensions(ArrayDimensionsView a, ArrayDimensionsView b) noexcept {
  return a.count == b.count && std::equal(a.begin(), a.end(), b.begin());
}

// A view with entries but no sizes would be read through a null pointer.
// A shape whose element count does not fit 64 bits would wrap to a small count and leave the sizes
// naming elements that do not exist, so it is refused before anything is allocated.
inline void requireSizes(ArrayDimensionsView dims) {
  if (dims.count != 0 && dims.sizes == nullptr) throw std::invalid_argument("Dimension sizes missing.");
  std::uint64_t count = 0;
  if (!checkedElementCount(dims, count))
    throw std::length_error("Array dimensions give more elements than 64 bits can count.");
}

// Elements of the trivially copyable kinds are all-zero by default and copy as bytes; only VxString
// is built and copied one by one.
template <class T>
void constructDefault(T *elements, std::uint64_t count) noexcept {
  if constexpr (std::is_trivially_copyable_v<T>) {
    if (count != 0) std::memset(static_cast<void *>(elements), 0, count * sizeof(T));
  } else {
    std::uninitialized_value_construct_n(elements, count);
  }
}
template <class T>
void constructCopies(T const *source, std::uint64_t count, T *elements) noexcept {
  if constexpr (std::is_trivially_copyable_v<T>) {
    std::memcpy(static_cast<void *>(elements), source, count * sizeof(T));
  } else {
    std::uninitialized_copy_n(source, count, elements);
  }
}
template <class T>
void destroy(T *elements, std::uint64_t count) noexcept {
  if constexpr (!std::is_trivially_destructible_v<T>) std::destroy_n(elements, count);
}

// The size in bytes of the elements `holder` stores, when it tells: by its kind, or for a custom
// holder by its tag. 0 when unknown.
template <class T>
std::size_t storedElementSize(IVariantData const &holder) {
  WellKnownType const kind = holder.wellKnownDataType();
  if (kind == WellKnownTypeValue::typeCustom)
    return holder.customTypeTag() == customTypeTagOf<T>() ? sizeof(T) : 0;
  return elementSize(kind);
}

// The elements reshapeToVxVariant may take from `source` as T: all of them, as long as reading them
// as T stays inside the source's block and does not take numbers for strings or strings for numbers.
template <class T>
std::uint64_t reshapeSourceCount(IVariantData const *source) {
  if (source == nullptr) return 0;
  std::uint64_t const count = source->numberAllocatedElements();
  if (count == 0) return 0;
  bool const sourceHoldsStrings = source->wellKnownDataType() == WellKnownTypeValue::typeString ||
                                  (source->wellKnownDataType() == WellKnownTypeValue::typeCustom &&
                                   source->customTypeTag() == customTypeTagOf<VxString>());
  if (sourceHoldsStrings != std::is_same_v<T, VxString> || storedElementSize<T>(*source) < sizeof(T))
    throw std::invalid_argument("Wrong data type.");
  return count;
}

// The comparison table of the custom holders: element equality, whatever `identical` asks.
template <class T>
bool customElementsEqual(void const *a, void const *b, std::uint64_t count, bool) {
  return elementsEqual(static_cast<T const *>(a), static_cast<T const *>(b), count);
}
template <class T>
inline constexpr CustomTypeOperations customOperations{&customElementsEqual<T>};

}  // namespace ArrayHolderDetail

// How a new holder's elements start: default-valued, or, for a caller about to write every one,
// unset where T needs no construction (strings are still constructed).
enum class ElementStart { defaultValued, overwritten };

// What the array holders of T share: the reference count and the answers that follow from T alone.
template <class T>
class CountedArrayData : public CountedHolder<IVariantData> {
 public:
  bool isScalarStorage() const override { return false; }
  WellKnownType wellKnownDataType() const override { return wellKnownTypeOf<T>(); }
  void const *customTypeTag() const override { return customTypeTagOf<T>(); }
  CustomTypeOperations const *customTypeOperations() const override { return nullptr; }

 protected:
  CountedArrayData() = default;
};

// Header, dimension list and elements in one allocation. The dimension list has as many entries as
// the shape the holder was built with, and a reshape never lengthens it, so it never moves.
template <class T>
class VectorVariantData : public CountedArrayData<T> {
  static_assert(isElementKind<T>, "an element kind");
  static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__, "the block aligns the elements");

 public:
  // A holder of `numberOfElements` default-valued elements, count 1.
  static VectorVariantData *create(ArrayDimensionsView dims, DataOrdering ordering,
                                   std::uint64_t numberOfElements,
                                   ElementStart start = ElementStart::defaultValued) {
    return allocate<VectorVariantData>(dims, ordering, numberOfElements, nullptr, 0, start);
  }
  // The same, with the first `sourceCount` elements copied from `source` (strings shared).
  static VectorVariantData *createCopy(ArrayDimensionsView dims, DataOrdering ordering,
                                       std::uint64_t numberOfElements, T const *source,
                                       std::uint64_t sourceCount) {
    return allocate<VectorVariantData>(dims, ordering, numberOfElements, source, sourceCount);
  }
  // What reshapeToVxVariant makes: the shape's count of elements, default-valued, after which
  // source's elements are copied in storage order. A source with more elements than the shape
  // throws std::length_error, one whose elements cannot be read as T std::invalid_argument.
  static VectorVariantData *createReshaped(IVariantData const *source, ArrayDimensionsView dims,
                                           DataOrdering ordering) {
    return reshaped<VectorVariantData>(source, dims, ordering);
  }
  // The array of shape `dims` that `elements` hold in `from`, in the ordering `to`. Only the shape's
  // elements are carried over: a shrinking reshape leaves spare ones behind it.
  static VectorVariantData *createReordered(T const *elements, std::uint64_t count, DataOrdering from,
                                            ArrayDimensionsView dims, DataOrdering to) {
    return reordered<VectorVariantData>(elements, count, from, dims, to);
  }

  // Frees the whole block that allocate() took.
  static void operator delete(void *memory) noexcept { releaseBulk(memory); }

  T *elements() noexcept { return reinterpret_cast<T *>(reinterpret_cast<char *>(this) + elementsOffset()); }
  T const *elements() const noexcept {
    return reinterpret_cast<T const *>(reinterpret_cast<char const *>(this) + elementsOffset());
  }
  IVariantData *clone() const override { return cloneAs<VectorVariantData>(); }
  std::uint64_t numberAllocatedElements() const override { return m_numberOfElements; }
  ArrayDimensionsView dimensions() const override { return {dimensionSizes(), m_rank}; }
  DataOrdering dataOrdering() const override { return m_ordering; }
  IVariantData *reorderData(DataOrdering ordering) const override {
    return reorderedAs<VectorVariantData>(ordering);
  }
  void reshapeNoRealloc(ArrayDimensionsView dims) override {
    ArrayHolderDetail::requireSizes(dims);
    if (ArrayHolderDetail::sameDimensions(dims, dimensions())) return;
    if (this->isShared()) ArrayHolderDetail::throwSharedReshape();
    if (elementCount(dims) > m_numberOfElements || dims.count > m_rankLimit)
      ArrayHolderDetail::throwReshapeBeyondStorage();
    std::copy(dims.begin(), dims.end(), dimensionSizes());
    m_rank = dims.count;
  }
  IVariantData *reshapeToVxVariant(IVariantData const *source, ArrayDimensionsView dims,
                                   DataOrdering ordering) const override {
    return createReshaped(source, dims, ordering);
  }
  void const *constStoredData() const override { return elements(); }
  void *mutableStoredData() override { return elements(); }
  IVariantData *convertDataTo(WellKnownType type, ConversionPolicy policy) const override {
    return convertedAs(ConvertedHolder::vector, type, policy);
  }

 protected:
  VectorVariantData(ArrayDimensionsView dims, DataOrdering ordering, std::uint64_t numberOfElements) noexcept
      : m_numberOfElements(numberOfElements),
        m_rank(dims.count),
        m_rankLimit(dims.count),
        m_ordering(ordering) {
    std::copy(dims.begin(), dims.end(), dimensionSizes());
  }
  ~VectorVariantData() override { ArrayHolderDetail::destroy(elements(), m_numberOfElements); }

  // One allocation for the header of class Holder (this class or one that adds no field), the
  // dimension list and the elements.
  template <class Holder>
  static Holder *allocate(ArrayDimensionsView dims, DataOrdering ordering, std::uint64_t numberOfElements,
                          T const *source, std::uint64_t sourceCount,
                          ElementStart start = ElementStart::defaultValued) {
    static_assert(sizeof(Holder) == sizeof(VectorVariantData), "the elements follow the same header");
    ArrayHolderDetail::requireSizes(dims);
    std::size_t const offset = elementsOffsetFor(dims.count);
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(numberOfElements, sizeof(T), &bytes) ||
        __builtin_add_overflow(bytes, offset, &bytes))
      throw std::bad_alloc();
    BulkBlock const block = allocateBulk(bytes);
    // Nothing below throws: the header copies sizes, and elements are zeroed, copied or shared.
    Holder *holder = new (block.memory) Holder(dims, ordering, numberOfElements);
    T *elements = holder->elements();
    sourceCount = source ? std::min(sourceCount, numberOfElements) : 0;
    if (sourceCount != 0) ArrayHolderDetail::constructCopies(source, sourceCount, elements);
    // All-zero bytes are the default of every trivially copyable kind.
    bool const leaveUnset =
        std::is_trivially_copyable_v<T> && (block.zeroed || start == ElementStart::overwritten);
    if (!leaveUnset)
      ArrayHolderDetail::constructDefault(elements + sourceCount, numberOfElements - sourceCount);
    return holder;
  }

  template <class Holder>
  Holder *cloneAs() const {
    return allocate<Holder>(dimensions(), m_ordering, m_numberOfElements, elements(), m_numberOfElements);
  }

  // A shrinking reshape leaves spare elements behind the shape; the reordered array is the shape's.
  template <class Holder>
  IVariantData *reorderedAs(DataOrdering ordering) const {
    if (ordering == m_ordering) {
      this->copy();
      return const_cast<VectorVariantData *>(this);
    }
    return reordered<Holder>(elements(), m_numberOfElements, m_ordering, dimensions(), ordering);
  }

  template <class Holder>
  static Holder *reordered(T const *elements, std::uint64_t count, DataOrdering from,
                           ArrayDimensionsView dims, DataOrdering to) {
    std::uint64_t const shapeCount = elementCount(dims);
    // A source that covers the shape, in either ordering, leaves no element of the result unwritten.
    bool const covered = count >= shapeCount && (from == rowMajor || from == columnMajor);
    Holder *result = allocate<Holder>(dims, to, shapeCount, nullptr, 0,
                                      covered ? ElementStart::overwritten : ElementStart::defaultValued);
    HolderReference guard(result);  // the walk allocates too
    convertOrdering(elements, std::min(count, shapeCount), from, result->elements(), shapeCount, dims);
    guard.release();
    return result;
  }

  template <class Holder>
  static Holder *reshaped(IVariantData const *source, ArrayDimensionsView dims, DataOrdering ordering) {
    ArrayHolderDetail::requireSizes(dims);
    std::uint64_t const sourceCount = ArrayHolderDetail::reshapeSourceCount<T>(source);
    std::uint64_t const count = elementCount(dims);
    if (sourceCount > count) ArrayHolderDetail::throwReshapeBeyondStorage();
    T const *from = sourceCount ? static_cast<T const *>(source->constStoredData()) : nullptr;
    return allocate<Holder>(dims, ordering, count, from, sourceCount);
  }

  IVariantData *convertedAs(ConvertedHolder form, WellKnownType type, ConversionPolicy policy) const {
    ConversionSource const source{wellKnownTypeOf<T>(), elements(), m_numberOfElements, dimensions(),
                                  m_ordering};
    return convertVariantData(source, form, type, policy);
  }

 private:
  static constexpr std::size_t alignUp(std::size_t offset, std::size_t alignment) noexcept {
    return (offset + alignment - 1) / alignment * alignment;
  }
  static constexpr std::size_t dimensionsOffset() noexcept {
    return alignUp(sizeof(VectorVariantData), alignof(std::uint64_t));
  }
  static constexpr std::size_t elementsOffsetFor(std::uint64_t rank) noexcept {
    return alignUp(dimensionsOffset() + rank * sizeof(std::uint64_t), alignof(T));
  }
  std::size_t elementsOffset() const noexcept { return elementsOffsetFor(m_rankLimit); }
  std::uint64_t *dimensionSizes() noexcept {
    return reinterpret_cast<std::uint64_t *>(reinterpret_cast<char *>(this) + dimensionsOffset());
  }
  std::uint64_t const *dimensionSizes() const noexcept {
    return reinterpret_cast<std::uint64_t const *>(reinterpret_cast<char const *>(this) + dimensionsOffset());
  }

  std::uint64_t const m_numberOfElements;
  std::uint64_t m_rank;
  std::uint64_t const m_rankLimit;
  DataOrdering m_ordering;
};

// VectorVariantData<T> presented as customType: it compares through its own table, and every holder
// it makes is custom again.
template <class T>
class CustomVectorVariantData final : public VectorVariantData<T> {
  using Base = VectorVariantData<T>;
  friend Base;

 public:
  static CustomVectorVariantData *create(ArrayDimensionsView dims, DataOrdering ordering,
                                         std::uint64_t numberOfElements,
                                         ElementStart start = ElementStart::defaultValued) {
    return Base::template allocate<CustomVectorVariantData>(dims, ordering, numberOfElements, nullptr, 0,
                                                            start);
  }
  static CustomVectorVariantData *createReshaped(IVariantData const *source, ArrayDimensionsView dims,
                                                 DataOrdering ordering) {
    return Base::template reshaped<CustomVectorVariantData>(source, dims, ordering);
  }

  IVariantData *clone() const override { return this->template cloneAs<CustomVectorVariantData>(); }
  WellKnownType wellKnownDataType() const override { return WellKnownTypeValue::typeCustom; }
  CustomTypeOperations const *customTypeOperations() const override {
    return &ArrayHolderDetail::customOperations<T>;
  }
  IVariantData *reorderData(DataOrdering ordering) const override {
    return this->template reorderedAs<CustomVectorVariantData>(ordering);
  }
  IVariantData *reshapeToVxVariant(IVariantData const *source, ArrayDimensionsView dims,
                                   DataOrdering ordering) const override {
    return createReshaped(source, dims, ordering);
  }
  IVariantData *convertDataTo(WellKnownType type, ConversionPolicy policy) const override {
    return this->convertedAs(ConvertedHolder::customVector, type, policy);
  }

 private:
  using Base::Base;
};

// Elements in a std::vector that was moved in, so a large vector enters a variant without a copy.
template <class T>
class StdVectorVariantData final : public CountedArrayData<T> {
  static_assert(isElementKind<T> && !std::is_same_v<T, bool>, "an element kind with contiguous vectors");

 public:
  // Takes the vector and the shape as they are; the factory resolves the shape first.
  StdVectorVariantData(std::vector<T> data, ArrayDimensionsView dims, DataOrdering ordering)
      : m_data(std::move(data)), m_dimensions(dims.begin(), dims.end()), m_ordering(ordering) {}

  std::vector<T> const &data() const noexcept { return m_data; }
  IVariantData *clone() const override { return new StdVectorVariantData(m_data, m_dimensions, m_ordering); }
  std::uint64_t numberAllocatedElements() const override { return m_data.size(); }
  ArrayDimensionsView dimensions() const override { return m_dimensions; }
  DataOrdering dataOrdering() const override { return m_ordering; }
  IVariantData *reorderData(DataOrdering ordering) const override {
    if (ordering == m_ordering) {
      this->copy();
      return const_cast<StdVectorVariantData *>(this);
    }
    return VectorVariantData<T>::createReordered(m_data.data(), m_data.size(), m_ordering, m_dimensions,
                                                 ordering);
  }
  // Any length of list fits, and a shape may grow into the vector's spare capacity. The vector then
  // grows in place, so that every element the shape names exists.
  void reshapeNoRealloc(ArrayDimensionsView dims) override {
    ArrayHolderDetail::requireSizes(dims);
    if (ArrayHolderDetail::sameDimensions(dims, m_dimensions)) return;
    if (this->isShared()) ArrayHolderDetail::throwSharedReshape();
    std::uint64_t const count = elementCount(dims);
    if (dims.count != 0 && count > m_data.capacity()) ArrayHolderDetail::throwReshapeBeyondStorage();
    m_dimensions.assign(dims.begin(), dims.end());
    if (count > m_data.size()) m_data.resize(count);
  }
  IVariantData *reshapeToVxVariant(IVariantData const *source, ArrayDimensionsView dims,
                                   DataOrdering ordering) const override {
    return VectorVariantData<T>::createReshaped(source, dims, ordering);
  }
  void const *constStoredData() const override { return m_data.empty() ? nullptr : m_data.data(); }
  void *mutableStoredData() override { return m_data.empty() ? nullptr : m_data.data(); }
  IVariantData *convertDataTo(WellKnownType type, ConversionPolicy policy) const override {
    ConversionSource const source{wellKnownTypeOf<T>(), m_data.data(), m_data.size(), m_dimensions,
                                  m_ordering};
    return convertVariantData(source, ConvertedHolder::vector, type, policy);
  }

 private:
  std::vector<T> m_data;
  std::vector<std::uint64_t> m_dimensions;
  DataOrdering m_ordering;
};

}  // namespace Tarvex::VantraCore::Internal
