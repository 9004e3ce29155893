#include <VantraCore/ExceptionReporter.h>
#include <diagnostics/DefaultReporter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tarvex::VantraCore::Experimental;
using Tarvex::VantraCore::Internal::defaultReporter;

// With every reporter switched off a report loses nothing: the exception goes on to the caller.
TEST(NoReporterAtAll, ReportRethrows) {
  defaultReporter().setGlobalReporter(false);
  EXPECT_THAT([] { reportError("x"); }, testing::ThrowsMessage<std::runtime_error>("x"));
  try {
    try {
      throw std::out_of_range("gone");
    } catch (...) {
      exceptionAsWarning("", "");
    }
    ADD_FAILURE() << "the warning vanished";
  } catch (std::out_of_range const &e) {
    EXPECT_STREQ(e.what(), "gone");
  }
  defaultReporter().setGlobalReporter(true);
  EXPECT_NO_THROW(reportWarning("back on standard error"));
}
