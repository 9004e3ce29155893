#include <VantraCore/ExceptionReporter.h>
#include <VantraCore/ExceptionWithMoreInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <typeinfo>

using namespace Tarvex::VantraCore::Experimental;
using testing::ElementsAre;

namespace {

// Throws `original`, passes it through rethrowMessage("ctx") and returns what arrives.
template <class E>
std::exception_ptr enriched(E const &original) {
  try {
    try {
      throw original;
    } catch (...) {
      rethrowMessage("ctx");
    }
  } catch (...) {
    return std::current_exception();
  }
  return nullptr;
}

// The exact dynamic type and the what() text of what `enriched` returned.
template <class Expected>
void expectArrivesAs(std::exception_ptr arrived, std::string const &what) {
  try {
    std::rethrow_exception(arrived);
  } catch (Expected const &e) {
    EXPECT_EQ(typeid(e), typeid(ExceptionWithMoreInfo<Expected>)) << typeid(e).name();
    EXPECT_EQ(e.what(), what);
    EXPECT_THAT(dynamic_cast<MoreInfoForException const &>(e).getMessages(),
                ElementsAre(what.substr(5), "ctx"));
  } catch (...) {
    ADD_FAILURE() << "arrived as a different type";
  }
}

class RuntimeErrorOfTheHost : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace

TEST(AddInfo, PutsNewContextFirstUnlessAlreadyThere) {
  EXPECT_EQ(addInfo("a", "b"), "a: b");
  EXPECT_EQ(addInfo("a", "a: b"), "a: b");
  EXPECT_EQ(addInfo("a", "ab"), "ab");  // a prefix, not a whole segment
  EXPECT_EQ(addInfo("", "x"), "x");
  EXPECT_EQ(addInfo("x", ""), "x: ");
  EXPECT_EQ(addInfo("ab", "a"), "ab: a");
}

TEST(ErrorMessages, FramesOnlyWithNonEmptyParts) {
  EXPECT_EQ(errorMessages("x", "", ""), "x");
  EXPECT_EQ(errorMessages("x", "before", "after"), "before\nx\nafter");
  EXPECT_EQ(errorMessages("x", "", "after"), "x\nafter");
  EXPECT_EQ(errorMessages("", "before", ""), "before\n");
}

TEST(MoreInfoForException, KeepsEveryMessageButShowsRepeatedContextOnce) {
  MoreInfoForException info("ctx", "base");
  EXPECT_EQ(info.fullMessage(), "ctx: base");
  info.addMessage("ctx");
  info.addMessage("outer");
  EXPECT_EQ(info.fullMessage(), "outer: ctx: base");
  EXPECT_THAT(info.getMessages(), ElementsAre("base", "ctx", "ctx", "outer"));

  MoreInfoForException copy("other");
  copy = info;
  EXPECT_EQ(copy.fullMessage(), "outer: ctx: base");
  EXPECT_EQ(copy.getMessages().size(), 4u);
}

TEST(RethrowMessage, KeepsTheStandardType) {
  expectArrivesAs<std::out_of_range>(enriched(std::out_of_range("gone")), "ctx: gone");
  expectArrivesAs<std::invalid_argument>(enriched(std::invalid_argument("bad")), "ctx: bad");
  expectArrivesAs<std::logic_error>(enriched(std::logic_error("misuse")), "ctx: misuse");
  expectArrivesAs<std::range_error>(enriched(std::range_error("big")), "ctx: big");
  expectArrivesAs<std::underflow_error>(enriched(std::underflow_error("tiny")), "ctx: tiny");
  expectArrivesAs<std::regex_error>(
      enriched(std::regex_error(std::regex_constants::error_paren)),
      "ctx: " + std::string(std::regex_error(std::regex_constants::error_paren).what()));
}

TEST(RethrowMessage, SubclassesOfOtherBasesAreTestedFirst) {
  // A failure is a system_error, and bad_array_new_length a bad_alloc.
  std::ios_base::failure failure("stream");
  expectArrivesAs<std::ios_base::failure>(enriched(failure), std::string("ctx: ") + failure.what());
  std::bad_array_new_length length;
  expectArrivesAs<std::bad_array_new_length>(enriched(length), std::string("ctx: ") + length.what());
  std::bad_alloc alloc;
  expectArrivesAs<std::bad_alloc>(enriched(alloc), std::string("ctx: ") + alloc.what());
  std::bad_cast cast;
  expectArrivesAs<std::bad_cast>(enriched(cast), std::string("ctx: ") + cast.what());
}

TEST(RethrowMessage, SystemErrorKeepsItsCode) {
  auto arrived = enriched(std::system_error(std::make_error_code(std::errc::permission_denied), "open"));
  try {
    std::rethrow_exception(arrived);
  } catch (std::system_error const &e) {
    EXPECT_EQ(e.code(), std::errc::permission_denied);
    EXPECT_EQ(typeid(e), typeid(ExceptionWithMoreInfo<std::system_error>));
  }
}

TEST(RethrowMessage, UnlistedClassFallsBackToItsNearestBase) {
  auto arrived = enriched(RuntimeErrorOfTheHost("own"));
  EXPECT_THROW(std::rethrow_exception(arrived), ExceptionWithMoreInfo<std::runtime_error>);
  try {
    std::rethrow_exception(arrived);
  } catch (RuntimeErrorOfTheHost const &) {
    ADD_FAILURE() << "the host's own type survived";
  } catch (std::runtime_error const &e) {
    EXPECT_STREQ(e.what(), "ctx: own");
  }

  struct PlainException : std::exception {};
  expectArrivesAs<std::exception>(enriched(PlainException()), std::string("ctx: ") + PlainException().what());
}

TEST(RethrowMessage, EnrichesAnEnrichedExceptionInPlace) {
  try {
    try {
      try {
        throw std::domain_error("zero");
      } catch (...) {
        rethrowMessage("inner");
      }
    } catch (...) {
      rethrowMessage("outer");
    }
  } catch (ExceptionWithMoreInfo<std::domain_error> const &e) {
    EXPECT_STREQ(e.what(), "outer: inner: zero");
    EXPECT_THAT(e.getMessages(), ElementsAre("zero", "inner", "outer"));
  }
}

TEST(RethrowMessage, NonStandardExceptionPassesUnchanged) {
  try {
    try {
      throw 42;
    } catch (...) {
      rethrowMessage("ctx");
    }
  } catch (int value) {
    EXPECT_EQ(value, 42);
  }
}

TEST(GetExceptionMessage, DescribesTheExceptionInFlight) {
  try {
    throw std::runtime_error("x");
  } catch (...) {
    EXPECT_EQ(getExceptionMessage("before", "after"), "before\nx\nafter");
    EXPECT_EQ(getExceptionMessage("", ""), "x");
  }
  try {
    throw 1;
  } catch (...) {
    EXPECT_EQ(getExceptionMessage("", ""), "Unknown exception encountered.");
  }
  try {
    MoreInfoForException info("ctx", "base");
    throw info;
  } catch (...) {
    EXPECT_EQ(getExceptionMessage("", ""), "ctx: base");
  }
}

TEST(RoundingErrors, ThrowRangeErrors) {
  EXPECT_THAT([] { throwRoundError(); },
              testing::ThrowsMessage<std::range_error>(
                  "Overflow occured while rounding double precision value to 32-bit integer"));
  EXPECT_THAT([] { throwTruncateError(); },
              testing::ThrowsMessage<std::range_error>(
                  "Overflow occured while truncating double precision value to 32-bit integer"));
}

namespace {

struct HostError {
  std::string text;
};
struct EnrichedHostError {
  std::string text;
};

// Knows HostError, which is not a standard exception, and a tagged runtime_error.
class HostHandler : public ExceptionHandlerBase {
 public:
  explicit HostHandler(std::string tag) : m_tag(std::move(tag)) {}

