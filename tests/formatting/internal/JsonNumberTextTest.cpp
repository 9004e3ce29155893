#include <formatting/JsonTextWriter.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdio>

using Tarvex::VantraCore::Internal::JsonTextWriter;

namespace {

std::string written(double value) {
  JsonTextWriter out(-1);
  out.number(value);
  return std::string(out.text());
}

std::string printed(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.15g", value);
  return text;
}

}  // namespace

// The quick digit path has to agree with printf to the last digit, and hand the rest to the slow one.
RC_GTEST_PROP(JsonNumberText, MatchesPrintfForDecimalLikeValues, (std::int64_t mantissa, std::int8_t power)) {
  double const value = static_cast<double>(mantissa % 100000000000000000) * std::pow(10.0, power % 40);
  RC_PRE(std::isfinite(value) && value != 0);
  RC_ASSERT(written(value) == printed(value));
}

TEST(JsonNumberText, RoundingBoundariesAndFormats) {
  for (double const value :
       {9.9999999999999995e14, 999999999999999.5, 0.5, 1e15, 1e-5, 0.0001, 123456789012345678.0, 5e-324,
        1.7976931348623157e308, 0.30000000000000004, 2.5e-5, 1e100})
    EXPECT_EQ(written(value), printed(value)) << value;
}
