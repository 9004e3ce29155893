#pragma once

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

// Matches a call that throws an E whose text is exactly `message`.
template <class E = std::runtime_error>
auto throws(std::string const &message) {
  return testing::ThrowsMessage<E>(testing::StrEq(message));
}
