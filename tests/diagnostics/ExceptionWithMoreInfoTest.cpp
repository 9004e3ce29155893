#include <VantraCore/ExceptionReporter.h>
#include <VantraCore/ExceptionWithMoreInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <typeinfo>

using namespace Tarvex::VantraCore::Experimental;
using testing::ElementsAre;
using testing::Throws;

namespace {

// Throws `thrown` up through one rethrowMessage for each context, innermost first.
[[noreturn]] void throwThrough(std::exception_ptr thrown, std::vector<std::string> const &contexts) {
  for (std::string const &context : contexts) {
    try {
      try {
        std::rethrow_exception(thrown);
      } catch (...) {
        rethrowMessage(context);
      }
    } catch (...) {
      thrown = std::current_exception();
    }
  }
  std::rethrow_exception(thrown);
}

std::string messageOf(std::exception_ptr const &thrown, std::vector<std::string> const &contexts = {}) {
  try {
    throwThrough(thrown, contexts);
  } catch (...) {
    return getExceptionMessage("", "");
  }
}

// `original` must arrive as exactly ExceptionWithMoreInfo<Expected> (no class derives from it),
// with the context in front of its own text.
template <class Expected, class E>
void expectEnrichedAs(E const &original) {
  EXPECT_THAT([&] { throwThrough(std::make_exception_ptr(original), {"ctx"}); },
              throws<ExceptionWithMoreInfo<Expected>>("ctx: " + std::string(original.what())))
      << typeid(Expected).name();
}

}  // namespace

TEST(AddInfo, PutsNewContextFirstAndShowsRepeatedContextOnce) {
  EXPECT_EQ(addInfo("a", "b"), "a: b");
  EXPECT_EQ(addInfo("a", "a: b"), "a: b");
  EXPECT_EQ(addInfo("a", "ab"), "ab");  // a prefix, not a whole segment
  EXPECT_EQ(addInfo("", "x"), "x");
  EXPECT_EQ(addInfo("x", ""), "x: ");
  EXPECT_EQ(errorMessages("x", "", "after"), "x\nafter");  // both sides framed: the default reporter test

  // Every message is kept, but repeated context shows once.
  MoreInfoForException info("ctx", "base");
  info.addMessage("ctx");
  info.addMessage("outer");
  EXPECT_EQ(info.fullMessage(), "outer: ctx: base");
  EXPECT_THAT(info.getMessages(), ElementsAre("base", "ctx", "ctx", "outer"));
}

TEST(RethrowMessage, KeepsTheMostDerivedStandardType) {
  struct HostRuntimeError : std::runtime_error {
    using std::runtime_error::runtime_error;
  };
  struct HostException : std::exception {};
  // Each standard class stays itself: a failure is also a system_error, bad_array_new_length a bad_alloc.
  auto const asItself = [](auto const &...original) {
    (expectEnrichedAs<std::decay_t<decltype(original)>>(original), ...);
  };
  asItself(std::out_of_range("gone"), std::invalid_argument("bad"), std::logic_error("misuse"),
           std::underflow_error("tiny"), std::regex_error(std::regex_constants::error_paren),
           std::ios_base::failure("stream"), std::bad_array_new_length(), std::bad_alloc(), std::bad_cast());
  // The host's own classes become their nearest listed base.
  expectEnrichedAs<std::runtime_error>(HostRuntimeError("own"));
  expectEnrichedAs<std::exception>(HostException());

  auto const denied = std::system_error(std::make_error_code(std::errc::permission_denied), "open");
  EXPECT_THAT([&] { throwThrough(std::make_exception_ptr(denied), {"ctx"}); },
              Throws<std::system_error>(testing::Property(&std::system_error::code, denied.code())));
}

TEST(RethrowMessage, EnrichesAnEnrichedExceptionInPlaceAndLeavesOthersAlone) {
  auto const zero = std::make_exception_ptr(std::domain_error("zero"));
  EXPECT_EQ(messageOf(zero, {"inner"}), "inner: zero");
  try {
    throwThrough(zero, {"inner", "outer"});
  } catch (ExceptionWithMoreInfo<std::domain_error> const &e) {  // the library's own type, in the host
    EXPECT_STREQ(e.what(), "outer: inner: zero");
    EXPECT_THAT(e.getMessages(), ElementsAre("zero", "inner", "outer"));
  }
  EXPECT_THAT([] { throwThrough(std::make_exception_ptr(42), {"ctx"}); }, Throws<int>());
}

TEST(RoundingErrors, ThrowRangeErrors) {
  EXPECT_THAT(
      [] { throwRoundError(); },
      throws<std::range_error>("Overflow occured while rounding double precision value to 32-bit integer"));
  EXPECT_THAT(
      [] { throwTruncateError(); },
      throws<std::range_error>("Overflow occured while truncating double precision value to 32-bit integer"));
}

namespace {

struct HostError {
  std::string text;
};

// Knows HostError, which is no standard exception, and tags what it gives with its own name.
struct HostHandler : ExceptionHandlerBase {
  explicit HostHandler(std::string tag) : tag(std::move(tag)) {}
  void rethrowWithMessage(std::string const &info) override {
    if (HostError const *e = inFlight()) throw HostError{tag + ":" + addInfo(info, e->text)};
  }
  std::string describeCurrentException() override {
    HostError const *e = inFlight();
    return e ? tag + ":" + e->text : std::string();
  }
  static HostError const *inFlight() {
    try {
      throw;
    } catch (HostError const &e) {
      return &e;  // alive as long as the caller's handler
    } catch (...) {
      return nullptr;
    }
  }

  std::string tag;
};

}  // namespace

TEST(ExceptionHandlers, NewestRegisteredHandlerSpeaksFirst) {
  auto const hostError = std::make_exception_ptr(HostError{"e"});
  {
    HostHandler older("older");
    {
      HostHandler newer("newer");
      HostHandler unregistered(older);  // copies are not registered
      EXPECT_EQ(messageOf(hostError), "newer:e");
      EXPECT_THAT([&] { throwThrough(hostError, {"ctx"}); },
                  Throws<HostError>(testing::Field(&HostError::text, "newer:ctx: e")));
      // What no handler knows keeps its own text and type.
      expectEnrichedAs<std::length_error>(std::length_error("long"));
    }
    EXPECT_EQ(messageOf(hostError), "older:e");
  }
  EXPECT_EQ(messageOf(hostError), "Unknown exception encountered.");
}
