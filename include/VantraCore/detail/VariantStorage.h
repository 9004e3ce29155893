#pragma once

// The two storage policies of VxVariantGeneric: what each does with its holder.

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/ExceptionTransport.h>
#include <VantraCore/VariantCApi.h>
#include <VantraCore/VxString.h>
#include <VantraCore/WellKnownType.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <VantraCore/detail/VectorVariantData.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore::Internal {

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

  // The value of an in-place holder of T, or null when the holder is anything else.
  template <class T>
  static T const *inPlaceValue(VxVariantDirectStorage const &storage) noexcept {
    if constexpr (isInlineScalarKind<T>) {
      if (inPlace(storage) && holderIdentity(storage.buffer) == inPlaceHolderIdentity<T>())
        return &reinterpret_cast<ScalarVariantDataNonCounted<T> const *>(storage.buffer)->value;
    }
    return nullptr;
  }
  // Whether an in-place holder is one of a plain number: bytes alone, nothing to count or destroy.
  static bool holdsPlainNumber(VxVariantDirectStorage const &storage) noexcept {
    void const *const identity = holderIdentity(storage.buffer);
    // The commonest asked inline; the others out of line, or the compiler asks all of them each time.
    return identity == inPlaceHolderIdentity<double>() || isPlainNumberHolder(identity, InlineScalarKinds{});
  }
  template <class... Kinds>
  [[gnu::noinline]] static bool isPlainNumberHolder(void const *identity, TypeList<Kinds...>) noexcept {
    return ((identity == inPlaceHolderIdentity<Kinds>()) || ...);
  }

  static IVariantData *null() noexcept { return constructVariantNull(); }
  // Plain numbers are built here, as the library would build them; the rest by the library.
  template <class T>
  static void initScalar(VxVariantDirectStorage &storage, T value) {
    using Holder = ScalarVariantDataNonCounted<T>;
    static_assert(sizeof(Holder) <= sizeof storage.buffer && alignof(Holder) <= alignof(VxVariantDirectStorage));
    if constexpr (isInlineScalarKind<T>) {
      storage.data = new (storage.buffer) Holder(value);
      // The buffer travels whole on copy and move: no byte of it is left unset.
      std::memset(storage.buffer + sizeof(Holder), 0, sizeof storage.buffer - sizeof(Holder));
    } else
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
    } else if (holdsPlainNumber(from)) {
      copyInPlace(to, from);
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
    if (inPlace(storage)) {
      if (!holdsPlainNumber(storage)) storage.data->~IVariantData();
    } else if (storage.data != nullptr)
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
  template <class T>
  static constexpr T const *inPlaceValue(VxVariantDataSharable const &) noexcept {
    return nullptr;
  }

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

}  // namespace Tarvex::VantraCore::Internal
