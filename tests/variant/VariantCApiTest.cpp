#include <VantraCore/IVariantData.h>
#include <VantraCore/VariantCApi.h>
#include <VantraCore/WellKnownType.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

constexpr std::uint16_t codeOf(WellKnownTypeValue value) {
  return static_cast<std::uint16_t>(value);
}

// A record as a caller leaves it: never cleared.
struct Record : VxTransportRecord {
  Record() { std::memset(static_cast<VxTransportRecord *>(this), 'x', sizeof(VxTransportRecord)); }
  bool ok() const { return exceptionName == nullptr && message[0] == '\0'; }
  std::string failure() const { return std::string(exceptionName ? exceptionName : "none") + ": " + message; }
};

VxVariantData *doubleScalar(double value) {
  Record record;
  VxVariantData *holder =
      VxVariantData_C_API_constructScalar(&record, &value, codeOf(WellKnownTypeValue::typeDouble));
  EXPECT_TRUE(record.ok()) << record.failure();
  return holder;
}

}  // namespace

TEST(VariantCApi, ScalarRoundTrip) {
  Record record;
  VxVariantData *holder = doubleScalar(2.5);
  EXPECT_EQ(VxVariantData_C_API_wellKnownDataType(&record, holder), codeOf(WellKnownTypeValue::typeDouble));
  EXPECT_TRUE(VxVariantData_C_API_isScalarStorage(&record, holder));
  EXPECT_EQ(VxVariantData_C_API_numberAllocatedElements(&record, holder), 1u);
  EXPECT_EQ(VxVariantData_C_API_dataOrdering(&record, holder), 0u);
  VxArrayDimensionsView const dims = VxVariantData_C_API_dimensions(&record, holder);
  ASSERT_EQ(dims.count, 1u);
  EXPECT_EQ(dims.sizes[0], 1u);
  EXPECT_EQ(*static_cast<double const *>(VxVariantData_C_API_constStoredData(&record, holder)), 2.5);
  EXPECT_TRUE(record.ok());
  VxVariantData_C_API_destruct(&record, holder);
  EXPECT_TRUE(record.ok());
}

TEST(VariantCApi, ReferenceEffects) {
  Record record;
  VxVariantData *a = doubleScalar(1.0);
  EXPECT_EQ(VxVariantData_C_API_reorderData(&record, a, 1), a) << "same ordering, count unchanged";

  // One reference: made writable in place.
  void *block = nullptr;
  EXPECT_EQ(VxVariantData_C_API_mutableStoredData(&record, a, &block), a);
  EXPECT_EQ(block, VxVariantData_C_API_constStoredData(&record, a));

  // Converting to the own kind adds a reference, which the writer then finds.
  EXPECT_EQ(VxVariantData_C_API_convertDataTo(&record, a, codeOf(WellKnownTypeValue::typeDouble), 0), a);
  VxVariantData *b = VxVariantData_C_API_mutableStoredData(&record, a, &block);
  ASSERT_NE(b, a);
  *static_cast<double *>(block) = 3.0;
  EXPECT_EQ(*static_cast<double const *>(VxVariantData_C_API_constStoredData(&record, a)), 1.0);
  EXPECT_EQ(VxVariantData_C_API_mutableStoredData(&record, a, &block), a) << "a is down to one reference";
  EXPECT_TRUE(record.ok()) << record.failure();

  EXPECT_EQ(VxVariantData_C_API_copy(&record, b), b);
  VxVariantData_C_API_destruct(&record, b);
  VxVariantData_C_API_destruct(&record, b);
  VxVariantData_C_API_destruct(&record, a);
  VxVariantData_C_API_destruct(&record, nullptr);
  EXPECT_TRUE(record.ok());
}

TEST(VariantCApi, NullHolderNeedsNoRecord) {
  Record record;
  VxVariantData *null = VxVariantData_C_API_constructNull();
  EXPECT_EQ(VxVariantData_C_API_wellKnownDataType(&record, null), 0u);
  EXPECT_EQ(VxVariantData_C_API_dimensions(&record, null).count, 0u);
  VxVariantData *other = doubleScalar(0.0);
  EXPECT_TRUE(VxVariantData_C_API_isIdenticalTo(&record, null, constructVariantNull()));
  EXPECT_FALSE(VxVariantData_C_API_isEquivalentTo(&record, null, other, 1));
  VxVariantData_C_API_destruct(&record, other);
  VxVariantData_C_API_destruct(&record, null);
  EXPECT_TRUE(record.ok());
}

