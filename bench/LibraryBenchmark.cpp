// Operations that are too short or too rare for scripts/bench to measure: sorting a list, and
// converting file names.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "host/text/Names.h"
#include "presets/ExchangeOrder.h"

namespace cairnset {

namespace {

// range(0) descending keys with range(1) different values. Equal keys are the worst case.
void PutInOrder(benchmark::State& state) {
  std::vector<std::int64_t> keys;
  for (std::int64_t i = state.range(0); i > 0; --i)
    keys.push_back(i % state.range(1));
  for ([[maybe_unused]] const auto _ : state)
    benchmark::DoNotOptimize(exchangeOrder(keys));
}
BENCHMARK(PutInOrder)
    ->ArgsProduct({{1000, 10000, 100000}, {1, 300, 1 << 30}})
    ->Unit(benchmark::kMillisecond);

const char* const kNames[] = {"Grand Piano 12", "\u00C9tude ros\u00E9e", "E\u0301tude rose\u0301e"};

void HeldName(benchmark::State& state) {
  for ([[maybe_unused]] const auto _ : state)
    benchmark::DoNotOptimize(heldNameFromVolumeName(kNames[state.range(0)]));
}
BENCHMARK(HeldName)->DenseRange(0, 2);

void SortKey(benchmark::State& state) {
  std::string key;
  for ([[maybe_unused]] const auto _ : state) {
    key.clear();
    appendSortKey(kNames[state.range(0)], key);
  }
}
BENCHMARK(SortKey)->DenseRange(0, 2);

}  // namespace

}  // namespace cairnset

BENCHMARK_MAIN();
