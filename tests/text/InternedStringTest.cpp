#include <VantraCore/InternedString.h>

#include <gtest/gtest.h>

#include <string>

using Tarvex::VantraCore::InternedString;

namespace {
InternedString const s_keyOfThisUnit("__object_type");
}  // namespace

// The key above was made while the library's statics were still being set up.
TEST(InternedString, AKeyMadeAtStartIsTheNameMadeLater) {
  std::string const text = std::string("__object_") + "type";
  EXPECT_EQ(InternedString(text.c_str()), s_keyOfThisUnit);
}

TEST(InternedString, EveryByteCountsAndEmptyHasAnAddress) {
  InternedString const withNul("a\0b", 3);
  EXPECT_EQ(withNul.length(), 3u);
  EXPECT_NE(withNul, InternedString("a\0c", 3));
  EXPECT_NE(withNul, InternedString("a"));
  EXPECT_EQ(withNul, InternedString(std::string("a\0b", 3).c_str(), 3));
  InternedString const empty("");
  EXPECT_NE(empty.data(), nullptr);
  EXPECT_EQ(InternedString(static_cast<char const *>(nullptr)), empty);
}
