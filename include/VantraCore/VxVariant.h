#pragma once

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/ArraySlice.h>
#include <VantraCore/Export.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>
#include <VantraCore/WellKnownType.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <VantraCore/detail/VariantStorage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore {

// The value type over a holder of any element kind and shape: a scalar, an N-dimensional array, or
// null. Copies share the holder until one of them writes (mutableStoredData makes it private first).
// Storage is VxVariantDirectStorage for use inside one module (VxVariant) or VxVariantDataSharable
// for interfaces between modules (VxVariantAbi); both behave alike. The layout is the storage's.
template <class Storage>
class VxVariantGeneric {
  using Ops = Internal::VxVariantStorage<Storage>;
  template <class T>
  using IfElementKind = std::enable_if_t<Internal::isElementKind<T>, int>;

 public:
  // A range over the elements as T that owns a variant, so a loop over a temporary is safe.
  template <class T>
  class Iterable;

  // The null variant.
  VxVariantGeneric() noexcept { m_storage.data = Ops::null(); }
  // A scalar of one of the element kinds.
  template <class T, IfElementKind<T> = 0>
  VxVariantGeneric(T value) {
    Ops::initScalar(m_storage, std::move(value));
  }
  // A string scalar.
  VxVariantGeneric(char const *text) : VxVariantGeneric(VxString(text)) {}
  // An array holding the vector's elements (VxVariant takes over its buffer, but for bool). A shape
  // without elements becomes [values.size()]; another element count than the vector's throws
  // std::length_error "dimensions do not match data length".
  template <class T, IfElementKind<T> = 0>
  VxVariantGeneric(std::vector<T> values, std::vector<std::uint64_t> dims = {},
                   DataOrdering ordering = rowMajor) {
    if constexpr (Ops::adoptsVectors && !std::is_same_v<T, bool>) {
      m_storage.data = Ops::template movedVector<T>(std::move(values), dims, ordering);
    } else {
      if (!values.empty() && elementCount(dims) == 0) dims = {values.size()};
      if constexpr (std::is_same_v<T, bool>) {
        // std::vector<bool> has no block of bool to copy from.
        std::unique_ptr<bool[]> const block(new bool[values.size()]);
        std::copy(values.begin(), values.end(), block.get());
        m_storage.data = Ops::template array<T>(block.get(), values.size(), dims, ordering);
      } else {
        m_storage.data = Ops::template array<T>(values.data(), values.size(), dims, ordering);
      }
    }
  }
  // An array holding a copy of `count` elements. A shape without dimensions becomes [count]; another
  // element count than `count` throws std::length_error "dimensions do not match data length".
  template <class T, IfElementKind<T> = 0>
  VxVariantGeneric(T const *data, std::uint64_t count, std::vector<std::uint64_t> dims,
                   DataOrdering ordering) {
    m_storage.data = Ops::template array<T>(data, count, dims, ordering);
  }
  // An array of that shape with default-valued elements; no dimensions mean no elements.
  template <class T>
  static VxVariantGeneric withShape(std::vector<std::uint64_t> dims, DataOrdering ordering = rowMajor) {
    return adoptHolder(Ops::template shaped<T>(dims, ordering));
  }
  // Takes over one reference to a counted holder or a null holder; a null pointer gives the null
  // variant.
  static VxVariantGeneric adoptHolder(Internal::IVariantData *holder) noexcept {
    VxVariantGeneric result;
    if (holder != nullptr) result.m_storage.data = holder;
    return result;
  }

  VxVariantGeneric(VxVariantGeneric const &other) { Ops::initCopy(m_storage, other.m_storage); }
  VxVariantGeneric(VxVariantGeneric &&other) noexcept { Ops::initMove(m_storage, other.m_storage); }
  VxVariantGeneric &operator=(VxVariantGeneric const &other) {
    if (this != &other) *this = VxVariantGeneric(other);
    return *this;
  }
  VxVariantGeneric &operator=(VxVariantGeneric &&other) noexcept {
    if (this != &other) {
      Ops::release(m_storage);
      Ops::initMove(m_storage, other.m_storage);
    }
    return *this;
  }
  ~VxVariantGeneric() { Ops::release(m_storage); }

  // Kind 0, or in VxVariant a custom holder whose tag stands for no element type.
  bool isNull() const { return isNullKind(wellKnownDataType()); }
  // Whether the elements are T's. A custom holder is of T in VxVariant when its tag is T's, and never
  // in VxVariantAbi.
  template <class T>
  bool isType() const {
    return isKind<T>(wellKnownDataType());
  }
  WellKnownType wellKnownDataType() const { return Ops::kind(holder()); }
  // A view into the holder, invalidated by reshape.
  ArrayDimensionsView dimensions() const { return Ops::dimensions(holder()); }
  DataOrdering dataOrdering() const { return Ops::ordering(holder()); }
  bool isScalarStorage() const { return Ops::isScalarStorage(holder()); }
  // The product of the dimensions; 0 without dimensions.
  std::uint64_t numberOfElements() const { return elementCount(dimensions()); }

