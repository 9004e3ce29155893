#include <VantraCore/ExceptionTransport.h>
#include <text/TransportGuard.h>

#include <gtest/gtest.h>

#include <string>

using Tarvex::VantraCore::Internal::guardTransport;
using Tarvex::VantraCore::Internal::rethrowTransportRecord;
using Tarvex::VantraCore::Internal::TransportRecord;

namespace {

// What the caller sees after a C function failed with `thrown`.
template <class Thrown>
TransportRecord carry(Thrown thrown) {
  TransportRecord record;
  std::memset(&record, 'x', sizeof record);  // the guard must not rely on a cleared record
  int *result = guardTransport(&record, [&]() -> int * { throw thrown; });
  EXPECT_EQ(result, nullptr);
  return record;
}

template <class Expected>
std::string rethrown(TransportRecord const &record) {
  try {
    rethrowTransportRecord(record);
  } catch (Expected const &e) {
    return e.what();
  }
  ADD_FAILURE() << "nothing or the wrong type was thrown";
  return {};
}

}  // namespace

TEST(ExceptionTransport, SuccessLeavesNameNullAndPassesResult) {
  TransportRecord record;
  std::memset(&record, 'x', sizeof record);
  int value = 7;
  EXPECT_EQ(guardTransport(&record, [&] { return value * 6; }), 42);
  EXPECT_EQ(record.exceptionName, nullptr);
  EXPECT_EQ(record.message[0], '\0');
  EXPECT_NO_THROW(rethrowTransportRecord(record));
}

TEST(ExceptionTransport, KeepsTheSixKindsAndTheirTextsUpTo199Characters) {
  EXPECT_EQ(rethrown<std::out_of_range>(carry(std::out_of_range("oor"))), "oor");
  EXPECT_EQ(rethrown<std::invalid_argument>(carry(std::invalid_argument("bad"))), "bad");
  EXPECT_EQ(rethrown<std::length_error>(carry(std::length_error("long"))), "long");
  EXPECT_EQ(rethrown<std::runtime_error>(carry(std::runtime_error("rt"))), "rt");
  EXPECT_EQ(std::string(carry(std::bad_alloc()).exceptionName), "bad_alloc");
  EXPECT_THROW(rethrowTransportRecord(carry(std::bad_alloc())), std::bad_alloc);
  std::string const text(500, 'm');
  EXPECT_EQ(rethrown<std::invalid_argument>(carry(std::invalid_argument(text))), text.substr(0, 199));
}

TEST(ExceptionTransport, OtherKindsArriveAsRuntimeError) {
  TransportRecord domain = carry(std::domain_error("division by zero"));
  EXPECT_STREQ(domain.exceptionName, "exception");
  EXPECT_EQ(rethrown<std::runtime_error>(domain), "division by zero");
  // A derived class arrives as its standard base.
  EXPECT_STREQ(carry(std::range_error("r")).exceptionName, "runtime_error");

  TransportRecord unknown = carry(42);
  EXPECT_STREQ(unknown.exceptionName, "exception");
  EXPECT_EQ(rethrown<std::runtime_error>(unknown), "unknown exception");
}

// Another module's record has its own copies of the names.
TEST(ExceptionTransport, NamesAreComparedByText) {
  char name[] = "out_of_range";
  TransportRecord record{};
  record.exceptionName = name;
  std::strcpy(record.message, "elsewhere");
  EXPECT_EQ(rethrown<std::out_of_range>(record), "elsewhere");
  record.exceptionName = "system_error";
  EXPECT_EQ(rethrown<std::runtime_error>(record), "Unrecognized exception type");
}
