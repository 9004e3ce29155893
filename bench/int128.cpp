// 128-bit division of the library's classes against the compiler's native operator, on the same
// operands: full-width dividends over divisors of 128, 64 and 32 significant bits.
#include <VantraCore/Int128.h>

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

using Tarvex::VantraCore::Internal::int128_t;
using Tarvex::VantraCore::Internal::uint128_t;

namespace {
__extension__ typedef unsigned __int128 U;
__extension__ typedef __int128 S;

constexpr std::size_t operandCount = 1024;

struct Operands {
  std::vector<U> dividends, divisors;
};

Operands const &operands(int divisorBits) {
  static Operands byWidth[129];
  Operands &result = byWidth[divisorBits];
  if (result.dividends.empty()) {
    std::mt19937_64 random(divisorBits);
    for (std::size_t i = 0; i < operandCount; ++i) {
      U const dividend = (U(random()) << 64) | random();
      U divisor = ((U(random()) << 64) | random()) >> (128 - divisorBits);
      divisor |= U(1) << (divisorBits - 1);
      result.dividends.push_back(dividend);
      result.divisors.push_back(divisor);
    }
  }
  return result;
}

template <typename T>
std::vector<T> converted(std::vector<U> const &values) {
  std::vector<T> result;
  for (U v : values)
    result.push_back(T(std::uint64_t(v >> 64), std::uint64_t(v)));
  return result;
}

template <typename Dividend, typename Divisor>
void divideAll(benchmark::State &state, std::vector<Dividend> const &dividends,
               std::vector<Divisor> const &divisors) {
  for (auto _ : state) {
    for (std::size_t i = 0; i < operandCount; ++i)
      benchmark::DoNotOptimize(dividends[i] / divisors[i]);
  }
  state.SetItemsProcessed(state.iterations() * operandCount);
}

void nativeUnsigned(benchmark::State &state) {
  Operands const &ops = operands(static_cast<int>(state.range(0)));
  divideAll(state, ops.dividends, ops.divisors);
}

void classUnsigned(benchmark::State &state) {
  Operands const &ops = operands(static_cast<int>(state.range(0)));
  divideAll(state, converted<uint128_t>(ops.dividends), converted<uint128_t>(ops.divisors));
}

// Signed operands: the same bits, so about half of them are negative.
void nativeSigned(benchmark::State &state) {
  Operands const &ops = operands(static_cast<int>(state.range(0)));
  std::vector<S> const dividends(ops.dividends.begin(), ops.dividends.end());
  std::vector<S> divisors;
  for (U v : ops.divisors)
    divisors.push_back(S(v >> 1));
  divideAll(state, dividends, divisors);
}

void classSigned(benchmark::State &state) {
  Operands const &ops = operands(static_cast<int>(state.range(0)));
  std::vector<U> shifted;
  for (U v : ops.divisors)
    shifted.push_back(v >> 1);
  divideAll(state, converted<int128_t>(ops.dividends), converted<int128_t>(shifted));
}
}  // namespace

BENCHMARK(nativeUnsigned)->Arg(128)->Arg(64)->Arg(32);
BENCHMARK(classUnsigned)->Arg(128)->Arg(64)->Arg(32);
BENCHMARK(nativeSigned)->Arg(128)->Arg(64)->Arg(32);
BENCHMARK(classSigned)->Arg(128)->Arg(64)->Arg(32);
