/* The records that cross between modules, checked from a C module that sees only bytes: the
 * transport record and the string record header, by layout at compile time and by content after
 * the library's C functions filled them. */
#include <VantraCore/VariantCApi.h>
#include <support/CCheck.h>

#include <stddef.h>
#include <string.h>

/* The string record's header as another module lays it out. */
typedef struct {
  uint32_t count;
  uint32_t padding;
  uint64_t length;
} StringHeader;

_Static_assert(sizeof(VxTransportRecord) == 208, "transport record size");
_Static_assert(offsetof(VxTransportRecord, exceptionName) == 0, "name first");
_Static_assert(offsetof(VxTransportRecord, message) == 8 && sizeof(((VxTransportRecord *)0)->message) == 200,
               "then 200 bytes of message");
_Static_assert(sizeof(StringHeader) == 16 && offsetof(StringHeader, length) == 8, "string header");
_Static_assert(sizeof(VxArrayDimensionsView) == 16 && offsetof(VxArrayDimensionsView, count) == 8,
               "shape: pointer, then rank");

static StringHeader const *header(VxStringData const *record) {
  return (StringHeader const *)(void const *)record;
}

int main(void) {
  VxTransportRecord record;

  /* A call that succeeds writes the name and the first message byte, and nothing after them. */
  memset(&record, 0x5A, sizeof record);
  VxStringData *text = VxStringData_C_API_constructCString(&record, "hello", 5);
  CHECK(record.exceptionName == NULL && record.message[0] == '\0' && record.message[1] == 0x5A &&
        record.message[199] == 0x5A);
  CHECK(header(text)->count == 1 && header(text)->length == 5);
  CHECK(VxStringData_C_API_getConstDataPointer(text) == (char const *)text + 16);
  CHECK(memcmp((char const *)text + 16, "hello", 6) == 0);
  CHECK(VxStringData_C_API_copy(text) == text && header(text)->count == 2);
  VxStringData_C_API_destruct(text);
  CHECK(header(text)->count == 1 && VxStringData_C_API_getLength(text) == 5);
  VxStringData_C_API_destruct(text);

  VxStringDataAndText room = VxStringData_C_API_constructCStringWithSize(&record, 3);
  CHECK(room.text == (char *)room.record + 16 && header(room.record)->length == 3);
  memcpy(room.text, "abc", 4);
  CHECK(strcmp(VxStringData_C_API_getConstDataPointer(room.record), "abc") == 0);
  VxStringData_C_API_destruct(room.record);

  /* Failures come back as a name and a message, with a null result. */
  CHECK(VxStringData_C_API_constructCString(&record, NULL, 3) == NULL);
  CHECK(failedWith(&record, "invalid_argument", "VxString text is null"));
  room = VxStringData_C_API_constructCStringWithSize(&record, UINT64_MAX);
  CHECK(room.record == NULL && room.text == NULL && failedWith(&record, "bad_alloc", "std::bad_alloc"));
  CHECK(VxVariantData_C_API_wellKnownDataType(&record, NULL) == 0);
  CHECK(failedWith(&record, "invalid_argument", "VxVariant data is null"));

  /* A string element travels inside a variant as the library's record: the holder takes a reference
   * of its own and gives it back when it goes. */
  text = VxStringData_C_API_constructCString(&record, "kept", 4);
  struct {
    VxStringData *record;
    uint64_t length;
    char const *text;
  } const element = {text, 4, VxStringData_C_API_getConstDataPointer(text)};
  VxVariantData *scalar = VxVariantData_C_API_constructScalar(&record, &element, 0x0010);
  CHECK(record.exceptionName == NULL && header(text)->count == 2);
  VxVariantData_C_API_destruct(&record, scalar);
  CHECK(header(text)->count == 1);
  VxStringData_C_API_destruct(text);

  return checkResult();
}
