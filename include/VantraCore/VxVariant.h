#pragma once

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/ArraySlice.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/ExceptionTransport.h>
#include <VantraCore/Export.h>
#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <VantraCore/VariantCApi.h>
#include <VantraCore/detail/VectorVariantData.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>
#include <VantraCore/WellKnownType.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore {

namespace Internal {

// The storage of a variant that crosses module boundaries: the holder alone, reached only through the
// C functions. `data` is null only after a move.
struct VxVariantDataSharable {
  IVariantData *data;
};

// What a storage does with its holder: made, shared, released and asked. The variant above is written
// on these operations alone, so the two storages differ only here.
template <class Storage>
struct VxVariantStorage;

template <class... Kinds>
constexpr bool copiedByBytesButStrings(TypeList<Kinds...>) {
  return ((std::is_trivially_copyable_v<Kinds> || std::is_same_v<Kinds, VxString>)&&...);
}
static_assert(copiedByBytesButStrings(ElementKinds{}),
              "an in-place scalar but a string is copied by its bytes");

// Inside one module: virtual calls, and scalars standing in the variant's own buffer.
template <>
struct VxVariantStorage<VxVariantDirectStorage> {
  static constexpr char name[] = "Tarvex::VantraCore::VxVariant";
  static constexpr bool adoptsVectors = true;

  static bool inPlace(VxVariantDirectStorage const &storage) noexcept {
    return static_cast<void const *>(storage.data) == storage.buffer;
  }

  static IVariantData *null() noexcept { return constructVariantNull(); }
  template <class T>
  static void initScalar(VxVariantDirectStorage &storage, T value) {
    storage.data = constructVariantScalar<T>(storage.buffer, sizeof storage.buffer, std::move(value));
  }
  template <class T>
  static IVariantData *array(T const *data, std::uint64_t count, ArrayDimensionsView dims,
                             DataOrdering ordering) {
    return constructVariantVectorWithDataWithDimsUnresolved<T>(data, count, dims, ordering);
  }
  template <class T>
  static IVariantData *shaped(ArrayDimensionsView dims, DataOrdering ordering) {
    return constructVariantVectorWithoutDataWithDimsUnresolved<T>(dims, ordering);
  }
  template <class T>
  static IVariantData *movedVector(std::vector<T> values, ArrayDimensionsView dims, DataOrdering ordering) {
    return constructVariantDataFromMovedVector<T>(std::move(values), dims, ordering);
  }

  // An in-place holder keeps no pointer into itself, so its bytes alone make it anew. They go one
  // word at a time: the holder's fields were just stored one by one, and a wider load would stall
  // until they reach memory.
  static void copyInPlace(VxVariantDirectStorage &to, VxVariantDirectStorage const &from) noexcept {
    for (std::size_t offset = 0; offset < sizeof to.buffer; offset += sizeof(std::uint64_t)) {
      std::uint64_t word;
      std::memcpy(&word, from.buffer + offset, sizeof word);
#if defined(__GNUC__)
      asm("" : "+r"(word));  // keeps the words from being merged into wider loads
#endif
      std::memcpy(to.buffer + offset, &word, sizeof word);
    }
    to.data = reinterpret_cast<IVariantData *>(to.buffer);
  }
  // An in-place scalar is never shared: the copy is a second in-place holder. Its bytes make one for
  // every kind but the string, which must count its record once more.
  static void initCopy(VxVariantDirectStorage &to, VxVariantDirectStorage const &from) {
    if (!inPlace(from)) {
      if (from.data != nullptr) from.data->copy();
      to.data = from.data;
    } else if (from.data->wellKnownDataType() == WellKnownTypeValue::typeString) {
      to.data = copyConstructVariantScalar(to.buffer, sizeof to.buffer, from);
    } else {
      copyInPlace(to, from);
    }
  }
  static void initMove(VxVariantDirectStorage &to, VxVariantDirectStorage &from) noexcept {
    if (inPlace(from))
      copyInPlace(to, from);
    else
      to.data = from.data;
    from.data = nullptr;
  }
  static void release(VxVariantDirectStorage &storage) noexcept {
    if (inPlace(storage))
      storage.data->~IVariantData();
    else if (storage.data != nullptr)
      storage.data->destruct();
  }

  static WellKnownType kind(IVariantData const *holder) {
    return holder->wellKnownDataType();
  }
  static ArrayDimensionsView dimensions(IVariantData const *holder) {
    return holder->dimensions();
  }
  static DataOrdering ordering(IVariantData const *holder) {
    return holder->dataOrdering();
  }
  static bool isScalarStorage(IVariantData const *holder) {
    return holder->isScalarStorage();
  }
  static bool hasCustomTag(IVariantData const *holder, void const *tag) {
    return holder->customTypeTag() == tag;
  }
  static void const *constStoredData(IVariantData const *holder) {
    return holder->constStoredData();
  }
  static void *mutableStoredData(IVariantData *&holder) {
    holder = holder->ensureUnique();
    return holder->mutableStoredData();
  }
  static bool identical(IVariantData const *a, IVariantData const *b) {
    return isIdenticalTo(*a, *b);
  }
  static bool equivalent(IVariantData const *a, IVariantData const *b, ConversionPolicy policy) {
    return isEquivalentTo(*a, *b, policy);
  }
  static IVariantData *convert(IVariantData const *holder, WellKnownType type, ConversionPolicy policy) {
    return holder->convertDataTo(type, policy);
  }
  static IVariantData *reorder(IVariantData const *holder, DataOrdering ordering) {
    return holder->reorderData(ordering);
  }
  static void reshape(IVariantData *holder, ArrayDimensionsView dims) {
    holder->reshapeNoRealloc(dims);
  }
};

// Between modules: no virtual call, every question one C function, and what failed behind it thrown
// anew on this side.
template <>
struct VxVariantStorage<VxVariantDataSharable> {
  static constexpr char name[] = "Tarvex::VantraCore::VxVariantAbi";
  static constexpr bool adoptsVectors = false;

