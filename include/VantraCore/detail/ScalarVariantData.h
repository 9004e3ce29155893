#pragma once

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/Export.h>
#include <VantraCore/WellKnownType.h>
#include <VantraCore/detail/CountedHolder.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/IVariantData.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace Tarvex::VantraCore::Internal {

// The shape every scalar reports: rank 1, [1]. One entry for all of them.
inline constexpr std::uint64_t scalarDimensions[1] = {1};

// One value of an element kind, without an array's machinery. The reference operations are left to
// the two subclasses: counted on the heap, or uncounted in a buffer someone else owns.
template <class T>
class ScalarVariantData : public IVariantData {
 public:
  std::uint64_t numberAllocatedElements() const override { return 1; }
  ArrayDimensionsView dimensions() const override { return {scalarDimensions, 1}; }
  bool isScalarStorage() const override { return true; }
  DataOrdering dataOrdering() const override { return rowMajor; }
  WellKnownType wellKnownDataType() const override { return wellKnownTypeOf<T>(); }
  void const *customTypeTag() const override { return customTypeTagOf<T>(); }
  CustomTypeOperations const *customTypeOperations() const override { return nullptr; }
  // Every ordering is this one.
  IVariantData *reorderData(DataOrdering) const override {
    copy();
    return const_cast<ScalarVariantData *>(this);
  }
  // Accepts exactly the shape [1]; anything else throws std::invalid_argument.
  void reshapeNoRealloc(ArrayDimensionsView dimensions) override;
  // An array holder, even for one element.
  IVariantData *reshapeToVxVariant(IVariantData const *source, ArrayDimensionsView dimensions,
                                   DataOrdering ordering) const override;
  void const *constStoredData() const override { return &value; }
  void *mutableStoredData() override { return &value; }
  // Always a new counted scalar on the heap, or null on refusal.
  IVariantData *convertDataTo(WellKnownType type, ConversionPolicy policy) const override;

  T value;

 protected:
  explicit ScalarVariantData(T v) : value(std::move(v)) {}
};

// A scalar on the heap, shared by reference count.
template <class T>
class ScalarVariantDataRefCounted final : public CountedHolder<ScalarVariantData<T>> {
 public:
  explicit ScalarVariantDataRefCounted(T value) : CountedHolder<ScalarVariantData<T>>(std::move(value)) {}

  IVariantData *clone() const override { return new ScalarVariantDataRefCounted(this->value); }
};

// A scalar standing in a buffer that its one owner holds: never counted, never deleted, only
// destroyed in place by that owner. A true copy goes through copyConstructVariantScalar.
template <class T>
class ScalarVariantDataNonCounted final : public ScalarVariantData<T> {
 public:
  explicit ScalarVariantDataNonCounted(T value) : ScalarVariantData<T>(std::move(value)) {}

  void copy() const noexcept override {}
  void destruct() const noexcept override {}
  IVariantData *ensureUnique() override { return this; }
  IVariantData *clone() const override { return const_cast<ScalarVariantDataNonCounted *>(this); }
};

// The storage of a variant that lives inside one module: the holder, and a buffer directly behind it
// in which a scalar holder stands when it fits, so that scalars cost no allocation. `data` is either
// `buffer` (an in-place ScalarVariantDataNonCounted) or a counted or null holder.
struct VxVariantDirectStorage {
  static constexpr std::size_t bufferSize = 32;

  IVariantData *data;
  alignas(8) unsigned char buffer[bufferSize];
};

// Makes a scalar holder of `value`: in `buffer` when bufferSize holds a ScalarVariantDataNonCounted<T>
// (the result is then `buffer`), otherwise a ScalarVariantDataRefCounted<T> on the heap with count 1,
// leaving `buffer` alone. `buffer` must be aligned to 8. For every element kind T.
template <class T>
VANTRACORE_API IVariantData *constructVariantScalar(void *buffer, std::size_t bufferSize, T value);

