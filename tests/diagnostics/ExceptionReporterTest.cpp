#include "ReporterTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>

using namespace Tarvex::VantraCore::Experimental;
using testing::ElementsAre;

namespace {

// Runs `work` on a thread of its own and waits for it to end.
template <class Work>
void onOtherThread(Work work) {
  std::thread(work).join();
}

void reportFailure(std::string const &before, std::string const &after) {
  try {
    throw std::runtime_error("failure");
  } catch (...) {
    reportException(before, after);
  }
}

}  // namespace

TEST(DefaultReporter, WritesErrorsAndWarningsToStandardError) {
  StderrCapture capture;
  reportError("x");
  reportWarning("careful");
  reportFailure("before", "after");
  EXPECT_EQ(capture.text(), "Error: x\n\nWarning: careful\n\nError: before\nfailure\nafter\n\n");
}

TEST(GlobalReporter, LatestRegistrationIsActive) {
  Recorder first, second;
  first.setGlobalReporter(true);
  second.setGlobalReporter(true);
  reportError("a");
  first.setGlobalReporter(true);  // moves it to the end
  reportWarning("b");
  first.setGlobalReporter(false);
  reportFailure("", "");
  EXPECT_THAT(first.reports(), ElementsAre("W:b"));
  EXPECT_THAT(second.reports(), ElementsAre("E:a", "E:failure"));
}

TEST(GlobalReporter, ClientPrintfExceptionTakesOverAndCopiesStayUnregistered) {
  Recorder recorder;
  recorder.setGlobalReporter(true);
  {
    printfException printer;  // registered on construction
    printfException copy(printer), moved(std::move(copy));
    StderrCapture capture;
    reportError("to printer");
    EXPECT_EQ(capture.text(), "Error: to printer\n\n");
  }
  reportError("back");
  EXPECT_THAT(recorder.reports(), ElementsAre("E:back"));
}

TEST(ThreadReporter, TakesPrecedenceOnItsOwnThreadOnly) {
  Recorder global, local;
  global.setGlobalReporter(true);
  local.setThreadReporter(true);
  local.setThreadReporter(true);  // no second entry
  reportError("here");
  onOtherThread([] { reportError("there"); });
  local.setThreadReporter(false);
  reportError("after");
  EXPECT_THAT(local.reports(), ElementsAre("E:here"));
  EXPECT_THAT(global.reports(), ElementsAre("E:there", "E:after"));
}

TEST(ThreadReporter, CopyAndAssignmentLeaveRegistrationsAlone) {
  Recorder global, local;
  global.setGlobalReporter(true);
  local.setThreadReporter(true);
  {
    Recorder copy(local);
    reportError("one");
    copy = local;
  }
  EXPECT_THAT(local.reports(), ElementsAre("E:one"));
  Recorder other;
  local = other;  // takes the other's (empty) record but stays registered on this thread
  reportError("two");
  local.setThreadReporter(false);
  EXPECT_THAT(local.reports(), ElementsAre("E:two"));
  EXPECT_TRUE(global.reports().empty());
}

TEST(ReportFromInsideAReport, ThrowsInsteadOfDeadlocking) {
  class Reentrant : public Recorder {
   public:
    void reportException(std::string const &, std::string const &) override { reportError("inner"); }
  };
  Reentrant reentrant;
  reentrant.setGlobalReporter(true);
  try {
    reportError("outer");
    ADD_FAILURE() << "the inner report went through";
  } catch (std::system_error const &e) {
    EXPECT_EQ(e.code(), std::errc::resource_deadlock_would_occur);
  }
  reentrant.setGlobalReporter(false);

  // The lock was given back: the same reporter on the thread list fails the same way, once.
  reentrant.setThreadReporter(true);
  EXPECT_THROW(reportError("outer"), std::system_error);
  reentrant.setThreadReporter(false);
  Recorder plain;
  plain.setGlobalReporter(true);
  reportWarning("fine");
  EXPECT_THAT(plain.reports(), ElementsAre("W:fine"));
}

TEST(ThreadReporter, DestroyedElsewhereLeavesTheThreadList) {
  Recorder global;
  global.setGlobalReporter(true);
  auto local = std::make_unique<Recorder>();
  std::promise<void> registered, destroyed;
  std::thread worker([&] {
    local->setThreadReporter(true);
    reportError("first");
    registered.set_value();
    destroyed.get_future().wait();
    reportError("second");
  });
  registered.get_future().wait();
  EXPECT_THAT(local->reports(), ElementsAre("E:first"));
  local.reset();
  destroyed.set_value();
  worker.join();
  EXPECT_THAT(global.reports(), ElementsAre("E:second"));
}

