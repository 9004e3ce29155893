// What threads share in the library, each case on 8 threads with bounded loops. Under ThreadSanitizer
// (make test-tsan) these are the race checks; in the plain build they check the outcomes.
#include <VantraCore/ExceptionReporter.h>
#include <VantraCore/ExceptionWithMoreInfo.h>
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/InternedString.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/PropertyPath.h>
#include <VantraCore/ScratchDirectory.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <VantraCore/detail/VectorVariantData.h>

#include <gtest/gtest.h>

#include "files/TempDirectory.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;
using namespace Tarvex::VantraCore::Experimental;

namespace {

constexpr int threadCount = 8;

// Runs body(t) on threadCount threads that start together.
void onThreads(std::function<void(int)> const &body) {
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < threadCount; ++t)
    threads.emplace_back([&, t] {
      ready.fetch_add(1);
      while (ready.load() < threadCount)
        std::this_thread::yield();
      body(t);
    });
  for (std::thread &thread : threads)
    thread.join();
}

VxString const &textAt(IVariantData const *holder, int i) {
  return static_cast<VxString const *>(holder->constStoredData())[i];
}

// Every thread copies and releases the shared holder and its strings; every fourth round it writes
// through ensureUnique, which must leave the shared holder as it was.
void shareAndWrite(IVariantData *shared, int elements) {
  std::vector<VxString> const original(&textAt(shared, 0), &textAt(shared, 0) + elements);
  onThreads([&](int t) {
    for (int round = 0; round < 200; ++round) {
      shared->copy();
      IVariantData *mine = shared;
      VxString kept = textAt(mine, round % elements);
      if (round % 4 == t % 4) {
        mine = mine->ensureUnique();
        static_cast<VxString *>(mine->mutableStoredData())[round % elements] = VxString("t") + kept;
        EXPECT_EQ(textAt(mine, round % elements), VxString("t") + original[round % elements]);
      }
      EXPECT_EQ(kept, original[round % elements]);
      mine->destruct();
    }
  });
  for (int i = 0; i < elements; ++i)
    EXPECT_EQ(textAt(shared, i), original[i]);
  IVariantData *const last = shared->ensureUnique();
  EXPECT_EQ(last, shared) << "a thread kept a reference";
  last->destruct();
}

}  // namespace

TEST(Concurrency, HoldersAndStringsSharedThroughCopiesAndUniqueWriters) {
  shareAndWrite(constructVariantScalar<VxString>(nullptr, 0, VxString("scalar")), 1);
  VxString const texts[] = {VxString("a"), VxString("bb"), VxString("ccc")};
  shareAndWrite(constructVariantVectorWithDataWithDimsUnresolved<VxString>(texts, 3, {}, rowMajor), 3);
}

TEST(Concurrency, InterningSameAndDifferentNames) {
  constexpr int names = 300;
  std::vector<std::vector<char const *>> shared(threadCount), own(threadCount);
  onThreads([&](int t) {
    shared[t].resize(names);
    for (int i = 0; i < names; ++i) {
      int const k = (i * 7 + t) % names;  // each thread meets the shared names in its own order
      shared[t][k] = InternedString(("shared " + std::to_string(k)).c_str()).data();
      own[t].push_back(InternedString(("own " + std::to_string(t) + " " + std::to_string(i)).c_str()).data());
    }
  });
  std::set<char const *> addresses(shared[0].begin(), shared[0].end());
  for (int t = 0; t < threadCount; ++t) {
    EXPECT_EQ(shared[t], shared[0]);
    addresses.insert(own[t].begin(), own[t].end());
  }
  EXPECT_EQ(addresses.size(), std::size_t(names * (threadCount + 1)));
}

namespace {

// Counts with a plain int: the library's lock around a report is what keeps it race-free.
class CountingReporter : public ExceptionReporterBase {
 public:
  ~CountingReporter() override { unregisterReporter(); }
  void reportException(std::string const &, std::string const &) override { ++errors; }
  void exceptionAsWarning(std::string const &, std::string const &) override { ++warnings; }
  int errors = 0;
  int warnings = 0;
};

struct HostError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class HostHandler : public ExceptionHandlerBase {
 public:
  void rethrowWithMessage(std::string const &) override {}
  std::string describeCurrentException() override {
    try {
      throw;
    } catch (HostError const &) {
      return "host error";
    } catch (...) {
      return "";
    }
  }
};

}  // namespace