  static constexpr bool inPlace(VxVariantDataSharable const &) noexcept { return false; }

  // Calls one C function with a record of its own and throws on this side what it carried out.
  template <class Function, class... Args>
  static auto ask(Function function, Args... args) {
    TransportRecord record;
    if constexpr (std::is_void_v<std::invoke_result_t<Function, TransportRecord *, Args...>>) {
      function(&record, args...);
      rethrowTransportRecord(record);
    } else {
      auto result = function(&record, args...);
      rethrowTransportRecord(record);
      return result;
    }
  }
  template <class T>
  static std::uint16_t code() noexcept {
    return static_cast<std::uint16_t>(wellKnownTypeOf<T>().value());
  }

  static IVariantData *null() noexcept { return VxVariantData_C_API_constructNull(); }
  template <class T>
  static void initScalar(VxVariantDataSharable &storage, T const &value) {
    storage.data = ask(VxVariantData_C_API_constructScalar, static_cast<void const *>(&value), code<T>());
  }
  template <class T>
  static IVariantData *array(T const *data, std::uint64_t count, ArrayDimensionsView dims,
                             DataOrdering ordering) {
    return ask(VxVariantData_C_API_constructArray, static_cast<void const *>(data), code<T>(), count, dims,
               ordering);
  }
  template <class T>
  static IVariantData *shaped(ArrayDimensionsView dims, DataOrdering ordering) {
    return ask(VxVariantData_C_API_createWithAllocatedArray, code<T>(), dims, ordering);
  }

  static void initCopy(VxVariantDataSharable &to, VxVariantDataSharable const &from) {
    to.data = from.data == nullptr ? nullptr : ask(VxVariantData_C_API_copy, from.data);
  }
  static void initMove(VxVariantDataSharable &to, VxVariantDataSharable &from) noexcept {
    to.data = from.data;
    from.data = nullptr;
  }
  static void release(VxVariantDataSharable &storage) noexcept {
    if (storage.data == nullptr) return;
    TransportRecord unread;
    VxVariantData_C_API_destruct(&unread, storage.data);
  }

  static WellKnownType kind(IVariantData const *holder) {
    return static_cast<WellKnownTypeValue>(ask(VxVariantData_C_API_wellKnownDataType, holder));
  }
  static ArrayDimensionsView dimensions(IVariantData const *holder) {
    return ask(VxVariantData_C_API_dimensions, holder);
  }
  static DataOrdering ordering(IVariantData const *holder) {
    return static_cast<DataOrdering>(ask(VxVariantData_C_API_dataOrdering, holder));
  }
  static bool isScalarStorage(IVariantData const *holder) {
    return ask(VxVariantData_C_API_isScalarStorage, holder);
  }
  // A tag is an address in one module and means nothing in another.
  static constexpr bool hasCustomTag(IVariantData const *, void const *) noexcept { return false; }
  static void const *constStoredData(IVariantData const *holder) {
    return ask(VxVariantData_C_API_constStoredData, holder);
  }
  static void *mutableStoredData(IVariantData *&holder) {
    void *block = nullptr;
    holder = ask(VxVariantData_C_API_mutableStoredData, holder, &block);
    return block;
  }
  static bool identical(IVariantData const *a, IVariantData const *b) {
    return ask(VxVariantData_C_API_isIdenticalTo, a, b);
  }
  static bool equivalent(IVariantData const *a, IVariantData const *b, ConversionPolicy policy) {
    return ask(VxVariantData_C_API_isEquivalentTo, a, b, policy);
  }
  static IVariantData *convert(IVariantData const *holder, WellKnownType type, ConversionPolicy policy) {
    return ask(VxVariantData_C_API_convertDataTo, holder, static_cast<std::uint16_t>(type.value()), policy);
  }
  // The C function consumes a reference: it gets one of its own, taken back should it fail.
  static IVariantData *reorder(IVariantData const *holder, DataOrdering ordering) {
    VxVariantDataSharable own{ask(VxVariantData_C_API_copy, const_cast<IVariantData *>(holder))};
    TransportRecord record;
    IVariantData *result = VxVariantData_C_API_reorderData(&record, own.data, ordering);
    if (record.exceptionName != nullptr) release(own);
    rethrowTransportRecord(record);
    return result;
  }
  static void reshape(IVariantData *holder, ArrayDimensionsView dims) {
    ask(VxVariantData_C_API_reshapeNoRealloc, holder, dims);
  }
};

}  // namespace Internal

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
