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
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;  // restores standard error

namespace {

// Keeps each report as "E:" or "W:" and the framed message; counts into `total` if given, which
// outlives the reporter. Reports through one list are serialised, so the record needs no lock of
// its own as long as the reporter stands in one list and is read after the reporting threads end.
class Recorder : public ExceptionReporterBase {
 public:
  explicit Recorder(std::atomic<int> *total = nullptr) : m_total(total) {}
  ~Recorder() override { unregisterReporter(); }

  void reportException(std::string const &before, std::string const &after) override {
    record("E:" + getExceptionMessage(before, after));
  }
  void exceptionAsWarning(std::string const &before, std::string const &after) override {
    record("W:" + getExceptionMessage(before, after));
  }
  std::vector<std::string> const &reports() const { return m_reports; }
  int count() const { return static_cast<int>(m_reports.size()); }

 private:
  void record(std::string text) {
    m_reports.push_back(std::move(text));
    if (m_total) ++*m_total;
  }

  std::atomic<int> *m_total;
  std::vector<std::string> m_reports;
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
    printfException printer;  // active from construction; copies are not registered
    printfException copy(printer), moved(std::move(copy));
    CaptureStderr();
    reportError("c");
    EXPECT_EQ(GetCapturedStderr(), "Error: c\n\n");
  }
  reportError("d");
  EXPECT_THAT(first.reports(), ElementsAre("W:b"));
  EXPECT_THAT(second.reports(), ElementsAre("E:a", "E:d"));
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
  EXPECT_THAT(local.reports(), ElementsAre("E:here"));
  EXPECT_THAT(global.reports(), ElementsAre("E:there", "E:after"));
}

TEST(ReportFromInsideAReport, ThrowsInsteadOfDeadlocking) {
  struct Reentrant : Recorder {
    void reportException(std::string const &, std::string const &) override { reportError("inner"); }
  } reentrant;
  reentrant.setGlobalReporter(true);
  try {
    reportError("outer");
    ADD_FAILURE() << "the inner report went through";
  } catch (std::system_error const &e) {
    EXPECT_EQ(e.code(), std::errc::resource_deadlock_would_occur);
  }
  reentrant.setGlobalReporter(false);
  reentrant.setThreadReporter(true);
  EXPECT_THROW(reportError("outer"), std::system_error);
  reentrant.setThreadReporter(false);

  Recorder plain;  // the locks were given back
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
    registered.set_value();
    destroyed.get_future().wait();
    reportError("after");
  });
  registered.get_future().wait();
  local.reset();
  destroyed.set_value();
  worker.join();
  EXPECT_THAT(global.reports(), ElementsAre("E:after"));
}

TEST(ThreadReporter, ThreadExitCutsTheLinks) {
  Recorder global;
  global.setGlobalReporter(true);
  auto local = std::make_unique<Recorder>();
  std::thread([&] { local->setThreadReporter(true); }).join();
  local.reset();  // must not reach the ended thread's list
  std::thread([] {
    thread_local Recorder endsAfterTheList;
    endsAfterTheList.setThreadReporter(true);
    reportError("late");
  }).join();
  EXPECT_EQ(global.count(), 0);
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
  EXPECT_EQ(elsewhere + global.count(), threads * reportsPerThread);
}
