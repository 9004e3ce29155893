#pragma once

#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>
#include <type_traits>

namespace Tarvex::VantraCore::Internal {

// Carries an exception out of an exported C function. The caller owns it, usually on its stack;
// the layout is a wire format between separately built modules.
struct TransportRecord {
  char const *exceptionName;  // null when the call succeeded
  char message[200];          // NUL-terminated, at most 199 characters
};
static_assert(sizeof(TransportRecord) == 208, "the transport record is a 208-byte wire format");
static_assert(offsetof(TransportRecord, message) == 8, "message follows the name pointer");

// The kinds an exception keeps over the boundary, most specific first, as
//   X(class caught, name in the record, class thrown anew).
// The library's guard catches in this order; anything else travels as "exception".
#define VANTRACORE_TRANSPORTED_EXCEPTIONS(X)                          \
  X(std::bad_alloc, "bad_alloc", std::bad_alloc)                      \
  X(std::out_of_range, "out_of_range", std::out_of_range)             \
  X(std::invalid_argument, "invalid_argument", std::invalid_argument) \
  X(std::length_error, "length_error", std::length_error)             \
  X(std::runtime_error, "runtime_error", std::runtime_error)          \
  X(std::exception, "exception", std::runtime_error)

template <class Thrown>
[[noreturn]] void throwTransported(char const *message) {
  if constexpr (std::is_same_v<Thrown, std::bad_alloc>)
    throw Thrown();  // carries no text
  else
    throw Thrown(message);
}

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
  char const *const name = record.exceptionName;
#define VANTRACORE_RETHROW_TRANSPORTED(Caught, Text, Thrown)           \
  {                                                                    \
    static Name const known{Text, sizeof Text - 1};                    \
    if (known.matches(name)) throwTransported<Thrown>(record.message); \
  }
  VANTRACORE_TRANSPORTED_EXCEPTIONS(VANTRACORE_RETHROW_TRANSPORTED)
#undef VANTRACORE_RETHROW_TRANSPORTED
  throw std::runtime_error("Unrecognized exception type");
}

}  // namespace Tarvex::VantraCore::Internal
