#include <VantraCore/detail/ElementKinds.h>
#include <numerics/ElementConversion.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace Tarvex::VantraCore::Internal {

namespace {

// How the elements of a kind lie in memory: one part, or a real part followed by an imaginary one. A
// truth value is read and written as its stored byte, so that no byte but 0 and 1 is ever loaded as
// a bool.
template <class T>
struct Layout {
  static constexpr bool truth = std::is_same_v<typename PartOf<T>::type, bool>;
  using Part = std::conditional_t<truth, std::uint8_t, typename PartOf<T>::type>;
  static constexpr unsigned parts = isComplexElement<T> ? 2 : 1;
};

template <class T>
inline constexpr bool isNumber = std::is_arithmetic_v<typename Layout<T>::Part>;
template <class T>
inline constexpr bool isRealNumber = isNumber<T> && !isComplexElement<T>;

// The truncating conversions of x86-64, which give the lowest value ("integer indefinite") for NaN and
// out-of-range sources, where a plain cast would be undefined. Written as selects between values that
// are computed anyway, with no short-circuit, so that the loops around them vectorise.
inline std::int32_t truncateToInt32(double v) {
  bool const inRange = (v > -2147483649.0) & (v < 2147483648.0);
  std::int32_t const truncated = static_cast<std::int32_t>(inRange ? v : 0.0);
  return inRange ? truncated : std::numeric_limits<std::int32_t>::min();
}
inline std::int64_t truncateToInt64(double v) {
  bool const inRange = (v >= -0x1p63) & (v < 0x1p63);
  std::int64_t const truncated = static_cast<std::int64_t>(inRange ? v : 0.0);
  return inRange ? truncated : std::numeric_limits<std::int64_t>::min();
}
// 2^63 and more go through the signed conversion less 2^63 and get the top bit back, unless they are
// out of range even then.
inline std::uint64_t truncateToUInt64(double v) {
  bool const high = v >= 0x1p63;
  double const reduced = v - (high ? 0x1p63 : 0.0);
  std::uint64_t const top = high & (reduced < 0x1p63) ? std::uint64_t(1) << 63 : 0;
  return static_cast<std::uint64_t>(truncateToInt64(reduced)) + top;
}
// The narrow kinds keep the low bits of a 32-bit conversion, unsignedInt32 those of a 64-bit one.
template <class I>
I truncateTo(double v) {
  if constexpr (std::is_same_v<I, std::uint64_t>) {
    return truncateToUInt64(v);
  } else if constexpr (sizeof(I) == 8 || std::is_same_v<I, std::uint32_t>) {
    return static_cast<I>(truncateToInt64(v));
  } else {
    return static_cast<I>(truncateToInt32(v));
  }
}

// One part of an element of layout From as a part of layout To.
template <class To, class From>
typename To::Part convertPart(typename From::Part v) {
  using T = typename To::Part;
  using F = typename From::Part;
  if constexpr (To::truth && !From::truth) {
    return static_cast<T>(v != F(0));
  } else if constexpr (std::is_floating_point_v<T> && std::is_same_v<F, std::uint64_t> && !From::truth) {
    // As signed, and 2^64 added where the signed reading was negative.
    auto const asSigned = static_cast<std::int64_t>(v);
    return static_cast<T>(asSigned) + (asSigned < 0 ? T(0x1p64) : T(0));
  } else if constexpr (std::is_integral_v<F> || std::is_floating_point_v<F> == std::is_floating_point_v<T>) {
    if constexpr (std::is_floating_point_v<F> && sizeof(T) < sizeof(F)) {
      // Past the largest float, rounding included, the cast would be undefined; x86 gives infinity.
      F const infinite = std::copysign(std::numeric_limits<F>::infinity(), v);
      return static_cast<T>(std::fabs(v) >= 0x1.ffffffp127 ? infinite : v);
    } else {
      return static_cast<T>(v);
    }
  } else {
    return truncateTo<T>(v);
  }
}

// The numbers: truth values, integers, floating values and their complex forms.
template <class S, class U>
struct NumberPair {
  using SL = Layout<S>;
  using UL = Layout<U>;
  using SP = typename SL::Part;
  using UP = typename UL::Part;
  static constexpr bool complexToReal = isComplexElement<S> && !isComplexElement<U>;
  // Without a lossless test: from truth values, from integers to floating values, and between floating
  // values that do not narrow. A complex source losing its imaginary part is tested all the same.
  static constexpr bool tested =
      complexToReal ||
      !(SL::truth || (std::is_integral_v<SP> && std::is_floating_point_v<UP>) ||
        (std::is_floating_point_v<SP> && std::is_floating_point_v<UP> && sizeof(UP) >= sizeof(SP)));

