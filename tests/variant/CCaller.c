/* A C module that drives the variant holders through the C functions alone: it builds an array,
 * reads it, writes a private copy, hands in bad input, and gives back every reference it took. */
#include <VantraCore/VariantCApi.h>
#include <support/CCheck.h>

#include <string.h>

int main(void) {
  VxTransportRecord record;
  double const data[6] = {1, 2, 3, 4, 5, 6};
  uint64_t const shape[2] = {2, 3};
  VxArrayDimensionsView const dims = {shape, 2};
  VxArrayDimensionsView const none = {NULL, 0};

  VxVariantData *array = VxVariantData_C_API_constructArray(&record, data, 0x0001, 6, dims, 0);
  CHECK(record.exceptionName == NULL && array != NULL);
  CHECK(VxVariantData_C_API_wellKnownDataType(&record, array) == 0x0001);
  CHECK(!VxVariantData_C_API_isScalarStorage(&record, array));
  VxArrayDimensionsView const read = VxVariantData_C_API_dimensions(&record, array);
  CHECK(read.count == 2 && read.sizes[0] == 2 && read.sizes[1] == 3);
  double const *elements = (double const *)VxVariantData_C_API_constStoredData(&record, array);
  CHECK(elements != data && memcmp(elements, data, sizeof data) == 0);

  /* Converting to the own kind converts nothing: the same holder with one more reference, which
   * makes a writer take a private copy. */
  VxVariantData *same = VxVariantData_C_API_convertDataTo(&record, array, 0x0001, 0);
  same = VxVariantData_C_API_reorderData(&record, same, 0); /* no change, nor of the count */
  CHECK(same == array);
  void *block = NULL;
  VxVariantData *mine = VxVariantData_C_API_mutableStoredData(&record, same, &block);
  CHECK(record.exceptionName == NULL && mine != array);
  ((double *)block)[0] = 42;
  CHECK(elements[0] == 1);
  VxVariantData_C_API_destruct(&record, mine);
  VxVariantData_C_API_destruct(&record, array);
  VxVariantData_C_API_destruct(&record, NULL);
  CHECK(record.exceptionName == NULL);

  CHECK(VxVariantData_C_API_constructArray(&record, data, 0x0006, 5, dims, 0) == NULL);
  CHECK(failedWith(&record, "length_error", "dimensions do not match data length"));
  CHECK(VxVariantData_C_API_createWithAllocatedArray(&record, 0x0020, dims, 0) == NULL);
  CHECK(failedWith(&record, "runtime_error", "unknown type"));
  VxVariantData *line = VxVariantData_C_API_constructArray(&record, data, 0x0001, 5, none, 0);
  CHECK(VxVariantData_C_API_dimensions(&record, line).sizes[0] == 5);
  VxVariantData_C_API_destruct(&record, line);

  return checkResult();
}