  void rethrowWithMessage(std::string const &info) override {
    try {
      throw;
    } catch (HostError const &e) {
      throw EnrichedHostError{m_tag + ":" + addInfo(info, e.text)};
    } catch (...) {
    }
  }

  std::string describeCurrentException() override {
    try {
      throw;
    } catch (HostError const &e) {
      return m_tag + ":" + e.text;
    } catch (...) {
      return std::string();
    }
  }

 private:
  std::string m_tag;
};

std::string describeThrown(HostError const &error) {
  try {
    throw error;
  } catch (...) {
    return getExceptionMessage("", "");
  }
}

}  // namespace

TEST(ExceptionHandlers, NewestRegisteredHandlerSpeaksFirst) {
  EXPECT_EQ(describeThrown({"e"}), "Unknown exception encountered.");
  {
    HostHandler older("older");
    EXPECT_EQ(describeThrown({"e"}), "older:e");
    {
      HostHandler newer("newer");
      EXPECT_EQ(describeThrown({"e"}), "newer:e");
      HostHandler unregistered(newer);  // a copy is not registered
      EXPECT_EQ(describeThrown({"e"}), "newer:e");

      try {
        try {
          throw HostError{"e"};
        } catch (...) {
          rethrowMessage("ctx");
        }
      } catch (EnrichedHostError const &e) {
        EXPECT_EQ(e.text, "newer:ctx: e");
      }
    }
    EXPECT_EQ(describeThrown({"e"}), "older:e");

    // Standard exceptions the handler does not know still get their own text and type.
    expectArrivesAs<std::length_error>(enriched(std::length_error("long")), "ctx: long");
  }
  EXPECT_EQ(describeThrown({"e"}), "Unknown exception encountered.");
}
