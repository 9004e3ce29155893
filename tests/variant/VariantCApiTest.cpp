#include <VantraCore/VariantCApi.h>
#include <VantraCore/WellKnownType.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

using namespace Tarvex::VantraCore;

namespace {

constexpr std::uint16_t doubleKind = 0x0001;

// A record as a caller leaves it: never cleared.
struct Record : VxTransportRecord {
  Record() { std::memset(static_cast<VxTransportRecord *>(this), 'x', sizeof(VxTransportRecord)); }
  bool ok() const { return exceptionName == nullptr && message[0] == '\0'; }
  std::string failure() const { return std::string(exceptionName ? exceptionName : "none") + ": " + message; }
};

VxVariantData *doubles(Record &record, std::uint64_t count) {
  double const elements[] = {1, 2, 3, 4};
  return VxVariantData_C_API_constructArray(&record, elements, doubleKind, count, {}, 0);
}

}  // namespace

TEST(VariantCApi, ReshapeToVxVariantConsumesTheSourceOnSuccessOnly) {
  Record record;
  VxVariantData *target = doubles(record, 1);
  std::uint64_t const shape[] = {2, 3};
  VxVariantData *reshaped =
      VxVariantData_C_API_reshapeToVxVariant(&record, target, doubles(record, 4), {shape, 2}, 0);
  ASSERT_TRUE(record.ok()) << record.failure();
  auto const *block = static_cast<double const *>(VxVariantData_C_API_constStoredData(&record, reshaped));
  EXPECT_EQ(block[3], 4);
  EXPECT_EQ(block[4], 0) << "the rest keeps the default value";
  VxVariantData_C_API_destruct(&record, reshaped);

  VxVariantData *big = doubles(record, 4);
  EXPECT_EQ(VxVariantData_C_API_reshapeToVxVariant(&record, target, big, {shape, 1}, 0), nullptr);
  EXPECT_NE(record.exceptionName, nullptr);
  EXPECT_EQ(VxVariantData_C_API_numberAllocatedElements(&record, big), 4u) << "still the caller's";
  VxVariantData_C_API_destruct(&record, big);
  VxVariantData_C_API_destruct(&record, target);
}

TEST(VariantCApi, FailuresComeBackInTheRecord) {
  Record record;
  double const value = 1;
  EXPECT_EQ(VxVariantData_C_API_constructScalar(&record, &value, 0x0020), nullptr);
  EXPECT_EQ(record.failure(), "runtime_error: unknown type");
  EXPECT_EQ(VxVariantData_C_API_constructScalar(&record, &value, 0x0003), nullptr);
  EXPECT_EQ(record.failure(), "runtime_error: not a numeric type");
  EXPECT_EQ(VxVariantData_C_API_constructScalar(&record, nullptr, doubleKind), nullptr);
  EXPECT_EQ(std::string(record.exceptionName), "invalid_argument");

  VxVariantData *holder = VxVariantData_C_API_constructScalar(&record, &value, doubleKind);
  std::uint64_t const two[] = {2};
  VxVariantData_C_API_reshapeNoRealloc(&record, holder, {two, 1});
  EXPECT_EQ(
      record.failure(),
      "invalid_argument: Cannot reshape a scalar VxVariant to different dimensions without reallocating.");
  EXPECT_EQ(VxVariantData_C_API_convertDataTo(&record, holder, 0x0020, 1), nullptr);
  EXPECT_EQ(record.failure(), "runtime_error: unknown type");
  EXPECT_EQ(VxVariantData_C_API_dimensions(&record, nullptr).sizes, nullptr);
  EXPECT_EQ(record.failure(), "invalid_argument: VxVariant data is null");
  VxVariantData_C_API_destruct(&record, holder);
  EXPECT_TRUE(record.ok());
}
