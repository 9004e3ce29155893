#include <VantraCore/InternedString.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

using Tarvex::VantraCore::InternedString;
using Tarvex::VantraCore::VxStringView;

namespace {
InternedString const s_keyOfThisUnit("__object_type");
}  // namespace

TEST(InternedString, ManyThreadsGetOneAddressPerText) {
  constexpr int threadCount = 8;
  constexpr int nameCount = 300;
  std::vector<std::map<std::string, char const *>> seen(threadCount);
  std::vector<std::thread> threads;
  for (int t = 0; t < threadCount; ++t) {
    threads.emplace_back([t, &seen] {
      for (int i = 0; i < nameCount; ++i) {
        // Each thread walks the names in its own order, from its own buffers.
        std::string const text = "name-" + std::to_string((i * 7 + t) % nameCount);
        seen[t][text] = InternedString(text.c_str()).data();
      }
    });
  }
  for (auto &thread : threads)
    thread.join();
  for (int i = 0; i < nameCount; ++i) {
    std::string const text = "name-" + std::to_string(i);
    InternedString const name(text.c_str());
    EXPECT_EQ(VxStringView(name), text);
    for (auto const &addresses : seen)
      EXPECT_EQ(addresses.at(text), name.data());
  }
}

TEST(InternedString, ComparesByAddressOverTheWholeLength) {
  EXPECT_EQ(InternedString("__object_type"), s_keyOfThisUnit);
  EXPECT_EQ(InternedString(VxStringView("__object_type")).data(), s_keyOfThisUnit.data());

  InternedString const withNul("a\0b", 3);
  EXPECT_EQ(withNul.length(), 3u);
  EXPECT_NE(withNul, InternedString("a\0c", 3));
  EXPECT_NE(withNul, InternedString("a"));
  EXPECT_EQ(withNul, InternedString(std::string("a\0b", 3).c_str(), 3));

  InternedString const empty("");
  EXPECT_NE(empty.data(), nullptr);
  EXPECT_EQ(empty.length(), 0u);
  EXPECT_EQ(InternedString(static_cast<char const *>(nullptr)), empty);
  EXPECT_EQ(InternedString("", 0).data(), empty.data());
}
