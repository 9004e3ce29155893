// What context and reporting add to an exception that is already being thrown: rethrowMessage
// against a plain rethrow, and a report through a thread reporter against the global list.
#include <VantraCore/ExceptionReporter.h>
#include <VantraCore/ExceptionWithMoreInfo.h>

#include <benchmark/benchmark.h>

#include <stdexcept>

using namespace Tarvex::VantraCore::Experimental;

namespace {

class Silent : public ExceptionReporterBase {
 public:
  ~Silent() override { unregisterReporter(); }
  void reportException(std::string const &, std::string const &) override { ++reports; }
  void exceptionAsWarning(std::string const &, std::string const &) override { ++reports; }
  long reports = 0;
};

[[noreturn]] void plainRethrow(std::string const &) {
  throw;
}

// A lookup failure on its way up through one catch block that rethrows it with `rethrow`.
void BM_Rethrow(benchmark::State &state, void (*rethrow)(std::string const &)) {
  std::string const context = "while reading the settings";
  for (auto _ : state) {
    try {
      try {
        throw std::out_of_range("key not found");
      } catch (...) {
        rethrow(context);
      }
    } catch (std::out_of_range const &e) {
      benchmark::DoNotOptimize(e.what());
    }
  }
}
BENCHMARK_CAPTURE(BM_Rethrow, plain, &plainRethrow);
BENCHMARK_CAPTURE(BM_Rethrow, withMessage, &rethrowMessage);

// The reporter stands in the thread's list or in the process's, as `registerOn` puts it.
void BM_ReportError(benchmark::State &state, void (ExceptionReporterBase::*registerOn)(bool)) {
  Silent reporter;
  (reporter.*registerOn)(true);
  for (auto _ : state)
    reportError("x");
  benchmark::DoNotOptimize(reporter.reports);
}
BENCHMARK_CAPTURE(BM_ReportError, threadReporter, &ExceptionReporterBase::setThreadReporter);
BENCHMARK_CAPTURE(BM_ReportError, globalReporter, &ExceptionReporterBase::setGlobalReporter);

}  // namespace
