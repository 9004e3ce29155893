#include <VantraCore/VxString.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using Tarvex::VantraCore::VxString;
using Tarvex::VantraCore::Internal::TransportRecord;

namespace {
// The cached length in the record around a text: count at offset 0, length at 8, text at 16.
std::uint64_t lengthOf(char const *text) {
  std::uint64_t length;
  std::memcpy(&length, text - 8, sizeof length);
  return length;
}
}  // namespace

// The record's layout and counting are checked from a C module; here the edges: no record, an empty
// text, and failures arriving on the caller's side.
TEST(VxString, CFunctionsAtTheEdges) {
  VxStringData_C_API_destruct(nullptr);
  TransportRecord transport;
  auto *record = VxStringData_C_API_constructCString(&transport, "", 0);
  EXPECT_EQ(VxStringData_C_API_getConstDataPointer(record), reinterpret_cast<char const *>(record) + 16);
  EXPECT_EQ(VxStringData_C_API_getConstDataPointer(record)[0], '\0');
  EXPECT_EQ(VxStringData_C_API_copy(record), record);
  VxStringData_C_API_destruct(record);
  VxStringData_C_API_destruct(record);

  EXPECT_EQ(VxStringData_C_API_constructCString(&transport, "x", ~0ull), nullptr);
  EXPECT_STREQ(transport.exceptionName, "bad_alloc");
  EXPECT_EQ(VxStringData_C_API_constructCStringWithSize(&transport, 1ull << 63).record, nullptr);
  EXPECT_THROW(VxString("x", ~0ull), std::bad_alloc);
  EXPECT_THROW(VxString::concatenate("x", ~0ull, "y", 32), std::bad_alloc);
  EXPECT_THROW(VxString(nullptr, 2), std::invalid_argument);
}

TEST(VxString, EmptyFormsSubstrAndMoves) {
  VxString const empty, built("", 0);
  EXPECT_TRUE(empty == built && !(empty < built) && !(built < empty));
  EXPECT_EQ(std::hash<VxString>()(empty), 0xCBF29CE484222325ull);
  EXPECT_EQ(std::hash<VxString>()(VxString("foobar")), 0x85944171F73967E8ull);

  VxString text("abc");
  EXPECT_THROW(text.substr(4), std::out_of_range);
  EXPECT_TRUE(text.mid(10).empty());
  EXPECT_EQ(text.left(2), "ab");

  char const *data = text.data();
  VxString moved(std::move(text));
  EXPECT_EQ(moved.data(), data);
  EXPECT_STREQ(text.c_str(), "");  // NOLINT(bugprone-use-after-move)
}

TEST(VxString, TheBuilderCutsTheCachedLengthAtANul) {
  VxString const joined = VxString("ab") + VxString(std::string("x\0y", 3));
  EXPECT_EQ(joined, "abx");
  EXPECT_EQ(lengthOf(joined.data()), 5u);
  EXPECT_EQ(VxString(std::string("x\0y", 3)).length(), 3u);  // direct construction keeps all
}

RC_GTEST_PROP(VxString, AgreesWithStdStringOnNulFreeText, (std::string a, std::string b)) {
  for (std::string *s : {&a, &b})
    for (char &c : *s)
      c = c ? c : '0';
  VxString const va(a), vb(b);
  RC_ASSERT((va + vb).toStdString() == a + b);
  RC_ASSERT((va == vb) == (a == b));
  RC_ASSERT((va < vb) == (a < b));
  std::uint64_t const pos = *rc::gen::inRange<std::uint64_t>(0, a.size() + 1);
  RC_ASSERT(va.substr(pos, 2).toStdString() == a.substr(pos, 2));
}
