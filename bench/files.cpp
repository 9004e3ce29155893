// What path handling costs: building a Path checks the UTF-8 once, normalize leaves clean text
// without a walk, and file names compare without allocating, ASCII or not.
#include <VantraCore/Path.h>

#include <strings.h>

#include <benchmark/benchmark.h>

#include <string>

using namespace Tarvex::VantraCore;
using Experimental::Path;

namespace {

VxString const cleanName("C:\\measurements\\2024\\run-0042\\channel-07\\samples.dat");
VxString const dottedName("C:\\measurements\\2024\\.\\run-0042\\..\\run-0042\\channel-07\\samples.dat");
VxString const greekName(
    "C:"
    "\\\xCE\xBC\xCE\xB5\xCF\x84\xCF\x81\xCE\xAE\xCF\x83\xCE\xB5\xCE\xB9\xCF\x82\\\xCE\xB4\xCE\xB5\xCE\xAF\xCE"
    "\xB3\xCE\xBC\xCE\xB1");

void BM_PathFromText(benchmark::State &state) {
  for (auto _ : state) {
    Path path(cleanName);
    benchmark::DoNotOptimize(path);
  }
}
BENCHMARK(BM_PathFromText);

void BM_NormalizeClean(benchmark::State &state) {
  Path const path(cleanName);
  for (auto _ : state) {
    Path copy(path);
    benchmark::DoNotOptimize(copy.normalize());
  }
}
BENCHMARK(BM_NormalizeClean);

void BM_NormalizeDotted(benchmark::State &state) {
  Path const path(dottedName);
  for (auto _ : state) {
    Path copy(path);
    benchmark::DoNotOptimize(copy.normalize());
  }
}
BENCHMARK(BM_NormalizeDotted);

void BM_CompareFilenamesAscii(benchmark::State &state) {
  Path const a(cleanName);
  Path const b(std::string("c:\\MEASUREMENTS\\2024\\RUN-0042\\CHANNEL-07\\SAMPLES.DAT"));
  for (auto _ : state)
    benchmark::DoNotOptimize(Path::compare_filenames(a, b));
}
BENCHMARK(BM_CompareFilenamesAscii);

// The C library's ASCII-only comparison, as the floor.
void BM_StrCaseCmpAscii(benchmark::State &state) {
  std::string const a(cleanName.c_str());
  std::string const b("c:\\MEASUREMENTS\\2024\\RUN-0042\\CHANNEL-07\\SAMPLES.DAT");
  for (auto _ : state)
    benchmark::DoNotOptimize(::strcasecmp(a.c_str(), b.c_str()));
}
BENCHMARK(BM_StrCaseCmpAscii);

void BM_CompareFilenamesGreek(benchmark::State &state) {
  Path const a(greekName);
  Path const b(greekName);
  for (auto _ : state)
    benchmark::DoNotOptimize(Path::compare_filenames(a, b));
}
BENCHMARK(BM_CompareFilenamesGreek);

}  // namespace
