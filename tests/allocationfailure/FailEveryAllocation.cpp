// The one source of the program that replaces operator new; the harness and the running total.
#include "FailEveryAllocation.h"

#include <support/CountingAllocator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <string>

namespace {

std::uint64_t totalFailurePoints = 0;

struct Total : testing::Environment {
  void TearDown() override {
    std::printf("[ failures ] %llu failure points tried in all\n",
                static_cast<unsigned long long>(totalFailurePoints));
  }
};
testing::Environment *const total = testing::AddGlobalTestEnvironment(new Total);

// Runs the operation with its `point`-th allocation failing (none when 0); records what it threw, if
// anything, and whether the failure was injected at all.
struct Run {
  bool threw = false, badAlloc = false, injected = false;
  std::string message;
};

void runOnce(Run &run, std::function<void()> const &operation, std::uint64_t point) {
  CountingAllocator::injected = false;
  CountingAllocator::failCountdown = point;
  try {
    operation();
  } catch (std::bad_alloc const &) {
    run.threw = run.badAlloc = true;
  } catch (std::exception const &error) {
    CountingAllocator::failCountdown = 0;
    run.threw = true;
    run.message.assign(error.what(), std::min<std::size_t>(std::strlen(error.what()), run.message.capacity()));
  } catch (...) {
    CountingAllocator::failCountdown = 0;
    run.threw = true;
    run.message = "an exception of no standard class";
  }
  CountingAllocator::failCountdown = 0;
  run.injected = CountingAllocator::injected;
}

}  // namespace

std::uint64_t failEveryAllocation(char const *name, std::function<void()> const &operation,
                                  std::function<void()> const &unchanged, Keeps keeps,
                                  std::function<bool(char const *)> const &accepted) {
  Run plain;
  runOnce(plain, operation, 0);
  EXPECT_FALSE(plain.threw) << name << " fails with no failure injected: " << plain.message;
  std::uint64_t point = 1;
  for (;; ++point) {
    // Made before counting, with room for any message, so that the run's record allocates nothing.
    Run run;
    run.message.reserve(1000);
    CountingAllocator::Counter counter;
    runOnce(run, operation, point);
    // Counted before any failed expectation, whose message allocates too.
    bool const balanced = counter.allocations() == counter.releases();
    if (run.threw) {
      EXPECT_TRUE(run.injected) << name << " fails with no failure injected: " << run.message;
      EXPECT_TRUE(balanced) << name << " leaks at failure point " << point;
      EXPECT_TRUE(run.badAlloc || (accepted && accepted(run.message.c_str())))
          << name << " at failure point " << point << " threw " << run.message;
      if (unchanged) unchanged();
    } else {
      // A failed allocation may be survived (a nothrow buffer that sorting can do without, a lookup
      // that falls back to parsing); the operation's own checks then judge the result.
      EXPECT_TRUE(balanced || keeps == Keeps::cached) << name << " keeps memory after failure point " << point;
    }
    if (!run.injected) break;
    if (testing::Test::HasFailure()) break;
  }
  std::uint64_t const tried = point - 1;
  totalFailurePoints += tried;
  std::printf("[ failures ] %s: %llu failure points\n", name, static_cast<unsigned long long>(tried));
  return tried;
}

