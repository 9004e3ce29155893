#pragma once

#include <VantraCore/ExceptionTransport.h>

#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>
#include <type_traits>

namespace Tarvex::VantraCore::Internal {

namespace detail {
template <class Result>
Result failTransport(TransportRecord *record, char const *name, char const *what) noexcept {
  record->exceptionName = name;
  std::strncat(record->message, what, sizeof(record->message) - 1);
  if constexpr (!std::is_void_v<Result>) return Result{};
}
}  // namespace detail

// The one place where exported C functions catch, for the string and the variant functions alike:
// each function hands its body (a lambda over its own arguments) to this guard, so no exception
// crosses the C boundary and the handlers cannot drift apart. Failures yield the zero value of the
// result.
template <class Body>
auto guardTransport(TransportRecord *record, Body &&body) noexcept -> decltype(body()) {
  using Result = decltype(body());
  record->exceptionName = nullptr;
  record->message[0] = '\0';
  try {
    return body();
  }
#define VANTRACORE_CATCH_TRANSPORTED(Caught, Text, Thrown)        \
  catch (Caught const &e) {                                       \
    return detail::failTransport<Result>(record, Text, e.what()); \
  }
  VANTRACORE_TRANSPORTED_EXCEPTIONS(VANTRACORE_CATCH_TRANSPORTED)
#undef VANTRACORE_CATCH_TRANSPORTED
  catch (...) {
    return detail::failTransport<Result>(record, "exception", "unknown exception");
  }
}

}  // namespace Tarvex::VantraCore::Internal
