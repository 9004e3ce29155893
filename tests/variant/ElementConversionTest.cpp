#include <VantraCore/VariantCApi.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <VantraCore/detail/VectorVariantData.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <optional>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

constexpr auto no = std::nullopt;
constexpr double NaN = NAN, inf = INFINITY;

// A scalar of `s` converted to U under policies 0, 1 and 2: what each holds, or nothing on refusal.
template <class U, class S>
void expectConversion(S s, std::optional<U> const (&expected)[3]) {
  IVariantData *holder = constructVariantScalar<S>(nullptr, 0, s);
  for (ConversionPolicy policy : {conversionLossless, conversionCast, conversionParse}) {
    IVariantData *converted = holder->convertDataTo(wellKnownTypeOf<U>(), policy);
    ASSERT_EQ(converted != nullptr, expected[policy].has_value()) << "policy " << policy;
    if (!converted) continue;
    EXPECT_TRUE(*static_cast<U const *>(converted->constStoredData()) == *expected[policy]) << policy;
    converted->destruct();
  }
  holder->destruct();
}

auto const numberKinds =
    makeElementKindTable<ConcatTypeLists<TruthElementKinds, NumericElementKinds>::type>([](auto tag) {
      return std::pair{wellKnownTypeOf<typename decltype(tag)::type>(), sizeof(typename decltype(tag)::type)};
    });

// The pairs whose lossless test always passes, unless an imaginary part is dropped: from truth values,
// and from integers and floating values into floating values at least as wide.
bool untested(WellKnownType from, WellKnownType to) {
  if (isComplexKind(from) && !isComplexKind(to)) return false;
  bool const atLeastAsWide = elementSize(realPartKind(to)) >= elementSize(realPartKind(from));
  return isTruthKind(from) || (isFloatingKind(to) && (!isFloatingKind(from) || atLeastAsWide));
}

}  // namespace

TEST(ElementConversion, NumbersCastAndTestTheWayBack) {
  expectConversion<std::int32_t>(3.7, {no, 3, 3});
  expectConversion<std::int8_t>(std::int16_t(300), {no, 44, 44});
  expectConversion<std::uint32_t>(std::int8_t(-1), {0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu});
  expectConversion<double>((std::int64_t(1) << 53) + 1, {0x1p53, 0x1p53, 0x1p53});
  std::complex<float> const infinite(float(inf), 0);
  expectConversion<std::complex<float>>(std::complex<double>(1e300, 0), {no, infinite, infinite});
  // Out of range, floating values truncate as x86-64 does.
  expectConversion<std::int32_t>(3e9, {no, INT32_MIN, INT32_MIN});
  expectConversion<std::uint32_t>(3e9, {3000000000u, 3000000000u, 3000000000u});
  expectConversion<std::int16_t>(NaN, {no, 0, 0});
  expectConversion<std::uint64_t>(1e20, {no, 0x8000000000000000u, 0x8000000000000000u});
  expectConversion<std::uint64_t>(-1.0, {no, ~std::uint64_t(0), ~std::uint64_t(0)});
  expectConversion<double>(~std::uint64_t(0), {0x1p64, 0x1p64, 0x1p64});
}

TEST(ElementConversion, NumbersAsTextAndTextAsNumbers) {
  for (auto [number, text] :
       {std::pair{1.0, "1.0"}, {1e20, "1e+20.0"}, {-inf, "-inf.0"}, {1. / 3, "0.333333333333333"}})
    expectConversion<VxString>(number, {no, no, VxString(text)});
  expectConversion<VxString>(0.1f, {no, no, VxString("0.1")});
  expectConversion<VxString>(std::uint8_t(65), {no, no, VxString("A")});
  expectConversion<VxString>(0.0, {VxString(), no, VxString("0.0")});
  expectConversion<VxString>(std::complex<double>(), {VxString(), no, no});
  expectConversion<std::int32_t>(VxString("12abc"), {no, no, 12});
  expectConversion<std::int32_t>(VxString(""), {0, no, no});
  for (auto [text, truth] : {std::pair{"true", true}, {"True", false}, {"2", true}})
    expectConversion<bool>(VxString(text), {no, no, truth});
  // Between numbers and times only zero crosses.
  expectConversion<Duration>(1.0, {no, no, no});
  expectConversion<Duration>(0.0, {Duration(), no, no});
  expectConversion<Duration>(Duration(5), {Duration(5), Duration(5), Duration(5)});
}