TEST(ThreadReporter, ThreadExitCutsTheLinks) {
  Recorder global;
  global.setGlobalReporter(true);
  auto local = std::make_unique<Recorder>();
  onOtherThread([&] { local->setThreadReporter(true); });
  // The thread's list is gone; destroying the reporter must not reach it.
  local.reset();

  // A reporter that lives in thread storage may end after the thread's list.
  onOtherThread([] {
    thread_local Recorder lateReporter;
    lateReporter.setThreadReporter(true);
    reportError("late");
    EXPECT_EQ(lateReporter.count(), 1u);
  });
  EXPECT_TRUE(global.reports().empty());
}

TEST(Reporters, ConcurrentReportsAndRegistrationChanges) {
  Recorder global;
  global.setGlobalReporter(true);
  constexpr int threads = 4, reportsPerThread = 200;
  std::atomic<int> ownReports{0};
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t) {
    workers.emplace_back([&, t] {
      Recorder own;
      for (int i = 0; i < reportsPerThread; ++i) {
        own.setThreadReporter(i % 2 == t % 2);
        reportWarning("w");
      }
      ownReports += static_cast<int>(own.count());
    });
  }
  // Meanwhile the global list changes under the reports.
  int transientReports = 0;
  for (int i = 0; i < 200; ++i) {
    Recorder transient;
    transient.setGlobalReporter(true);
    global.setGlobalReporter(true);
    transient.setGlobalReporter(false);  // no report reaches it after this
    transientReports += static_cast<int>(transient.count());
  }
  for (auto &worker : workers)
    worker.join();
  EXPECT_EQ(ownReports + transientReports + static_cast<int>(global.count()), threads * reportsPerThread);
}

TEST(Reporters, DestroyedWhileAnotherThreadReportsThroughIt) {
  // Counts outside itself, so that its reports can be told after it is gone.
  class Counting : public ExceptionReporterBase {
   public:
    explicit Counting(std::atomic<int> &count) : m_count(count) {}
    ~Counting() override { unregisterReporter(); }
    void reportException(std::string const &, std::string const &) override { ++m_count; }
    void exceptionAsWarning(std::string const &, std::string const &) override { ++m_count; }

   private:
    std::atomic<int> &m_count;
  };
  Recorder global;
  global.setGlobalReporter(true);
  std::atomic<int> localReports{0}, reports{0};
  auto local = std::make_unique<Counting>(localReports);
  std::promise<void> registered;
  std::atomic<bool> stop{false};
  std::thread worker([&] {
    local->setThreadReporter(true);
    registered.set_value();
    while (!stop) {
      reportError("e");
      ++reports;
    }
  });
  registered.get_future().wait();
  while (localReports < 10)
    std::this_thread::yield();
  local.reset();
  while (global.count() < 10)
    std::this_thread::yield();
  stop = true;
  worker.join();
  EXPECT_EQ(reports, localReports + static_cast<int>(global.count()));
}

namespace {

struct HostError {};

class HostHandler : public ExceptionHandlerBase {
 public:
  void rethrowWithMessage(std::string const &) override {}
  std::string describeCurrentException() override {
    try {
      throw;
    } catch (HostError const &) {
      return "host error";
    } catch (...) {
      return std::string();
    }
  }
};

}  // namespace

TEST(DefaultReporter, AsksTheHandlersForUnknownExceptions) {
  HostHandler handler;
  StderrCapture capture;
  try {
    throw HostError();
  } catch (...) {
    exceptionAsWarning("", "while loading");
  }
  EXPECT_EQ(capture.text(), "Warning: host error\nwhile loading\n\n");
}

TEST(LibraryExceptions, CatchableByTheirTypesInTheHost) {
  try {
    try {
      throw std::out_of_range("key");
    } catch (...) {
      rethrowMessage("map");
    }
  } catch (ExceptionWithMoreInfo<std::out_of_range> &e) {
    EXPECT_STREQ(e.what(), "map: key");
    MoreInfoForException &info = e;
    EXPECT_EQ(typeid(info), typeid(ExceptionWithMoreInfo<std::out_of_range>));
  }
  try {
    throwRoundError();
  } catch (std::range_error const &e) {
    EXPECT_EQ(typeid(e), typeid(std::range_error));
  }
}
