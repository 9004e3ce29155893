#include <VantraCore/ExceptionReporter.h>
#include <VantraCore/ExceptionWithMoreInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>

using namespace Tarvex::VantraCore::Experimental;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;  // restores standard error

namespace {

// Keeps each report as "E:" or "W:" and the framed message, and counts it into `total` if given.
// Reports through one list are serialised, so the record needs no lock as long as the reporter
// stands in one list and is read after the reporting threads end.
struct Recorder : ExceptionReporterBase {
  explicit Recorder(std::atomic<int> *total = nullptr) : total(total) {}
  ~Recorder() override { unregisterReporter(); }
  void reportException(std::string const &b, std::string const &a) override { record("E:", b, a); }
  void exceptionAsWarning(std::string const &b, std::string const &a) override { record("W:", b, a); }
  void record(char const *kind, std::string const &before, std::string const &after) {
    reports.push_back(kind + getExceptionMessage(before, after));
    if (total) ++*total;
  }

  std::atomic<int> *total;
  std::vector<std::string> reports;
};

}  // namespace

TEST(DefaultReporter, WritesErrorsAndWarningsToStandardError) {
  CaptureStderr();
  reportError("x");
  try {
    throw std::out_of_range("gone");
  } catch (...) {
    exceptionAsWarning("before", "after");
  }
  EXPECT_EQ(GetCapturedStderr(), "Error: x\n\nWarning: before\ngone\nafter\n\n");
}

TEST(GlobalReporter, LatestRegistrationIsActive) {
  Recorder first, second;
  first.setGlobalReporter(true);
  second.setGlobalReporter(true);
  reportError("a");
  first.setGlobalReporter(true);  // moves it to the end
  reportWarning("b");
  first.setGlobalReporter(false);
  {
    printfException printer;  // active from construction
    CaptureStderr();
    reportError("c");
    EXPECT_EQ(GetCapturedStderr(), "Error: c\n\n");
  }
  reportError("d");
  EXPECT_THAT(first.reports, ElementsAre("W:b"));
  EXPECT_THAT(second.reports, ElementsAre("E:a", "E:d"));
}

TEST(ThreadReporter, TakesPrecedenceOnItsOwnThreadOnly) {
  Recorder global, local;
  global.setGlobalReporter(true);
  local.setThreadReporter(true);
  local.setThreadReporter(true);  // no second entry
  reportError("here");
  std::thread([] { reportError("there"); }).join();
  local.setThreadReporter(false);
  reportError("after");
  EXPECT_THAT(local.reports, ElementsAre("E:here"));
  EXPECT_THAT(global.reports, ElementsAre("E:there", "E:after"));
}

TEST(ReportFromInsideAReport, ThrowsInsteadOfDeadlocking) {
  struct Reentrant : Recorder {
    void reportException(std::string const &, std::string const &) override { reportError("inner"); }
  } reentrant;
  reentrant.setGlobalReporter(true);
  EXPECT_THAT([] { reportError("outer"); },
              testing::Throws<std::system_error>(testing::Property(
                  &std::system_error::code, std::make_error_code(std::errc::resource_deadlock_would_occur))));
  reentrant.setGlobalReporter(false);
  reentrant.setThreadReporter(true);
  EXPECT_THROW(reportError("outer"), std::system_error);
  reentrant.setThreadReporter(false);

  Recorder plain;  // the locks were given back
  plain.setGlobalReporter(true);
  reportWarning("fine");
  EXPECT_THAT(plain.reports, ElementsAre("W:fine"));
}

// Either end of a thread registration may go first: a reporter destroyed on another thread leaves
// the thread's list, and a thread's exit cuts the links of the reporters that outlive it.
TEST(ThreadReporter, EitherEndMayGoFirst) {
  Recorder global;
  global.setGlobalReporter(true);
  auto survivor = std::make_unique<Recorder>(), doomed = std::make_unique<Recorder>();
  std::promise<void> registered, destroyed;
  std::thread worker([&] {
    thread_local Recorder madeBeforeTheList;  // so it ends after the list
    madeBeforeTheList.setThreadReporter(true);
    survivor->setThreadReporter(true);
    doomed->setThreadReporter(true);
    registered.set_value();
    destroyed.get_future().wait();
    reportError("after");
  });
  registered.get_future().wait();
  doomed.reset();
  destroyed.set_value();
  worker.join();
  EXPECT_THAT(survivor->reports, ElementsAre("E:after"));
  survivor.reset();  // must not reach the ended thread's list
  EXPECT_THAT(global.reports, IsEmpty());
}

TEST(Reporters, ReportsRaceWithRegistrationAndDestruction) {
  Recorder global;
  global.setGlobalReporter(true);
  constexpr int threads = 3, reportsPerThread = 300;
  std::atomic<int> elsewhere{0};
  std::vector<std::unique_ptr<Recorder>> doomed;
  std::vector<std::promise<void>> registered(threads);
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t) {
    doomed.push_back(std::make_unique<Recorder>(&elsewhere));
    workers.emplace_back([&, t, reporter = doomed.back().get()] {
      Recorder own(&elsewhere);
      reporter->setThreadReporter(true);
      registered[t].set_value();
      for (int i = 0; i < reportsPerThread; ++i) {
        own.setThreadReporter(i % 3 == 0);
        reportWarning("w");
      }
    });
  }
  for (auto &promise : registered)
    promise.get_future().wait();
  for (int i = 0; i < 100; ++i) {
    Recorder transient(&elsewhere);
    transient.setGlobalReporter(true);
    global.setGlobalReporter(true);
  }
  doomed.clear();  // while the workers may be reporting through them
  for (auto &worker : workers)
    worker.join();
  EXPECT_EQ(elsewhere + static_cast<int>(global.reports.size()), threads * reportsPerThread);
}
