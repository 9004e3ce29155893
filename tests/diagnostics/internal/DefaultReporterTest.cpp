#include <VantraCore/ExceptionReporter.h>
#include <diagnostics/DefaultReporter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

using namespace Tarvex::VantraCore::Experimental;
using Tarvex::VantraCore::Internal::defaultReporter;

// With every reporter switched off a report loses nothing: the exception goes on to the caller.
TEST(NoReporterAtAll, ReportRethrows) {
  defaultReporter().setGlobalReporter(false);
  EXPECT_THAT([] { reportError("x"); }, throws<std::runtime_error>("x"));
  EXPECT_THAT([] { reportWarning("y"); }, throws<std::runtime_error>("y"));
  defaultReporter().setGlobalReporter(true);
}
