// Each exported C function with each allocation failing in turn: the record carries "bad_alloc", the
// call leaks nothing, and a reference the call would consume stays the caller's.
#include "FailEveryAllocation.h"

#include <VantraCore/Complex.h>
#include <VantraCore/ExternalVariantStorage.h>
#include <VantraCore/TransmuteVariant.h>
#include <VantraCore/VariantCApi.h>
#include <VantraCore/VxString.h>

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

constexpr std::uint16_t doubleKind = 0x0001, int32Kind = 0x0006, stringKind = 0x0010, complexKind = 0x8001;
std::uint64_t const shape[] = {2, 3};
VxArrayDimensionsView const twoByThree{shape, 2};
double const elements[] = {1, 2, 3, 4, 5, 6};
// For the calls that cannot fail.
VxTransportRecord ignored;

// Calls `call` with a fresh record and throws what the record carries, as a caller across the
// boundary would; the record must name bad_alloc for the harness to accept the failure.
template <class Call>
auto transported(Call call) {
  VxTransportRecord record;
  std::memset(&record, 'x', sizeof record);
  auto result = call(&record);
  if (record.exceptionName != nullptr) {
    EXPECT_STREQ(record.exceptionName, "bad_alloc") << record.message;
  }
  Internal::rethrowTransportRecord(record);
  return result;
}

// A holder reference owned by the test.
struct Held {
  VxVariantData *data;
  ~Held() { VxVariantData_C_API_destruct(&ignored, data); }
};

// Runs `consuming` on a second reference to `held`; when it fails, that reference is still the
// caller's and goes here.
template <class Call>
VxVariantData *onSecondReference(VxVariantData *held, Call consuming) {
  VxVariantData *const second = VxVariantData_C_API_copy(&ignored, held);
  try {
    return consuming(second);
  } catch (...) {
    VxVariantData_C_API_destruct(&ignored, second);
    throw;
  }
}

struct DoubleStorage final : ExternalVariantStorageInterface {
  std::vector<double> block{1, 2, 3};
  std::uint64_t size = 3;
  std::uint64_t numberAllocatedElements() const override { return block.size(); }
  ArrayDimensionsView dimensions() const override { return {&size, 1}; }
  DataOrdering dataOrdering() const override { return rowMajor; }
  WellKnownType wellKnownDataType() const override { return wellKnownTypeOf<double>(); }
  void reshapeNoRealloc(ArrayDimensionsView) override {}
  void const *constStoredData() const override { return block.data(); }
  void *mutableStoredData() override { return block.data(); }
  void release() override {}
};

void release(VxVariantData *data) { VxVariantData_C_API_destruct(&ignored, data); }

}  // namespace

TEST(CApiAllocationFailure, Construction) {
  VxString const text("an element of its own block");
  failEveryAllocation("VxVariantData_C_API_constructScalar", [&] {
    release(transported([&](auto *r) { return VxVariantData_C_API_constructScalar(r, &text, stringKind); }));
  });
  failEveryAllocation("VxVariantData_C_API_constructArray", [&] {
    release(transported(
        [&](auto *r) { return VxVariantData_C_API_constructArray(r, elements, doubleKind, 6, twoByThree, 1); }));
  });
  failEveryAllocation("VxVariantData_C_API_createWithAllocatedArray", [&] {
    release(transported(
        [&](auto *r) { return VxVariantData_C_API_createWithAllocatedArray(r, stringKind, twoByThree, 0); }));
  });
  DoubleStorage storage;
  failEveryAllocation("VxVariantData_C_API_createWithExternalStorage", [&] {
    release(transported([&](auto *r) { return VxVariantData_C_API_createWithExternalStorage(r, &storage); }));
  });
  failEveryAllocation("VxStringData_C_API_constructCString", [&] {
    VxStringData_C_API_destruct(
        transported([&](auto *r) { return VxStringData_C_API_constructCString(r, "some text", 9); }));
  });
  failEveryAllocation("VxStringData_C_API_constructCStringWithSize", [&] {
    VxStringData_C_API_destruct(
        transported([&](auto *r) { return VxStringData_C_API_constructCStringWithSize(r, 40); }).record);
  });
}