  // Element `position` in storage order. Throws std::invalid_argument "Cannot access element of null
  // variant." or "Wrong data type.", then std::out_of_range "Indices out of bounds.".
  template <class T>
  T const &at(std::uint64_t position) const {
    if (T const *value = Ops::template inPlaceValue<T>(m_storage)) {
      if (position != 0) throw std::out_of_range("Indices out of bounds.");
      return *value;
    }
    WellKnownType const kind = wellKnownDataType();
    if (isNullKind(kind)) throw std::invalid_argument("Cannot access element of null variant.");
    if (!isKind<T>(kind)) throw std::invalid_argument("Wrong data type.");
    if (position >= numberOfElements()) throw std::out_of_range("Indices out of bounds.");
    return constStoredData<T>()[position];
  }
  // The holder's block, unchecked.
  template <class T = void>
  T const *constStoredData() const {
    return static_cast<T const *>(Ops::constStoredData(holder()));
  }
  // The block for writing, after making the holder this variant's alone: copies keep their values.
  template <class T = void>
  T *mutableStoredData() {
    holder();
    return static_cast<T *>(Ops::mutableStoredData(m_storage.data));
  }

  bool isIdenticalTo(VxVariantGeneric const &other) const { return Ops::identical(holder(), other.holder()); }
  bool isEquivalentTo(VxVariantGeneric const &other, ConversionPolicy policy = conversionLossless) const {
    return Ops::equivalent(holder(), other.holder(), policy);
  }

  // This value as `type`: the same holder when it has that kind already. A refused conversion throws
  // std::runtime_error with the conversion message.
  VxVariantGeneric convertTo(WellKnownType type, ConversionPolicy policy = conversionLossless) const {
    VxVariantGeneric result = tryConvertTo(type, policy);
    if (result.isNull()) throwConversionFailure(type);
    return result;
  }
  // As convertTo, but a refusal gives the null variant.
  VxVariantGeneric tryConvertTo(WellKnownType type, ConversionPolicy policy = conversionLossless) const {
    if (wellKnownDataType() == type) return *this;
    return adoptHolder(Ops::convert(holder(), type, policy));
  }
  // The one element (of a scalar, or of an array whose dimensions are all 1) as a T, converted if
  // need be; otherwise std::runtime_error with the conversion message.
  template <class T>
  T get(ConversionPolicy policy = conversionLossless) const {
    WellKnownType const kind = wellKnownDataType();
    if (!isNullKind(kind) && holdsOneElement()) {
      if (isKind<T>(kind)) return at<T>(0);
      VxVariantGeneric const converted = tryConvertTo(wellKnownTypeOf<T>(), policy);
      if (!converted.isNull()) return converted.template at<T>(0);
    }
    throwConversionFailure(wellKnownTypeOf<T>());
  }

  // The elements as T, sharing the holder. Throws std::runtime_error "Data type mismatch, cannot
  // provide iterable container" for elements of another kind; an empty variant of any kind is empty.
  template <class T>
  Iterable<T> asIterable() const {
    return Iterable<T>(*this);
  }
  // The elements converted to T, or the conversion message.
  template <class T>
  Iterable<T> asIterable(ConversionPolicy policy) const {
    return Iterable<T>(convertTo(wellKnownTypeOf<T>(), policy));
  }
  // True when asIterable<T>() has T to show, false when the variant is empty, else its exception.
  template <class T>
  bool checkIterable() const {
    if (isType<T>()) return true;
    if (numberOfElements() == 0) return false;
    throw std::runtime_error("Data type mismatch, cannot provide iterable container");
  }

  // A new shape for the same elements, never moving one: the holder refuses what needs more room or is
  // shared.
  void reshape(std::vector<std::uint64_t> dims) { Ops::reshape(holder(), dims); }
  // The same logical array in `ordering`: this holder, shared, when nothing changes.
  VxVariantGeneric reordered(DataOrdering ordering) const {
    if (Ops::inPlace(m_storage)) return *this;
    return adoptHolder(Ops::reorder(holder(), ordering));
  }

