#include <VantraCore/VxStringView.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <functional>
#include <string_view>

using Tarvex::VantraCore::VxStringLiteral;
using Tarvex::VantraCore::VxStringView;

namespace {

constexpr auto npos = VxStringView::npos;

int sign(int value) {
  return (value > 0) - (value < 0);
}

std::string rangeError(std::function<void()> const &call) {
  try {
    call();
  } catch (std::out_of_range const &e) {
    return e.what();
  }
  return "no exception";
}

}  // namespace

TEST(VxStringView, ConstructionKeepsLengthAndPointer) {
  VxStringView const null(static_cast<char const *>(nullptr));
  EXPECT_EQ(null.length(), 0u);
  EXPECT_EQ(null.data(), nullptr);
  EXPECT_EQ(null.find(""), 0u);
  EXPECT_EQ(null.rfind(""), 0u);

  std::string const embedded("a\0b", 3);
  VxStringView const view(embedded);
  EXPECT_EQ(view.size(), 3u);
  EXPECT_EQ(view.data(), embedded.data());
  EXPECT_EQ(std::string(view), embedded);  // keeps the NUL
  EXPECT_EQ(VxStringView("a\0b").length(), 1u);
  EXPECT_EQ(VxStringView::max_size(), npos);
  EXPECT_EQ(npos, 0xFFFFFFFFFFFFFFFFull);
}

TEST(VxStringView, LiteralConvertsToItsFirstSegment) {
  VxStringLiteral const literal("a\0b", 3);
  EXPECT_EQ(std::string(literal), "a");
  EXPECT_EQ(literal.length(), 3u);
  EXPECT_STREQ(static_cast<char const *>(literal), "a");
}

TEST(VxStringView, CheckedAccessThrowsRangeError) {
  char const text[] = "hello";
  VxStringView const view(text, 5);
  EXPECT_EQ(rangeError([&] { view.at(5); }), "VxStringView range error");
  EXPECT_EQ(&view.at(4), text + 4);
  EXPECT_EQ(&view[5], text + 5);  // unchecked

  EXPECT_TRUE(view.substr(5).empty());
  EXPECT_EQ(view.substr(1, 3), "ell");
  EXPECT_EQ(view.substr(1, 3).data(), text + 1);
  EXPECT_EQ(rangeError([&] { view.substr(6); }), "VxStringView range error");

  char out[8] = "xxxxxxx";
  EXPECT_EQ(view.copy(out, 10, 3), 2u);
  EXPECT_EQ(std::string(out), "loxxxxx");  // no NUL appended
  EXPECT_EQ(rangeError([&] { view.copy(out, 1, 6); }), "VxStringView range error");

  EXPECT_EQ(rangeError([&] { view.compare(6, 1, "x"); }), "VxStringView range error");
  // The other side's position is checked first.
  EXPECT_EQ(rangeError([&] { view.compare(9, 1, VxStringView("ab"), 3, 1); }), "VxStringView range error");
  EXPECT_EQ(view.compare(1, 2, VxStringView("xelx"), 1, 2), 0);
  EXPECT_EQ(view.compare(0, 2, "hexx", 2), 0);
}

TEST(VxStringView, CompareOrdersByUnsignedBytesThenLength) {
  EXPECT_EQ(VxStringView("ab").compare("abc"), -1);
  EXPECT_EQ(VxStringView("abc").compare("ab"), 1);
  EXPECT_LT(VxStringView("a").compare("b"), 0);
  EXPECT_GT(VxStringView("\xff").compare("a"), 0);
  EXPECT_EQ(VxStringView("").compare(static_cast<char const *>(nullptr)), 0);
  EXPECT_TRUE(VxStringView("ab") < VxStringView("abc"));
}

TEST(VxStringView, EmptyNeedlesAndSets) {
  VxStringView const five("abcde");
  EXPECT_EQ(five.find("", 5), 5u);
  EXPECT_EQ(VxStringView("abcd").find("", 5), npos);
  EXPECT_EQ(five.rfind(""), 5u);
  EXPECT_EQ(five.find(static_cast<char const *>(nullptr), 2), 2u);
  EXPECT_EQ(VxStringView("abc").find_last_not_of("", 1), 1u);
  EXPECT_EQ(five.find_first_not_of("", 2), 2u);
  EXPECT_EQ(five.find_first_of(""), npos);
  EXPECT_EQ(VxStringView().find_last_of('a'), npos);
  EXPECT_EQ(VxStringView().rfind('a'), npos);
}

TEST(VxStringView, ChangesToTheViewItself) {
  VxStringView view("abcdef");
  view.remove_prefix(2);
  view.remove_suffix(1);
  EXPECT_EQ(view, "cde");
  VxStringView other("xy");
  view.swap(other);
  EXPECT_EQ(view, "xy");
  EXPECT_EQ(other, "cde");
  EXPECT_EQ(std::string(view.rbegin(), view.rend()), "yx");
}

// Apart from the error text the searches and the ordering behave as the standard view.
RC_GTEST_PROP(VxStringView, SearchesAgreeWithTheStandardView, ()) {
  auto const alphabet = rc::gen::elementOf(std::string("ab\0\xff", 4));
  std::string const hay = *rc::gen::container<std::string>(alphabet);
  std::string const needle = *rc::gen::resize(3, rc::gen::container<std::string>(alphabet));
  std::uint64_t const pos = *rc::gen::oneOf(rc::gen::inRange<std::uint64_t>(0, 12), rc::gen::just(npos));
  std::string_view const h(hay), n(needle);
  VxStringView const vh(hay), vn(needle);

  RC_ASSERT(vh.find(vn, pos) == h.find(n, pos));
  RC_ASSERT(vh.rfind(vn, pos) == h.rfind(n, pos));
  RC_ASSERT(vh.find_first_of(vn, pos) == h.find_first_of(n, pos));
  RC_ASSERT(vh.find_first_not_of(vn, pos) == h.find_first_not_of(n, pos));
  RC_ASSERT(vh.find_last_of(vn, pos) == h.find_last_of(n, pos));
  RC_ASSERT(vh.find_last_not_of(vn, pos) == h.find_last_not_of(n, pos));
  char const c = needle.empty() ? 'a' : needle[0];
  RC_ASSERT(vh.find(c, pos) == h.find(c, pos));
  RC_ASSERT(vh.rfind(c, pos) == h.rfind(c, pos));
  RC_ASSERT(vh.find_last_not_of(c, pos) == h.find_last_not_of(c, pos));
  RC_ASSERT(sign(vh.compare(vn)) == sign(h.compare(n)));
}
