/* A C module using the variant holders through the C functions alone: it builds an array, reads
 * it, reorders it, writes a private copy, and gives back every reference it took. */
#include <VantraCore/VariantCApi.h>

#include <stdio.h>
#include <string.h>

static int failures = 0;

#define CHECK(condition)                                              \
  do {                                                                \
    if (!(condition)) {                                               \
      fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                     \
    }                                                                 \
  } while (0)

static int succeeded(VxTransportRecord const *record) {
  return record->exceptionName == NULL && record->message[0] == '\0';
}

static int failedWith(VxTransportRecord const *record, char const *name, char const *message) {
  return record->exceptionName != NULL && strcmp(record->exceptionName, name) == 0 &&
         strcmp(record->message, message) == 0;
}

enum { kindDouble = 0x0001, kindInt32 = 0x0006, kindCustom = 0x0020 };

static void buildReadAndRelease(void) {
  VxTransportRecord record;
  double const data[6] = {1, 2, 3, 4, 5, 6};
  uint64_t const shape[2] = {2, 3};
  VxArrayDimensionsView const dims = {shape, 2};

  VxVariantData *array = VxVariantData_C_API_constructArray(&record, data, kindDouble, 6, dims, 0);
  CHECK(succeeded(&record) && array != NULL);
  CHECK(VxVariantData_C_API_wellKnownDataType(&record, array) == kindDouble);
  CHECK(!VxVariantData_C_API_isScalarStorage(&record, array));
  CHECK(VxVariantData_C_API_numberAllocatedElements(&record, array) == 6);
  VxArrayDimensionsView const read = VxVariantData_C_API_dimensions(&record, array);
  CHECK(read.count == 2 && read.sizes[0] == 2 && read.sizes[1] == 3);
  double const *elements = (double const *)VxVariantData_C_API_constStoredData(&record, array);
  CHECK(elements != data && memcmp(elements, data, sizeof data) == 0);

  /* Converting to the own kind converts nothing: the same holder, one more reference. */
  VxVariantData *same = VxVariantData_C_API_convertDataTo(&record, array, kindDouble, 0);
  CHECK(same == array);

  /* Reordering consumes that reference and gives one to the column-major form. */
  VxVariantData *columns = VxVariantData_C_API_reorderData(&record, same, 1);
  CHECK(succeeded(&record) && columns != array);
  CHECK(VxVariantData_C_API_dataOrdering(&record, columns) == 1);
  double const *byColumn = (double const *)VxVariantData_C_API_constStoredData(&record, columns);
  CHECK(byColumn[0] == 1 && byColumn[1] == 4 && byColumn[2] == 2 && byColumn[5] == 6);
  CHECK(VxVariantData_C_API_isEquivalentTo(&record, array, columns, 0));
  CHECK(!VxVariantData_C_API_isIdenticalTo(&record, array, columns));

  /* A second reference makes the writer take a private copy. */
  VxVariantData *shared = VxVariantData_C_API_copy(&record, array);
  void *block = NULL;
  VxVariantData *mine = VxVariantData_C_API_mutableStoredData(&record, shared, &block);
  CHECK(succeeded(&record) && mine != array);
  ((double *)block)[0] = 42;
  CHECK(elements[0] == 1);

  VxVariantData_C_API_destruct(&record, mine);
  VxVariantData_C_API_destruct(&record, columns);
  VxVariantData_C_API_destruct(&record, array);
  VxVariantData_C_API_destruct(&record, NULL);
  CHECK(succeeded(&record));
}

static void badInputComesBackInTheRecord(void) {
  VxTransportRecord record;
  int32_t const data[5] = {1, 2, 3, 4, 5};
  uint64_t const shape[2] = {2, 3};
  VxArrayDimensionsView const mismatched = {shape, 2};
  VxArrayDimensionsView const none = {NULL, 0};

  CHECK(VxVariantData_C_API_constructArray(&record, data, kindInt32, 5, mismatched, 0) == NULL);
  CHECK(failedWith(&record, "length_error", "dimensions do not match data length"));
  CHECK(VxVariantData_C_API_createWithAllocatedArray(&record, kindCustom, mismatched, 0) == NULL);
  CHECK(failedWith(&record, "runtime_error", "unknown type"));

  VxVariantData *line = VxVariantData_C_API_constructArray(&record, data, kindInt32, 5, none, 0);
  VxArrayDimensionsView const read = VxVariantData_C_API_dimensions(&record, line);
  CHECK(succeeded(&record) && read.count == 1 && read.sizes[0] == 5);
  VxVariantData_C_API_destruct(&record, line);

  VxVariantData *null = VxVariantData_C_API_constructNull();
  CHECK(VxVariantData_C_API_wellKnownDataType(&record, null) == 0);
  VxVariantData_C_API_destruct(&record, null);
}

int main(void) {
  buildReadAndRelease();
  badInputComesBackInTheRecord();
  if (failures != 0) fprintf(stderr, "%d checks failed\n", failures);
  return failures == 0 ? 0 : 1;
}