// Copies the scalar of `source` by the same rule; a string is shared, not copied. Throws
// std::invalid_argument when source's holder is not scalar storage, std::runtime_error "unknown type"
// for a kind that is no element kind.
VANTRACORE_API IVariantData *copyConstructVariantScalar(void *buffer, std::size_t bufferSize,
                                                        VxVariantDirectStorage const &source);

// The kinds whose in-place holder a variant builds, copies, reads and drops itself, without calling
// the library: plain numbers, whose holders are bytes and whose types every module names alike. Their
// vtables and members are exported, so that a holder built in any module has the one vtable of the
// library, and its first word tells its type.
#define VANTRACORE_INLINE_SCALAR_KINDS(X)                                                   \
  X(double) X(float) X(std::int8_t) X(std::int16_t) X(std::int32_t) X(std::int64_t)          \
  X(std::uint8_t) X(std::uint16_t) X(std::uint32_t) X(std::uint64_t) X(bool)

#define VANTRACORE_INLINE_SCALAR_LIST_ENTRY(Type) TypeList<Type>,
using InlineScalarKinds =
    ConcatTypeLists<VANTRACORE_INLINE_SCALAR_KINDS(VANTRACORE_INLINE_SCALAR_LIST_ENTRY) TypeList<>>::type;
#undef VANTRACORE_INLINE_SCALAR_LIST_ENTRY

template <class T>
inline constexpr bool isInlineScalarKind = IsInTypeList<T, InlineScalarKinds>::value;

// Exactly the arithmetic element kinds, no more and no fewer.
template <class... Kinds>
constexpr bool inlineScalarKindsAreTheArithmeticKinds(TypeList<Kinds...>) {
  return ((std::is_arithmetic_v<Kinds> == isInlineScalarKind<Kinds>)&&...);
}
static_assert(inlineScalarKindsAreTheArithmeticKinds(ElementKinds{}),
              "the inline scalar kinds are the arithmetic element kinds");

// The holders exist for the element kinds only, and are built in the library; the inline kinds' are
// declared exported first.
#define VANTRACORE_EXPORTED_SCALAR_HOLDERS(Type)                 \
  extern template class VANTRACORE_API ScalarVariantData<Type>; \
  extern template class VANTRACORE_API ScalarVariantDataNonCounted<Type>;
VANTRACORE_INLINE_SCALAR_KINDS(VANTRACORE_EXPORTED_SCALAR_HOLDERS)
#undef VANTRACORE_EXPORTED_SCALAR_HOLDERS
#define VANTRACORE_EXTERN_SCALAR_HOLDERS(Type, Code, Name, MessageName) \
  extern template class ScalarVariantData<Type>;                        \
  extern template class ScalarVariantDataRefCounted<Type>;              \
  extern template class ScalarVariantDataNonCounted<Type>;
VANTRACORE_ELEMENT_KINDS(VANTRACORE_EXTERN_SCALAR_HOLDERS)
#undef VANTRACORE_EXTERN_SCALAR_HOLDERS

// The identity of an in-place holder's type: its first word, the vtable pointer. Of the inline kinds
// it is the same in every module, since their vtables are the library's exported ones.
inline void const *holderIdentity(void const *holder) noexcept {
  void const *word;
  std::memcpy(&word, holder, sizeof word);
  return word;
}
// The identity of ScalarVariantDataNonCounted<T>, read from a probe the compiler folds to the vtable
// address.
template <class T>
void const *inPlaceHolderIdentity() noexcept {
  static_assert(isInlineScalarKind<T>);
  alignas(ScalarVariantDataNonCounted<T>) unsigned char probe[sizeof(ScalarVariantDataNonCounted<T>)];
  new (probe) ScalarVariantDataNonCounted<T>(T());  // bytes only: nothing to destroy
  return holderIdentity(probe);
}

}  // namespace Tarvex::VantraCore::Internal