TEST(CApiAllocationFailure, NewFormsKeepTheCallersReferences) {
  VxTransportRecord record{};
  Held const held{VxVariantData_C_API_constructArray(&record, elements, doubleKind, 6, twoByThree, 0)};
  std::complex<double> const complexElements[] = {{1, 2}, {3, 4}};
  Held const complexHeld{VxVariantData_C_API_constructArray(&record, complexElements, complexKind, 2, {}, 0)};
  Held const reals{VxVariantData_C_API_constructArray(&record, elements, doubleKind, 6, {}, 0)};
  Held const before{VxVariantData_C_API_constructArray(&record, elements, doubleKind, 6, twoByThree, 0)};
  ASSERT_EQ(record.exceptionName, nullptr);
  auto const unchanged = [&] { EXPECT_TRUE(VxVariantData_C_API_isIdenticalTo(&record, held.data, before.data)); };

  failEveryAllocation(
      "VxVariantData_C_API_mutableStoredData",
      [&] {
        void *block = nullptr;
        release(onSecondReference(held.data, [&](VxVariantData *second) {
          return transported([&](auto *r) { return VxVariantData_C_API_mutableStoredData(r, second, &block); });
        }));
      },
      unchanged);
  failEveryAllocation(
      "VxVariantData_C_API_convertDataTo",
      [&] {
        release(transported(
            [&](auto *r) { return VxVariantData_C_API_convertDataTo(r, held.data, int32Kind, conversionCast); }));
      },
      unchanged);
  failEveryAllocation(
      "VxVariantData_C_API_reorderData",
      [&] {
        release(onSecondReference(held.data, [&](VxVariantData *second) {
          return transported([&](auto *r) { return VxVariantData_C_API_reorderData(r, second, 1); });
        }));
      },
      unchanged);
  std::uint64_t const longer[] = {3, 3};
  failEveryAllocation(
      "VxVariantData_C_API_reshapeToVxVariant",
      [&] {
        release(onSecondReference(held.data, [&](VxVariantData *second) {
          return transported([&](auto *r) {
            return VxVariantData_C_API_reshapeToVxVariant(r, held.data, second, {longer, 2}, 1);
          });
        }));
      },
      unchanged);
  failEveryAllocation("VxVariantData_C_API_constructTransmuteComplexToRealVariant", [&] {
    release(onSecondReference(complexHeld.data, [&](VxVariantData *second) {
      return transported(
          [&](auto *r) { return VxVariantData_C_API_constructTransmuteComplexToRealVariant(r, second); });
    }));
  });
  failEveryAllocation("VxVariantData_C_API_constructTransmuteRealToComplexVariant", [&] {
    release(onSecondReference(reals.data, [&](VxVariantData *second) {
      return transported(
          [&](auto *r) { return VxVariantData_C_API_constructTransmuteRealToComplexVariant(r, second); });
    }));
  });
  failEveryAllocation(
      "the reading C functions",
      [&] {
        transported([&](auto *r) {
          return VxVariantData_C_API_constStoredData(r, held.data) != nullptr &&
                 VxVariantData_C_API_dimensions(r, held.data).count == 2 &&
                 VxVariantData_C_API_dataOrdering(r, held.data) == 0 &&
                 VxVariantData_C_API_wellKnownDataType(r, held.data) == doubleKind &&
                 !VxVariantData_C_API_isScalarStorage(r, held.data) &&
                 VxVariantData_C_API_numberAllocatedElements(r, held.data) == 6 &&
                 VxVariantData_C_API_isEquivalentTo(r, held.data, before.data, conversionLossless) &&
                 VxVariantData_C_API_isIdenticalTo(r, held.data, before.data) &&
                 VxVariantData_C_API_constructNull() != nullptr;
        });
      },
      unchanged);
}
