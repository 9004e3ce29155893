#include <VantraCore/VxStringView.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>
#include <support/Throws.h>

#include <functional>
#include <string_view>

using Tarvex::VantraCore::VxStringLiteral;
using Tarvex::VantraCore::VxStringView;

namespace {
constexpr auto npos = VxStringView::npos;
int sign(int value) {
  return (value > 0) - (value < 0);
}
}  // namespace

TEST(VxStringView, NullEmbeddedNulAndLiteral) {
  VxStringView const null(static_cast<char const *>(nullptr));
  EXPECT_EQ(null.data(), nullptr);
  EXPECT_EQ(null.find(""), 0u);
  std::string const embedded("a\0b", 3);
  EXPECT_EQ(std::string(VxStringView(embedded)), embedded);
  EXPECT_EQ(std::string(VxStringLiteral("a\0b", 3)), "a");  // the literal measures again
  EXPECT_EQ(VxStringView("abc").compare("abd"), -1);
  EXPECT_GT(VxStringView("\xff").compare("a"), 0);  // unsigned bytes
}

TEST(VxStringView, RangeChecksThrowAndLeaveTheViewAlone) {
  char const text[] = "hello";
  VxStringView const view(text, 5);
  EXPECT_TRUE(view.substr(5).empty());
  EXPECT_EQ(view.substr(1, 3).data(), text + 1);
  char out[4] = "xxx";
  EXPECT_EQ(view.copy(out, 2, 3), 2u);
  EXPECT_STREQ(out, "lox");  // no NUL appended
  EXPECT_EQ(view.compare(1, 2, VxStringView("xelx"), 1, 2), 0);
  std::function<void()> const outOfRange[] = {
      [&] { view.at(5); }, [&] { view.substr(6); }, [&] { view.copy(out, 1, 6); },
      [&] { view.compare(9, 1, VxStringView("ab"), 3, 1); }};  // the other side is checked first
  for (auto const &call : outOfRange)
    EXPECT_THAT(call, throws<std::out_of_range>("VxStringView range error"));
}

// Apart from the error text, searches and ordering behave as the standard view, edge cases included.
RC_GTEST_PROP(VxStringView, SearchesAgreeWithTheStandardView, ()) {
  auto const alphabet = rc::gen::elementOf(std::string("ab\0\xff", 4));
  std::string const hay = *rc::gen::container<std::string>(alphabet);
  std::string const needle = *rc::gen::resize(3, rc::gen::container<std::string>(alphabet));
  std::uint64_t const pos = *rc::gen::oneOf(rc::gen::inRange<std::uint64_t>(0, 12), rc::gen::just(npos));
  std::string_view const h(hay), n(needle);
  VxStringView const vh(hay), vn(needle);
  char const c = needle.empty() ? 'a' : needle[0];
  RC_ASSERT(vh.find(vn, pos) == h.find(n, pos));
  RC_ASSERT(vh.rfind(vn, pos) == h.rfind(n, pos));
  RC_ASSERT(vh.find_first_of(vn, pos) == h.find_first_of(n, pos));
  RC_ASSERT(vh.find_first_not_of(vn, pos) == h.find_first_not_of(n, pos));
  RC_ASSERT(vh.find_last_of(vn, pos) == h.find_last_of(n, pos));
  RC_ASSERT(vh.find_last_not_of(vn, pos) == h.find_last_not_of(n, pos));
  RC_ASSERT(vh.find(c, pos) == h.find(c, pos));
  RC_ASSERT(vh.rfind(c, pos) == h.rfind(c, pos));
  RC_ASSERT(sign(vh.compare(vn)) == sign(h.compare(n)));
}