  static void cast(SP const *s, UP *d, std::uint64_t i) {
    if constexpr (UL::parts == 1) {
      d[i] = convertPart<UL, SL>(s[i * SL::parts]);
    } else if constexpr (SL::parts == 1) {
      d[2 * i] = convertPart<UL, SL>(s[i]);
      d[2 * i + 1] = UP(0);
    } else {
      d[2 * i] = convertPart<UL, SL>(s[2 * i]);
      d[2 * i + 1] = convertPart<UL, SL>(s[2 * i + 1]);
    }
  }

  // The lossless test runs over tested parts: both parts between complex kinds, else the real part.
  static constexpr unsigned testedParts = SL::parts == 2 && UL::parts == 2 ? 2 : 1;
  static constexpr unsigned sourceStride = complexToReal ? 2 : 1;
  static constexpr unsigned targetStride = SL::parts == 1 && UL::parts == 2 ? 2 : 1;
  static constexpr std::uint64_t chunk = 256;

  // `failed` with tested part k added: it fails unless `back`, the stored part cast back to the source
  // kind, is the source part again (NaN never is) and a dropped imaginary part is exactly zero. A
  // select or an or, not a branch, so that the loop over a chunk vectorises.
  static SP addTest(SP failed, SP back, SP const *s, std::uint64_t k) {
    SP const part = s[k * sourceStride];
    SP const dropped = complexToReal ? s[k * sourceStride + 1] : SP(0);
    if constexpr (std::is_floating_point_v<SP>) {
      return (back == part) & (dropped == SP(0)) ? failed : SP(1);
    } else {
      return static_cast<SP>(failed | (back ^ part) | dropped);
    }
  }

