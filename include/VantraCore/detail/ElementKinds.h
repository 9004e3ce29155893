#pragma once

#include <VantraCore/WellKnownType.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <type_traits>

// The element kinds as one type list, and the one type dispatch that every type-dependent part of the
// library goes through. Per-kind facts (code, texts) are Internal::ElementKind<T> in WellKnownType.h.
namespace Tarvex::VantraCore::Internal {

template <class T>
struct TypeTag {
  using type = T;
};

template <class... Ts>
struct TypeList {
  static constexpr std::size_t size = sizeof...(Ts);
};

template <class... Lists>
struct ConcatTypeLists;
template <class... As>
struct ConcatTypeLists<TypeList<As...>> {
  using type = TypeList<As...>;
};
template <class... As, class... Bs, class... Rest>
struct ConcatTypeLists<TypeList<As...>, TypeList<Bs...>, Rest...> {
  using type = typename ConcatTypeLists<TypeList<As..., Bs...>, Rest...>::type;
};

// The element kinds as type lists, in the fixed dispatch order, from VANTRACORE_ELEMENT_KINDS.
#define VANTRACORE_ELEMENT_KIND_LIST_ENTRY(Type, Code, Name, MessageName) TypeList<Type>,
using TruthElementKinds =
    ConcatTypeLists<VANTRACORE_TRUTH_ELEMENT_KINDS(VANTRACORE_ELEMENT_KIND_LIST_ENTRY) TypeList<>>::type;
using NumericElementKinds =
    ConcatTypeLists<VANTRACORE_NUMERIC_ELEMENT_KINDS(VANTRACORE_ELEMENT_KIND_LIST_ENTRY) TypeList<>>::type;
using OtherElementKinds =
    ConcatTypeLists<VANTRACORE_OTHER_ELEMENT_KINDS(VANTRACORE_ELEMENT_KIND_LIST_ENTRY) TypeList<>>::type;
#undef VANTRACORE_ELEMENT_KIND_LIST_ENTRY
using ElementKinds = ConcatTypeLists<TruthElementKinds, NumericElementKinds, OtherElementKinds>::type;

static_assert(ElementKinds::size == 25, "twenty-five element kinds");
static_assert(NumericElementKinds::size == 20, "twenty numeric kinds");

template <class T, class List>
struct IsInTypeList;
template <class T, class... Ts>
struct IsInTypeList<T, TypeList<Ts...>> : std::disjunction<std::is_same<T, Ts>...> {};

template <class T>
inline constexpr bool isElementKind = IsInTypeList<std::remove_cv_t<T>, ElementKinds>::value;

[[noreturn]] inline void throwUnknownType() {
  throw std::runtime_error("unknown type");
}
[[noreturn]] inline void throwNotANumericType() {
  throw std::runtime_error("not a numeric type");
}

// The result type of a dispatch: f must return the same type for every kind.
template <class F, class List>
struct DispatchResult;
template <class F, class T, class... Ts>
struct DispatchResult<F, TypeList<T, Ts...>> {
  using type = std::invoke_result_t<F &, TypeTag<T>>;
  static_assert((std::is_same_v<type, std::invoke_result_t<F &, TypeTag<Ts>>> && ...),
                "the callable must return the same type for every element kind");
};

#define VANTRACORE_ELEMENT_KIND_CASE(Type, Code, Name, MessageName) \
  case static_cast<std::uint16_t>(WellKnownTypeValue::Code):        \
    return f(TypeTag<Type>{});

// Calls f(TypeTag<T>{}) for the numeric kind T of `type` (the twenty kinds with a numeric base, bool
// and Complex<bool> not among them) and returns its result. Any other code throws std::runtime_error
// "not a numeric type".
template <class F>
constexpr decltype(auto) dispatchNumericType(WellKnownType type, F &&f) {
  switch (static_cast<std::uint16_t>(type.value())) {
    VANTRACORE_NUMERIC_ELEMENT_KINDS(VANTRACORE_ELEMENT_KIND_CASE)
    default:
      break;
  }
  throwNotANumericType();
}

// As dispatchWellKnownType, but a code that names no element kind returns otherwise().
template <class F, class Otherwise>
constexpr decltype(auto) findElementKind(WellKnownType type, F &&f, Otherwise &&otherwise) {
  using R = typename DispatchResult<F, ElementKinds>::type;
  static_assert(std::is_same_v<R, std::invoke_result_t<Otherwise &>>, "otherwise() must return f's type");
  switch (static_cast<std::uint16_t>(type.value())) {
    VANTRACORE_ELEMENT_KINDS(VANTRACORE_ELEMENT_KIND_CASE)
    default:
      break;
  }
  return otherwise();
}

// Calls f(TypeTag<T>{}) for the element kind T of `type` and returns its result, e.g.
//   dispatchWellKnownType(type, [&](auto tag) { using T = typename decltype(tag)::type; ... });
// f must return the same type for every kind. The selection is that of the chain bool, Complex<bool>,
// any code with a numeric base into dispatchNumericType, string, duration, timestamp: a code with a
// numeric base that names no kind throws std::runtime_error "not a numeric type", any other code
// (customType and none among them) "unknown type".
template <class F>
constexpr decltype(auto) dispatchWellKnownType(WellKnownType type, F &&f) {
  using R = typename DispatchResult<F, ElementKinds>::type;
  return findElementKind(type, f, [type]() -> R {
    if (hasNumericBase(type)) throwNotANumericType();
    throwUnknownType();
  });
}

#undef VANTRACORE_ELEMENT_KIND_CASE

template <class... Ts, class F>
constexpr void forEachInTypeList(TypeList<Ts...>, F &f) {
  ((void)f(TypeTag<Ts>{}), ...);
}

template <class R, class... Ts, class F>
constexpr std::array<R, sizeof...(Ts)> tableOfTypeList(TypeList<Ts...>, F &f) {
  return {{f(TypeTag<Ts>{})...}};
}

// Calls f(TypeTag<T>{}) for every T of List, in order.
template <class List = ElementKinds, class F>
constexpr void forEachElementKind(F &&f) {
  forEachInTypeList(List{}, f);
}

// The table of f(TypeTag<T>{}) for every T of List, in list order: the way to instantiate a template
// for every kind, e.g. makeElementKindTable([](auto tag) { return &convert<typename decltype(tag)::type>; }).
template <class List = ElementKinds, class F>
constexpr auto makeElementKindTable(F &&f) {
  return tableOfTypeList<typename DispatchResult<F, List>::type>(List{}, f);
}

// The text of a kind in failure messages; codes that name no element kind throw "unknown type".
inline VxStringView messageTypeName(WellKnownType type) {
  return findElementKind(
      type,
      [](auto tag) {
        using Kind = ElementKind<typename decltype(tag)::type>;
        return VxStringView(Kind::messageName, sizeof Kind::messageName - 1);
      },
      []() -> VxStringView { throwUnknownType(); });
}

// The bytes of one element of a kind; 0 for a code that names no element kind.
inline std::size_t elementSize(WellKnownType type) {
  return findElementKind(
      type, [](auto tag) { return sizeof(typename decltype(tag)::type); }, [] { return std::size_t{0}; });
}

}  // namespace Tarvex::VantraCore::Internal