  // The elements a slice selects, as an array of their own in this variant's ordering, enumerated in
  // storage order. Throws std::invalid_argument "The given ArraySlice is invalid." for a null variant,
  // else what Internal::SliceFlattener throws for the slice.
  VxVariantGeneric slice(ArraySlice const &indices) const {
    if (isNull()) throw std::invalid_argument("The given ArraySlice is invalid.");
    ArrayDimensionsView const dims = dimensions();
    DataOrdering const ordering = dataOrdering();
    std::vector<std::vector<std::uint64_t>> terms = Internal::expandArraySlice(indices, dims);
    std::vector<std::uint64_t> shape;
    for (auto const &positions : terms)
      shape.push_back(positions.size());
    Internal::scaleToStorageStrides(terms, dims, ordering);
    return Internal::dispatchWellKnownType(wellKnownDataType(), [&](auto tag) {
      using T = typename decltype(tag)::type;
      VxVariantGeneric result = adoptHolder(Ops::template shaped<T>(shape, ordering));
      if (Internal::sliceElementCount(terms) != 0)
        Internal::copySliceElements(constStoredData<T>(), terms, ordering,
                                    result.template mutableStoredData<T>());
      return result;
    });
  }

 private:
  // Moved-from variants have no holder; asking them anything is a caller's mistake.
  Internal::IVariantData *holder() const {
    if (m_storage.data == nullptr) throw std::invalid_argument("VxVariant data is null");
    return m_storage.data;
  }
  bool isNullKind(WellKnownType kind) const {
    return kind == WellKnownType() || (kind == Internal::WellKnownTypeValue::typeCustom &&
                                       Ops::hasCustomTag(holder(), Internal::noElementTypeTag()));
  }
  template <class T>
  bool isKind(WellKnownType kind) const {
    return kind == wellKnownTypeOf<T>() || (kind == Internal::WellKnownTypeValue::typeCustom &&
                                            Ops::hasCustomTag(holder(), Internal::customTypeTagOf<T>()));
  }
  bool holdsOneElement() const {
    if (isScalarStorage()) return true;
    ArrayDimensionsView const dims = dimensions();
    return dims.count > 0 &&
           std::all_of(dims.begin(), dims.end(), [](std::uint64_t size) { return size == 1; });
  }
  [[noreturn]] void throwConversionFailure(WellKnownType target) const {
    auto const append = [](std::string &to, VxStringView text) { to.append(text.data(), text.size()); };
    std::string message = "Cannot convert ";
    message += Ops::name;
    message += " of type '";
    append(message, Internal::messageTypeName(wellKnownDataType()));
    message += "' (size: " + std::to_string(numberOfElements()) + ") to '";
    append(message, Internal::messageTypeName(target));
    message += '\'';
    throw std::runtime_error(message);
  }

  Storage m_storage;
};

template <class Storage>
template <class T>
class VxVariantGeneric<Storage>::Iterable {
 public:
  // The copy's elements are its own variant's: an in-place scalar moves with it.
  Iterable(Iterable const &other) : m_variant(other.m_variant) { rebase(other.size()); }
  Iterable(Iterable &&other) : m_variant(std::move(other.m_variant)) { rebase(other.size()); }

  T const *begin() const noexcept { return m_begin; }
  T const *end() const noexcept { return m_end; }
  std::uint64_t size() const noexcept { return static_cast<std::uint64_t>(m_end - m_begin); }
  bool empty() const noexcept { return m_begin == m_end; }

 private:
  friend class VxVariantGeneric;

  explicit Iterable(VxVariantGeneric variant) : m_variant(std::move(variant)) {
    if (m_variant.template checkIterable<T>()) {
      std::uint64_t const count = m_variant.numberOfElements();
      if (count > 0) {
        m_begin = &m_variant.template at<T>(0);
        m_end = m_begin + count;
      }
    }
  }
  void rebase(std::uint64_t count) {
    if (count == 0) return;
    m_begin = m_variant.template constStoredData<T>();
    m_end = m_begin + count;
  }

  VxVariantGeneric m_variant;
  T const *m_begin = nullptr;
  T const *m_end = nullptr;
};

// For use inside one module: scalars stand in place, holders are asked by virtual call.
using VxVariant = VxVariantGeneric<Internal::VxVariantDirectStorage>;
// For interfaces between modules: holders are reached through the C functions only.
using VxVariantAbi = VxVariantGeneric<Internal::VxVariantDataSharable>;

static_assert(sizeof(VxVariant) == 40 && offsetof(Internal::VxVariantDirectStorage, buffer) == 8,
              "VxVariant: the holder pointer, then its 32-byte buffer");
static_assert(sizeof(VxVariantAbi) == sizeof(void *), "VxVariantAbi: the holder pointer alone");

// The one-line text of a value as ConsoleFormatter writes it, for test failure messages. Defined for
// VxVariant and VxVariantAbi. Declared beside the class so that argument-dependent lookup finds it;
// defined in src/formatting, the layer that draws variants.
template <class Storage>
VANTRACORE_API void PrintTo(VxVariantGeneric<Storage> const &value, std::ostream *out);

}  // namespace Tarvex::VantraCore
