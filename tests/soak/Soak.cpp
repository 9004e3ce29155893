// Mixed operations from eight threads for a fixed time, for the sanitizer builds to watch: names
// interned, variants and strings shared through common slots and released on other threads, one
// frozen tree read everywhere, reporters installed and removed per thread, units looked up and
// applied. Every result is checked; a wrong one ends the run. Usage: vantracore_soak SECONDS.
#include <VantraCore/ExceptionReporter.h>
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/InternedString.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/PropertyPath.h>
#include <VantraCore/SystemOfUnits.h>
#include <VantraCore/Unit.h>
#include <VantraCore/VxVariant.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

namespace {

constexpr int threadCount = 8;

void require(bool condition, char const *what) {
  if (!condition) {
    std::fprintf(stderr, "soak: %s\n", what);
    std::abort();
  }
}

enum Operation { interning, sharing, frozenReads, reporters, units, operationCount };
char const *const operationNames[] = {"interning", "shared holders", "frozen tree reads", "reporters",
                                      "unit lookups"};
std::array<std::atomic<std::uint64_t>, operationCount> done{};

// Slots that every thread writes copies into and takes copies out of, so that the last reference to a
// holder often goes on another thread than the one that made it.
struct Slots {
  std::mutex mutex;
  std::array<VxVariant, 16> values;
  std::array<VxString, 16> texts;
};

// Counts what reaches it; registered on one thread only, so other threads' reports must not arrive.
struct CountingReporter final : ExceptionReporterBase {
  int reports = 0;
  ~CountingReporter() override { unregisterReporter(); }
  void reportException(std::string const &, std::string const &) override { ++reports; }
  void exceptionAsWarning(std::string const &, std::string const &) override { ++reports; }
};

PropertyNode const &sharedTree() {
  static PropertyNode const tree = JsonFormatter::deserializePropertyNode(
      R"({"name":{"_wellknowntype_":"string","_dimensions_":[],"_data_":"probe"},)"
      R"("channels":[{"gain":{"_wellknowntype_":"double","_dimensions_":[3],"_data_":[1,2,3]}},)"
      R"({"gain":{"_wellknowntype_":"int32","_dimensions_":[2],"_data_":[4,5]}}]})");
  return tree;
}

void internNames(std::mt19937 &random) {
  char text[32];
  std::snprintf(text, sizeof text, "soak name %u", static_cast<unsigned>(random() % 4096));
  InternedString const a(text), b(std::string(text).c_str());
  require(a == b && a.data() == b.data(), "equal names interned to different addresses");
}

void shareHolders(Slots &slots, std::mt19937 &random, int thread) {
  std::size_t const at = random() % slots.values.size();
  VxVariant made(std::vector<double>(1 + random() % 64, thread));
  VxString text = VxString("thread ") + VxString(std::to_string(thread).c_str()) + " wrote this slot";
  VxVariant taken;
  VxString takenText;
  {
    std::lock_guard<std::mutex> const lock(slots.mutex);
    taken = slots.values[at];
    takenText = slots.texts[at];
    slots.values[at] = made;
    std::swap(slots.texts[at], text);
  }
  // What was taken is read after the lock, while its writer may be dropping its own reference.
  if (!taken.isNull()) {
    double const first = taken.at<double>(0);
    for (double element : taken.asIterable<double>())
      require(element == first, "a shared holder changed under its readers");
  }
  require(takenText.empty() || takenText.substr(0, 7) == "thread ", "a shared string changed");
  VxVariant copy = made;
  copy.mutableStoredData<double>()[0] = -1;  // copy on write: `made` and the slot keep theirs
  require(made.at<double>(0) == thread, "a write to a copy reached the shared holder");
}

void readFrozen(FPropertyNode const &frozen, VxString const &written) {
  FPropertyNode const copy = frozen;
  FPropertyNode const &gain = resolvePropertyPath(copy, PropertyPath({"channels", 1u, "gain"}));
  require(gain.value().at<std::int32_t>(1) == 5, "the frozen tree read a wrong element");
  require(JsonFormatter::serialize(copy) == written, "the frozen tree wrote another text");
}

void installReporters(std::mt19937 &random) {
  CountingReporter reporter;
  reporter.setThreadReporter(true);
  int const count = 1 + static_cast<int>(random() % 3);
  for (int i = 0; i < count; ++i)
    reportWarning("soak warning");
  require(reporter.reports == count, "a thread's reporter missed its reports or got another's");
  if (random() % 2) reporter.setThreadReporter(false);
}

void useUnits(std::mt19937 &random) {
  static char const *const texts[] = {"mV", "V", "kV", "MV"};
  static double const scales[] = {1e-3, 1, 1e3, 1e6};
  std::size_t const from = random() % 4, to = random() % 4;
  SystemOfUnits const &system = SystemOfUnits::instance();
  Unit const a = system.getUnitsFromString(texts[from]), b = Unit::fromIviUnitString(texts[to]);
  double const converted = a.convertTo(b, 1.0), expected = scales[from] / scales[to];
  require(converted > expected * (1 - 1e-12) && converted < expected * (1 + 1e-12), "a unit converted wrongly");
}

}  // namespace

int main(int argc, char **argv) {
  double const seconds = argc > 1 ? std::atof(argv[1]) : 10;
  Slots slots;
  FPropertyNode const frozen(sharedTree());
  VxString const written = JsonFormatter::serialize(frozen);
  auto const end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);

  std::vector<std::thread> threads;
  for (int t = 0; t < threadCount; ++t)
    threads.emplace_back([&, t] {
      std::mt19937 random(static_cast<unsigned>(t) * 7919u + 1);
      while (std::chrono::steady_clock::now() < end)
        for (int round = 0; round < 16; ++round) {
          auto const operation = static_cast<Operation>(random() % operationCount);
          switch (operation) {
            case interning: internNames(random); break;
            case sharing: shareHolders(slots, random, t); break;
            case frozenReads: readFrozen(frozen, written); break;
            case reporters: installReporters(random); break;
            case units: useUnits(random); break;
            case operationCount: break;
          }
          done[operation].fetch_add(1, std::memory_order_relaxed);
        }
    });
  for (std::thread &thread : threads)
    thread.join();

  std::uint64_t total = 0;
  for (int op = 0; op < operationCount; ++op) {
    std::printf("soak: %-18s %12llu\n", operationNames[op], static_cast<unsigned long long>(done[op].load()));
    total += done[op].load();
  }
  std::printf("soak: %d threads, %.0f s, %llu operations\n", threadCount, seconds,
              static_cast<unsigned long long>(total));
  return 0;
}
