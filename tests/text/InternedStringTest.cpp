#include <VantraCore/InternedString.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

using Tarvex::VantraCore::InternedString;

namespace {
InternedString const s_keyOfThisUnit("__object_type");
}  // namespace

TEST(InternedString, ManyThreadsGetOneAddressPerText) {
  std::vector<std::map<std::string, char const *>> seen(8);
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([t, &seen] {
      for (int i = 0; i < 300; ++i) {  // each thread in its own order, from its own buffers
        std::string const text = "name-" + std::to_string((i * 7 + t) % 300);
        seen[t][text] = InternedString(text.c_str()).data();
      }
    });
  }
  for (auto &thread : threads)
    thread.join();
  for (auto const &[text, address] : seen[0]) {
    for (auto const &other : seen)
      EXPECT_EQ(other.at(text), address);
  }
  EXPECT_EQ(InternedString("__object_type"), s_keyOfThisUnit);
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
