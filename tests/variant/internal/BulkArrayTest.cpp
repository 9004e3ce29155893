// Element blocks on both sides of the mapping threshold: where they come from, how they start, and
// that each route that makes or drops one gets its elements right and releases it.
#include <VantraCore/ExternalVariantStorage.h>
#include <VantraCore/TransmuteVariant.h>
#include <VantraCore/VariantCApi.h>
#include <VantraCore/VxVariant.h>
#include <variant/ArrayHolders.h>
#include <variant/BulkAllocation.h>

#include "Holders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

using namespace HolderTesting;

namespace {

constexpr std::uint64_t smallCount = (bulkMappingThreshold / sizeof(double)) / 2;
constexpr std::uint64_t largeCount = bulkMappingThreshold / sizeof(double) + 3;

// The VmFlags of the mapping that holds `address`, from /proc/self/smaps.
std::string mappingFlags(void const *address) {
  auto const at = reinterpret_cast<std::uintptr_t>(address);
  std::ifstream smaps("/proc/self/smaps");
  bool inside = false;
  for (std::string line; std::getline(smaps, line);) {
    std::uintptr_t start = 0, end = 0;
    char dash = 0;
    std::istringstream head(line);
    if (head >> std::hex >> start >> dash >> end && dash == '-') inside = start <= at && at < end;
    if (inside && line.rfind("VmFlags:", 0) == 0) return line;
  }
  return {};
}

std::vector<double> ramp(std::uint64_t count) {
  std::vector<double> values(count);
  for (std::uint64_t i = 0; i < count; ++i)
    values[i] = double(i % 1000) - 500.0;
  return values;
}

// A freed block of sevens, so that a small holder that wrongly skipped its zeroing would show them.
void freeGarbage(std::uint64_t count) {
  VxVariant dirty = VxVariant::withShape<double>({count});
  std::fill_n(dirty.mutableStoredData<double>(), count, 7.0);
}

}  // namespace

TEST(BulkAllocation, LargeBlocksAreMappedAlignedZeroedAndAdvised) {
  BulkBlock const small = allocateBulk(bulkMappingThreshold - 64);
  EXPECT_FALSE(small.zeroed);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(small.memory) % alignof(std::max_align_t), 0u);
  releaseBulk(small.memory);

  BulkBlock const large = allocateBulk(bulkMappingThreshold);
  auto const address = reinterpret_cast<std::uintptr_t>(large.memory);
  ASSERT_TRUE(large.zeroed);
  EXPECT_LT(address % hugePageSize, 64u) << "the block starts just past a 2 MiB boundary";
  auto *bytes = static_cast<unsigned char *>(large.memory);
  EXPECT_EQ(bytes[0] | bytes[bulkMappingThreshold / 2] | bytes[bulkMappingThreshold - 1], 0);
  bytes[bulkMappingThreshold - 1] = 1;
  // A kernel without transparent huge pages refuses the advice, and the block works all the same.
  if (std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled")) {
    EXPECT_NE(mappingFlags(large.memory).find(" hg"), std::string::npos) << mappingFlags(large.memory);
  }
  releaseBulk(large.memory);
  releaseBulk(nullptr);
}

TEST(BulkArrays, NewHoldersStartDefaultOnBothSidesOfTheThreshold) {
  for (std::uint64_t count : {smallCount, largeCount}) {
    freeGarbage(count);
    VxVariant doubles = VxVariant::withShape<double>({count});
    double const *data = doubles.constStoredData<double>();
    EXPECT_TRUE(std::all_of(data, data + count, [](double v) { return v == 0.0; })) << count;
    VxVariant texts = VxVariant::withShape<VxString>({count / 4});
    VxString const *text = texts.constStoredData<VxString>();
    EXPECT_TRUE(std::all_of(text, text + count / 4, [](VxString const &s) { return s.empty(); }));
    VxVariant const slice =
        VxVariant(ramp(count)).slice({IndexSet(IndexRange(IndexValue(0), IndexValue(count - 1), 2))});
    std::uint64_t const n = (count + 1) / 2;
    ASSERT_EQ(slice.numberOfElements(), n);
    EXPECT_EQ(slice.at<double>(n - 1), ramp(count)[2 * (n - 1)]);
  }
}

TEST(BulkArrays, ConversionResultsHoldEveryElement) {
  for (std::uint64_t count : {smallCount, largeCount}) {
    std::vector<std::int16_t> shorts(count);
    for (std::uint64_t i = 0; i < count; ++i)
      shorts[i] = std::int16_t(i * 7);
    VxVariant const doubles = VxVariant(shorts).convertTo(wellKnownTypeOf<double>());
    EXPECT_EQ(doubles.at<double>(0), 0.0);
    EXPECT_EQ(doubles.at<double>(count - 1), double(std::int16_t((count - 1) * 7)));
    // Refused by every rule but the one for zeros, which writes nothing it reads.
    freeGarbage(count);
    VxVariant const zeros = VxVariant::withShape<VxString>({count}).convertTo(wellKnownTypeOf<double>());
    double const *data = zeros.constStoredData<double>();
    EXPECT_TRUE(std::all_of(data, data + count, [](double v) { return v == 0.0; })) << count;
    VxVariant const texts = doubles.convertTo(wellKnownTypeOf<VxString>(), conversionParse);
    EXPECT_EQ(texts.at<VxString>(count - 1),
              VxString(std::to_string(int(doubles.at<double>(count - 1))) + ".0"));
  }
}

TEST(BulkArrays, LosslessRefusalFindsAFailureAtEveryBlockEdge) {
  std::vector<double> values = ramp(largeCount);
  EXPECT_FALSE(VxVariant(values).tryConvertTo(wellKnownTypeOf<float>()).isNull());
  for (std::uint64_t bad :
       {std::uint64_t(0), std::uint64_t(255), std::uint64_t(256), std::uint64_t(257), largeCount - 1}) {
    std::vector<double> spoiled = values;
    spoiled[bad] = 0.1;  // no float holds it
    EXPECT_TRUE(VxVariant(spoiled).tryConvertTo(wellKnownTypeOf<float>()).isNull()) << bad;
    EXPECT_FALSE(VxVariant(spoiled).tryConvertTo(wellKnownTypeOf<float>(), conversionCast).isNull());
  }
}

TEST(BulkArrays, EveryRouteReleasesWhatItMade) {
  std::uint64_t const shape[1] = {largeCount};
  VxTransportRecord record{};
  VxVariantData *fromC = VxVariantData_C_API_createWithAllocatedArray(
      &record, std::uint16_t(WellKnownTypeValue::typeDouble), {shape, 1}, 0);
  ASSERT_NE(fromC, nullptr);
  VxVariantData_C_API_destruct(&record, fromC);

  HolderReference big = array<double>(ramp(largeCount), Dims{largeCount});
  HolderReference clone(big->clone());
  HolderReference reshaped(big->reshapeToVxVariant(clone.get(), Dims{1, largeCount}, columnMajor));
  EXPECT_EQ(elementsOf<double>(*reshaped), elementsOf<double>(*big));
  HolderReference floats(big->convertDataTo(WellKnownTypeValue::typeFloat, conversionCast));
  EXPECT_EQ(static_cast<float const *>(floats->constStoredData())[largeCount - 1],
            float(ramp(largeCount).back()));

  HolderReference complex(constructTransmuteRealToComplexVariant(big.release()));
  HolderReference written(complex.release()->ensureUnique());
  EXPECT_EQ(written->numberAllocatedElements(), largeCount / 2);
}