TEST(Concurrency, ReportersAndHandlersAcrossThreads) {
  CountingReporter global;
  global.setGlobalReporter(true);
  std::vector<CountingReporter> churn(threadCount), mine(threadCount);
  std::vector<std::unique_ptr<CountingReporter>> foreign(threadCount);
  std::vector<std::unique_ptr<HostHandler>> handlers(threadCount);
  for (int t = 0; t < threadCount; ++t) {
    foreign[t] = std::make_unique<CountingReporter>();
    handlers[t] = std::make_unique<HostHandler>();
  }
  std::vector<std::promise<void>> registered(threadCount), destroyed(threadCount);
  std::thread destroyer([&] {
    // Each thread's foreign reporter ends here, on another thread, while still in that thread's list.
    for (int t = 0; t < threadCount; ++t) {
      registered[t].get_future().wait();
      EXPECT_EQ(foreign[t]->errors, 1);
      foreign[t].reset();
      destroyed[t].set_value();
    }
  });
  onThreads([&](int t) {
    handlers[t] = std::make_unique<HostHandler>();  // replaces one made on the main thread
    churn[t].setGlobalReporter(true);
    for (int i = 0; i < 50; ++i)
      reportWarning("to whichever global reporter is newest");
    churn[t].setGlobalReporter(false);
    mine[t].setThreadReporter(true);
    for (int i = 0; i < 50; ++i)
      reportError("to this thread's reporter");
    foreign[t]->setThreadReporter(true);
    reportError("to the foreign reporter");
    registered[t].set_value();
    destroyed[t].get_future().wait();
    reportError("to this thread's reporter again");
    mine[t].setThreadReporter(false);
  });
  destroyer.join();

  int warnings = global.warnings;
  for (int t = 0; t < threadCount; ++t) {
    warnings += churn[t].warnings;
    EXPECT_EQ(mine[t].errors, 51);
  }
  EXPECT_EQ(warnings, threadCount * 50);
  auto const hostErrorMessage = [] {
    try {
      throw HostError("plain text");
    } catch (...) {
      return getExceptionMessage("", "");
    }
  };
  EXPECT_EQ(hostErrorMessage(), "host error");
  handlers.clear();
  EXPECT_EQ(hostErrorMessage(), "plain text");
}

TEST(Concurrency, ScratchDirectoriesFromSeveralThreads) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  setScratchDirectoryAppName("concurrency", "");
  std::vector<std::vector<VxString>> made(threadCount);
  // Each name belongs to one thread: the uniqueness loop is not meant for one name on two threads.
  onThreads([&](int t) {
    for (int i = 0; i < 5; ++i) {
      made[t].push_back(makeUniqueScratchDirectory("a" + std::to_string(t)).generic());
      made[t].push_back(makeUniqueScratchDirectory("b" + std::to_string(t)).generic());
    }
  });
  std::set<std::string> distinct;
  for (auto const &paths : made)
    for (VxString const &path : paths) {
      EXPECT_TRUE(std::filesystem::is_directory(path.toStdString())) << path.toStdString();
      distinct.insert(path.toStdString());
    }
  EXPECT_EQ(distinct.size(), std::size_t(threadCount * 10));
}

// A frozen tree is shared without locks: every thread copies handles, walks, resolves paths, writes
// JSON and thaws, while the counts of the shared nodes move on all threads at once.
TEST(Concurrency, FrozenTreeReadFromManyThreads) {
  PropertyNode channel;
  channel.set("samples", VxVariant(std::vector<std::int32_t>{1, 2, 3, 4}, {2, 2}));
  channel.set("unit", VxVariant(VxString("mV")));
  PropertyList channels;
  for (int i = 0; i < 4; ++i)
    channels.push_back(channel);
  PropertyNode root;
  root.set("name", VxVariant(VxString("rig")));
  root.set("channels", PropertyNode(std::move(channels)));
  FPropertyNode const frozen(root);
  VxString const expectedJson = JsonFormatter::serialize(frozen);

  onThreads([&](int) {
    for (int round = 0; round < 100; ++round) {
      FPropertyNode const mine = frozen;
      std::int64_t sum = 0;
      for (FPropertyNode const &entry : mine.map().at("channels").list())
        for (std::int32_t x : entry.map().at("samples").value().asIterable<std::int32_t>())
          sum += x;
      EXPECT_EQ(sum, 40);
      EXPECT_EQ(resolvePropertyPath(mine, PropertyPath({"channels", 3, "unit"})).value().get<VxString>(),
                VxString("mV"));
      if (round % 10 == 0) {
        EXPECT_EQ(JsonFormatter::serialize(mine), expectedJson);
        EXPECT_EQ(mine.thaw(), root);
      }
    }
  });
}

// Large documents read on several threads at once, each parse with number parsers of its own beside
// its walk: every value lands where it belongs.
TEST(Concurrency, LargeDocumentsParsedAtOnce) {
  std::vector<double> samples(300000);
  for (std::size_t i = 0; i < samples.size(); ++i)
    samples[i] = static_cast<double>(i) / 7.0 - 1000.0;
  PropertyNode root;
  root.set("samples", VxVariant(samples));
  VxString const text = JsonFormatter::serialize(root, -1, JsonNumberText::shortestRoundTrip);
  // Large enough to be searched in slices by a helper that then parses numbers, as others do.
  ASSERT_GT(text.length(), std::uint64_t(4) << 20);
  onThreads([&](int t) {
    if (t % 2 == 1) return;  // four readers, each with its own helpers
    for (int round = 0; round < 3; ++round) {
      PropertyNode const read = JsonFormatter::deserializePropertyNode(text);
      EXPECT_TRUE(read.map().at(InternedString("samples")).value() == VxVariant(samples));
    }
  });
}