TEST(ElementConversion, ArraysKeepTheirShapeAndRefusalsAreNoErrors) {
  std::uint64_t const shape[] = {2, 3};
  std::int32_t const values[] = {1, 2, 3, 4, 5, 6};
  IVariantData *array =
      constructVariantVectorWithDataWithDimsUnresolved<std::int32_t>(values, 6, {shape, 2}, columnMajor);
  IVariantData *converted = array->convertDataTo(WellKnownTypeValue::typeDouble, conversionLossless);
  EXPECT_FALSE(isEquivalentTo(*array, *converted, 3)) << "a refused conversion is not equivalent";
  VxTransportRecord record;
  EXPECT_EQ(VxVariantData_C_API_convertDataTo(&record, array, std::uint16_t(WellKnownTypeValue::typeBool),
                                              conversionLossless),
            nullptr);
  EXPECT_EQ(record.exceptionName, nullptr);
  converted->destruct();
  array->destruct();
  IVariantData *empty = constructVariantVectorWithoutDataWithDimsUnresolved<std::int32_t>({}, rowMajor);
  for (ConversionPolicy policy : {0u, 1u, 2u, 3u}) {
    EXPECT_EQ(empty->convertDataTo(WellKnownTypeValue::typeString, policy), nullptr);
    empty->convertDataTo(WellKnownTypeValue::typeDouble, policy)->destruct();
  }
  empty->destruct();
}

// Arrays of any two number kinds: small integers, perhaps with random bytes in one element.
RC_GTEST_PROP(ElementConversion, LosslessSucceedsExactlyWhenTheCastComesBackUnchanged, ()) {
  auto const [s, sSize] = *rc::gen::elementOf(numberKinds);
  auto const [u, uSize] = *rc::gen::elementOf(numberKinds);
  std::uint64_t const count = *rc::gen::inRange<std::uint64_t>(1, 3000);
  auto const small =
      *rc::gen::container<std::vector<std::int64_t>>(count, rc::gen::inRange(0, *rc::gen::inRange(1, 99)));
  auto const noise = *rc::gen::container<std::vector<unsigned char>>(16, rc::gen::arbitrary<unsigned char>());
  std::uint64_t const noisy = *rc::gen::inRange<std::uint64_t>(0, count + 1);
  IVariantData *integers =
      constructVariantVectorWithDataWithDimsUnresolved<std::int64_t>(small.data(), count, {}, rowMajor);
  IVariantData *source = integers->convertDataTo(s, conversionCast);
  if (noisy < count && !isTruthKind(s))
    std::memcpy(static_cast<char *>(source->mutableStoredData()) + noisy * sSize, noise.data(), sSize);
  IVariantData *cast = source->convertDataTo(u, conversionCast),
               *back = cast->convertDataTo(s, conversionCast);
  IVariantData *lossless = source->convertDataTo(u, conversionLossless);
  RC_ASSERT((lossless != nullptr) == (untested(s, u) || isIdenticalTo(*source, *back)));
  if (lossless)
    RC_ASSERT(std::memcmp(lossless->constStoredData(), cast->constStoredData(), count * uSize) == 0);
  RC_ASSERT(source->convertDataTo(u, 3) == nullptr);
  for (IVariantData *holder : {integers, source, cast, back, lossless})
    if (holder) holder->destruct();
}