TEST(VariantCApi, FailuresComeBackInTheRecord) {
  Record record;
  double const value = 1;
  EXPECT_EQ(VxVariantData_C_API_constructScalar(&record, &value, codeOf(WellKnownTypeValue::typeCustom)),
            nullptr);
  EXPECT_EQ(record.failure(), "runtime_error: unknown type");
  EXPECT_EQ(VxVariantData_C_API_constructScalar(&record, &value, 0x0003), nullptr);
  EXPECT_EQ(record.failure(), "runtime_error: not a numeric type");
  EXPECT_EQ(VxVariantData_C_API_constructScalar(&record, nullptr, codeOf(WellKnownTypeValue::typeDouble)),
            nullptr);
  EXPECT_EQ(std::string(record.exceptionName), "invalid_argument");

  VxVariantData *holder = doubleScalar(1.0);
  std::uint64_t const two[] = {2};
  VxVariantData_C_API_reshapeNoRealloc(&record, holder, {two, 1});
  EXPECT_EQ(
      record.failure(),
      "invalid_argument: Cannot reshape a scalar VxVariant to different dimensions without reallocating.");
  EXPECT_EQ(VxVariantData_C_API_convertDataTo(&record, holder, codeOf(WellKnownTypeValue::typeCustom), 1),
            nullptr);
  EXPECT_EQ(record.failure(), "runtime_error: unknown type");
  EXPECT_EQ(VxVariantData_C_API_wellKnownDataType(&record, nullptr), 0u);
  EXPECT_EQ(std::string(record.exceptionName), "invalid_argument");
  EXPECT_EQ(VxVariantData_C_API_dimensions(&record, nullptr).sizes, nullptr);
  VxVariantData_C_API_destruct(&record, holder);
  EXPECT_TRUE(record.ok());
}

TEST(VariantCApi, ArraysFromElementsOrDefaults) {
  Record record;
  VxString const texts[] = {VxString("a"), VxString("bc")};
  VxVariantData *strings =
      VxVariantData_C_API_constructArray(&record, texts, codeOf(WellKnownTypeValue::typeString), 2, {}, 1);
  ASSERT_TRUE(record.ok()) << record.failure();
  auto const *copied = static_cast<VxString const *>(VxVariantData_C_API_constStoredData(&record, strings));
  EXPECT_EQ(copied[1].c_str(), texts[1].c_str()) << "strings are shared, not duplicated";
  EXPECT_EQ(VxVariantData_C_API_dataOrdering(&record, strings), 1u);

  std::uint64_t const shape[] = {2, 2};
  VxVariantData *zeros = VxVariantData_C_API_createWithAllocatedArray(
      &record, codeOf(WellKnownTypeValue::typeDuration), {shape, 2}, 0);
  EXPECT_EQ(VxVariantData_C_API_numberAllocatedElements(&record, zeros), 4u);
  VxVariantData *none =
      VxVariantData_C_API_createWithAllocatedArray(&record, codeOf(WellKnownTypeValue::typeDuration), {}, 0);
  EXPECT_EQ(VxVariantData_C_API_numberAllocatedElements(&record, none), 0u);
  EXPECT_TRUE(record.ok()) << record.failure();
  for (VxVariantData *holder : {strings, zeros, none})
    VxVariantData_C_API_destruct(&record, holder);
}

TEST(VariantCApi, ReshapeToVxVariantConsumesTheSource) {
  Record record;
  double const elements[] = {1, 2, 3, 4};
  VxVariantData *source =
      VxVariantData_C_API_constructArray(&record, elements, codeOf(WellKnownTypeValue::typeDouble), 4, {}, 0);
  VxVariantData *shapeGiver = doubleScalar(0);
  std::uint64_t const shape[] = {2, 3};
  VxVariantData *reshaped =
      VxVariantData_C_API_reshapeToVxVariant(&record, shapeGiver, source, {shape, 2}, 0);
  ASSERT_TRUE(record.ok()) << record.failure();
  auto const *block = static_cast<double const *>(VxVariantData_C_API_constStoredData(&record, reshaped));
  EXPECT_EQ(block[3], 4);
  EXPECT_EQ(block[4], 0) << "the rest keeps the default value";
  VxVariantData_C_API_destruct(&record, reshaped);

  // A failure leaves the source's reference with the caller.
  VxVariantData *big =
      VxVariantData_C_API_constructArray(&record, elements, codeOf(WellKnownTypeValue::typeDouble), 4, {}, 0);
  EXPECT_EQ(VxVariantData_C_API_reshapeToVxVariant(&record, shapeGiver, big, {shape, 1}, 0), nullptr);
  EXPECT_NE(record.exceptionName, nullptr);
  EXPECT_EQ(VxVariantData_C_API_numberAllocatedElements(&record, big), 4u);
  VxVariantData_C_API_destruct(&record, big);
  VxVariantData_C_API_destruct(&record, shapeGiver);
  EXPECT_TRUE(record.ok());
}
