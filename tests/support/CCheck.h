/* Checks for the test modules written in C: a failed CHECK is reported and counted, and
 * checkResult() gives main's exit code. */
#pragma once

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

/* Whether the call behind `record` failed with that kind and text. */
static inline int failedWith(VxTransportRecord const *record, char const *name, char const *message) {
  return record->exceptionName != NULL && strcmp(record->exceptionName, name) == 0 &&
         strcmp(record->message, message) == 0;
}

static inline int checkResult(void) {
  if (failures != 0) fprintf(stderr, "%d checks failed\n", failures);
  return failures == 0 ? 0 : 1;
}