  // The first element of the chunk [start, end), already stored, that fails the test; end if none.
  // The whole chunk is cast back and tested in two vectorisable passes, and only a failing chunk is
  // walked again for its first failure.
  static std::uint64_t firstFailure(SP const *s, UP const *d, std::uint64_t start, std::uint64_t end) {
    std::uint64_t const first = start * testedParts;
    std::uint64_t const parts = (end - start) * testedParts;
    SP back[chunk * testedParts];
    for (std::uint64_t k = 0; k < parts; ++k)
      back[k] = convertPart<SL, UL>(d[(first + k) * targetStride]);
    SP failed = 0;
    for (std::uint64_t k = 0; k < parts; ++k)
      failed = addTest(failed, back[k], s, first + k);
    if (failed == SP(0)) return end;
    std::uint64_t k = 0;
    while (addTest(SP(0), back[k], s, first + k) == SP(0))
      ++k;
    return start + k / testedParts;
  }
};

template <class S, class U>
bool convertNumbers(void const *source, void *target, std::uint64_t count, ConversionPolicy policy) {
  using Pair = NumberPair<S, U>;
  auto const *s = static_cast<typename Pair::SP const *>(source);
  auto *d = static_cast<typename Pair::UP *>(target);
  if (count == 0) return true;
  if (policy == conversionCast || policy == conversionParse ||
      (policy == conversionLossless && !Pair::tested)) {
    for (std::uint64_t i = 0; i < count; ++i)
      Pair::cast(s, d, i);
    return true;
  }
  if constexpr (Pair::tested) {
    if (policy != conversionLossless) return false;
    for (std::uint64_t start = 0; start < count; start += Pair::chunk) {
      std::uint64_t const end = std::min(count, start + Pair::chunk);
      for (std::uint64_t i = start; i < end; ++i)
        Pair::cast(s, d, i);
      std::uint64_t const failed = Pair::firstFailure(s, d, start, end);
      if (failed != end) return false;
    }
    return true;
  }
  return false;
}

template <class S>
bool allZero(void const *source, std::uint64_t count) {
  using L = Layout<S>;
  if constexpr (isNumber<S>) {
    auto const *parts = static_cast<typename L::Part const *>(source);
    return std::all_of(parts, parts + count * L::parts, [](auto part) { return part == 0; });
  } else {
    auto const *elements = static_cast<S const *>(source);
    return std::all_of(elements, elements + count, [](S const &element) {
      if constexpr (std::is_same_v<S, VxString>) {
        return element.empty();
      } else if constexpr (std::is_same_v<S, Duration>) {
        return !element.count();
      } else {
        return !element.time_since_epoch().count();
      }
    });
  }
}

// The text of a number: the one-byte integers as a character, other integers and truth values in
// decimal, floating values in general format with 6 or 15 digits and never without a ".".
template <class L>
VxString textOf(typename L::Part v) {
  using P = typename L::Part;
  char text[32];
  char *end = text;
  if constexpr (sizeof(P) == 1 && !L::truth) {
    *end++ = static_cast<char>(v);
  } else if constexpr (std::is_floating_point_v<P>) {
    int const precision = std::is_same_v<P, float> ? 6 : 15;
    end = std::to_chars(text, text + sizeof text - 2, v, std::chars_format::general, precision).ptr;
    if (std::find(text, end, '.') == end) end = std::copy_n(".0", 2, end);
  } else {
    end = std::to_chars(text, text + sizeof text, v).ptr;
  }
  return VxString(text, static_cast<std::uint64_t>(end - text));
}

// Numbers from texts by strtod, trailing characters ignored. A truth value is "true" or any number but
// zero, and never fails; any other kind fails at the first text that starts with no number.
template <class U>
bool parseTexts(VxString const *texts, void *target, std::uint64_t count) {
  using L = Layout<U>;
  auto *d = static_cast<typename L::Part *>(target);
  for (std::uint64_t i = 0; i < count; ++i) {
    char const *const text = texts[i].c_str();
    char *end = nullptr;
    double const v = std::strtod(text, &end);
    bool const parsed = end != text;
    if constexpr (L::truth) {
      d[i] = texts[i] == "true" || (parsed && v != 0);
    } else {
      if (!parsed) return false;
      d[i] = convertPart<L, Layout<double>>(v);
    }
  }
  return true;
}

// The generic element converter, one instantiation for each ordered pair of kinds.
template <class S, class U>
bool convertRun(void const *source, void *target, std::uint64_t count, ConversionPolicy policy) {
  if constexpr (isNumber<S> && isNumber<U>) {
    return convertNumbers<S, U>(source, target, count, policy);
  } else if constexpr (std::is_same_v<S, U>) {
    if (policy > conversionParse) return false;
    std::copy_n(static_cast<S const *>(source), count, static_cast<U *>(target));
    return true;
  } else {
    // Between numbers, texts and times only zero crosses, unless real numbers are written as text or
    // read from it. An empty run fails, except from complex numbers and times to text.
    constexpr bool toText = std::is_same_v<U, VxString>;
    constexpr bool fromText = std::is_same_v<S, VxString>;
    if (count == 0 && (!toText || isRealNumber<S>)) return false;
    if (policy == conversionParse) {
      if constexpr (toText && isRealNumber<S>) {
        auto const *parts = static_cast<typename Layout<S>::Part const *>(source);
        std::transform(parts, parts + count, static_cast<VxString *>(target), textOf<Layout<S>>);
        return true;
      } else if constexpr (fromText && isRealNumber<U>) {
        return parseTexts<U>(static_cast<VxString const *>(source), target, count);
      }
    }
    if (policy != conversionLossless || !allZero<S>(source, count)) return false;
    std::fill_n(static_cast<U *>(target), count, U());
    return true;
  }
}

}  // namespace

ElementConverter elementConverter(WellKnownType source, WellKnownType target) {
  return dispatchWellKnownType(source, [target](auto sourceTag) {
    return dispatchWellKnownType(target, [](auto targetTag) -> ElementConverter {
      return &convertRun<typename decltype(sourceTag)::type, typename decltype(targetTag)::type>;
    });
  });
}

}  // namespace Tarvex::VantraCore::Internal
