#include <VantraCore/VxString.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <thread>
#include <unordered_set>
#include <vector>

using Tarvex::VantraCore::VxString;
using Tarvex::VantraCore::VxStringView;
using Tarvex::VantraCore::Internal::TransportRecord;

namespace {

// Reads the record that the text of `text` lives in: count at 0, length at 8, text at 16.
struct RecordBytes {
  std::uint32_t count;
  std::uint64_t length;
  explicit RecordBytes(char const *text) {
    std::memcpy(&count, text - 16, sizeof count);
    std::memcpy(&length, text - 8, sizeof length);
  }
};

}  // namespace

TEST(VxString, RecordLayoutAndTheTwoEmptyForms) {
  VxString const built("", 0);
  RecordBytes const record(built.data());
  EXPECT_EQ(record.count, 1u);
  EXPECT_EQ(record.length, 0u);
  EXPECT_EQ(built.c_str()[0], '\0');

  VxString const empty;
  EXPECT_EQ(empty.c_str(), std::string());
  EXPECT_TRUE(empty == built);
  EXPECT_FALSE(empty < built || built < empty);
  EXPECT_TRUE(empty.empty() && built.empty());
  EXPECT_EQ(std::hash<VxString>()(empty), std::hash<VxString>()(built));

  std::string const embedded("a\0b", 3);
  VxString const withNul(embedded);
  EXPECT_EQ(withNul.length(), 3u);
  EXPECT_EQ(withNul.toStdString(), embedded);
  EXPECT_EQ(RecordBytes(withNul.data()).length, 3u);
}

TEST(VxString, CFunctionsKeepTheirReferenceEffects) {
  VxStringData_C_API_destruct(nullptr);

  TransportRecord transport;
  auto *record = VxStringData_C_API_constructCString(&transport, "hello", 5);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(transport.exceptionName, nullptr);
  EXPECT_EQ(VxStringData_C_API_getLength(record), 5u);
  char const *text = VxStringData_C_API_getConstDataPointer(record);
  EXPECT_EQ(text, reinterpret_cast<char const *>(record) + 16);
  EXPECT_STREQ(text, "hello");
  VxStringData_C_API_copy(record);
  EXPECT_EQ(RecordBytes(text).count, 2u);
  VxStringData_C_API_destruct(record);
  EXPECT_EQ(RecordBytes(text).count, 1u);
  VxStringData_C_API_destruct(record);

  auto made = VxStringData_C_API_constructCStringWithSize(&transport, 3);
  EXPECT_EQ(made.text, VxStringData_C_API_getConstDataPointer(made.record));
  EXPECT_EQ(VxStringData_C_API_getLength(made.record), 3u);
  VxStringData_C_API_destruct(made.record);
}

TEST(VxString, TransportFailuresArriveOnTheCallersSide) {
  TransportRecord transport;
  std::uint64_t const huge = 0xFFFFFFFFFFFFFFF0ull;
  EXPECT_EQ(VxStringData_C_API_constructCString(&transport, "x", huge), nullptr);
  EXPECT_STREQ(transport.exceptionName, "bad_alloc");
  auto made = VxStringData_C_API_constructCStringWithSize(&transport, 1ull << 63);
  EXPECT_EQ(made.record, nullptr);
  EXPECT_EQ(made.text, nullptr);
  EXPECT_STREQ(transport.exceptionName, "bad_alloc");

  EXPECT_THROW(VxString("x", huge), std::bad_alloc);
  VxString const text("abc");
  EXPECT_THROW(VxString::concatenate(text.data(), huge, text.data(), 32), std::bad_alloc);
  EXPECT_THROW(VxString(nullptr, 2), std::invalid_argument);
  EXPECT_TRUE(VxString(static_cast<char const *>(nullptr)).empty());
}

TEST(VxString, SubstrAndItsTolerantForms) {
  VxString const text("abc");
  EXPECT_EQ(text.substr(1), "bc");
  EXPECT_EQ(text.substr(0, 2), "ab");
  EXPECT_TRUE(text.substr(3).empty());
  try {
    text.substr(4);
    ADD_FAILURE() << "substr past the end did not throw";
  } catch (std::out_of_range const &e) {
    EXPECT_STREQ(e.what(), "VxStringView range error");
  }
  EXPECT_TRUE(text.mid(10).empty());
  EXPECT_EQ(text.mid(1, 1), "b");
  EXPECT_EQ(text.left(2), "ab");
  EXPECT_EQ(text.left(10), "abc");
}

TEST(VxString, TheBuilderCutsTheCachedLengthAtANul) {
  VxString const withNul(std::string("x\0y", 3));
  VxString const joined = VxString("ab") + withNul;
  EXPECT_EQ(joined.length(), 3u);  // "abx"
  EXPECT_EQ(joined, "abx");
  EXPECT_EQ(RecordBytes(joined.data()).length, 5u);
  EXPECT_EQ("<" + VxString("q") + ">", "<q>");
  VxString grown("a");
  grown += "b";
  grown += VxString("c");
  EXPECT_EQ(grown, "abc");
}

TEST(VxString, MovesLeaveAnEmptySource) {
  VxString source("moved");
  char const *text = source.data();
  VxString target(std::move(source));
  EXPECT_EQ(target.data(), text);
  EXPECT_TRUE(source.empty());  // NOLINT(bugprone-use-after-move)
  EXPECT_STREQ(source.c_str(), "");
  source = std::move(target);
  EXPECT_EQ(source.data(), text);
  source = source;
  EXPECT_EQ(source, "moved");
}

TEST(VxString, OrderingAndHash) {
  EXPECT_TRUE(VxString("ab") < VxString("abc"));
  EXPECT_TRUE(VxString("abc") < VxString("abd"));
  EXPECT_TRUE(VxString("z") < VxString("\xc3\xa9"));  // unsigned bytes
  EXPECT_TRUE(VxString("a") != "b");
  EXPECT_TRUE("a" == VxString("a"));
  // Reference values of 64-bit FNV-1a.
  std::hash<VxString> const hash;
  EXPECT_EQ(hash(VxString()), 0xCBF29CE484222325ull);
  EXPECT_EQ(hash(VxString("a")), 0xAF63DC4C8601EC8Cull);
  EXPECT_EQ(hash(VxString("foobar")), 0x85944171F73967E8ull);
  std::unordered_set<VxString> set{"x", "y", "x"};
  EXPECT_EQ(set.size(), 2u);
}

TEST(VxString, CopiesOnManyThreadsKeepTheCount) {
  VxString const shared("shared between threads");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&shared] {
      for (int i = 0; i < 10000; ++i) {
        VxString copy(shared);
        VxString another = copy;
      }
    });
  }
  for (auto &thread : threads)
    thread.join();
  EXPECT_EQ(RecordBytes(shared.data()).count, 1u);
}

RC_GTEST_PROP(VxString, AgreesWithStdStringOnNulFreeText, (std::string a, std::string b)) {
  auto const noNul = [](std::string s) {
    for (char &c : s)
      c = c ? c : '0';
    return s;
  };
  a = noNul(a);
  b = noNul(b);
  VxString const va(a), vb(b);
  RC_ASSERT((va + vb).toStdString() == a + b);
  RC_ASSERT((va == vb) == (a == b));
  RC_ASSERT((va < vb) == (a < b));
  std::uint64_t const pos = *rc::gen::inRange<std::uint64_t>(0, a.size() + 1);
  RC_ASSERT(va.substr(pos, 2).toStdString() == a.substr(pos, 2));
}
