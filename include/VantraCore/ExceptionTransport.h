#pragma once

#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>

namespace Tarvex::VantraCore::Internal {

// Carries an exception out of an exported C function. The caller owns it, usually on its stack;
// the layout is a wire format between separately built modules.
struct TransportRecord {
  char const *exceptionName;  // null when the call succeeded
  char message[200];          // NUL-terminated, at most 199 characters
};
static_assert(sizeof(TransportRecord) == 208, "the transport record is a 208-byte wire format");
static_assert(offsetof(TransportRecord, message) == 8, "message follows the name pointer");

// Throws, on the caller's side of a C function, what the record carries. The names are compared by
// text: every module has its own copies of them.
inline void rethrowTransportRecord(TransportRecord const &record) {
  if (record.exceptionName == nullptr) return;
  struct Name {
    char const *text;
    std::size_t length;
    bool matches(char const *other) const {
      return std::strlen(other) == length && std::memcmp(other, text, length) == 0;
    }
  };
  static Name const badAlloc{"bad_alloc", 9};
  static Name const outOfRange{"out_of_range", 12};
  static Name const invalidArgument{"invalid_argument", 16};
  static Name const lengthError{"length_error", 12};
  static Name const runtimeError{"runtime_error", 13};
  static Name const exception{"exception", 9};

  char const *name = record.exceptionName;
  if (badAlloc.matches(name)) throw std::bad_alloc();
  if (outOfRange.matches(name)) throw std::out_of_range(record.message);
  if (invalidArgument.matches(name)) throw std::invalid_argument(record.message);
  if (lengthError.matches(name)) throw std::length_error(record.message);
  if (runtimeError.matches(name) || exception.matches(name)) throw std::runtime_error(record.message);
  throw std::runtime_error("Unrecognized exception type");
}

}  // namespace Tarvex::VantraCore::Internal
