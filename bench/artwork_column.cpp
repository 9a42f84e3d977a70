// Fits the artworks of a list into one column. All are too wide and shrink step by step to the smallest size.
// The counter is the time divided by n log n for n items.

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>

#include "presentation/artwork_column_calculator.h"
#include "presentation/memory_constrained_artwork_cache.h"
#include "settled_heap.h"
#include "simulation/simulated_platform.h"
#include "ui/artwork_cache.h"

namespace linewatch {
namespace {

constexpr double kNarrowestWidth = 5000;
constexpr std::int64_t kSmallestSize = -4;
const ArtworkWidthCalculatorSizeParameter kParameter{73, 200, {0, 0, 0, 16}};

/// Items whose artworks all differ in text, and with `distinctWidths` also in width.
TransitItems wideItems(const std::shared_ptr<ArtworkDataSourceCache>& cache, std::int64_t count,
                       bool distinctWidths) {
  TransitItems items;
  for (std::int64_t i = 0; i < count; ++i) {
    TransitArtworkDataSource artwork;
    artwork.artworkSourceType = kArtworkSourceShield;
    artwork.shieldDataSource = ShieldDataSource{1, std::to_string(i), std::nullopt, std::nullopt};
    artwork.intrinsicWidth = kNarrowestWidth + static_cast<double>(distinctWidths ? i : 0);
    auto sized = std::make_shared<const SizedTransitArtwork>(
        std::make_shared<const TransitArtworkDataSource>(std::move(artwork)), 3, cache);
    items.push_back(std::make_shared<const RVTransitItem>(
        std::to_string(i), std::nullopt, std::make_shared<const RVConfiguredArtwork>(std::move(sized), 1.0),
        true, nullptr));
  }
  return items;
}

SharedTransitItem withArtwork(const SharedTransitItem& item, const SharedSizedArtwork& artwork) {
  return std::make_shared<const RVTransitItem>(item->primaryText(), item->secondaryText(),
                                               std::make_shared<const RVConfiguredArtwork>(artwork, 1.0),
                                               true, item->openable());
}

bool isSmallest(const SharedTransitItem& item) {
  const auto artwork = std::dynamic_pointer_cast<const SizedTransitArtwork>(item->artwork()->artworkSource());
  return artwork && artwork->shieldSize() == kSmallestSize;
}

void fitEveryArtworkShrunk(benchmark::State& state) {
  keepHeap();
  installPlatform(simulation::SimulatedPlatform::make());
  const auto cache = memoryConstrainedImageViewCache();
  const TransitItems items = wideItems(cache, state.range(0), state.range(1) != 0);
  double width = 0;
  for (auto _ : state) {
    // Each round draws everything again, so that rounds over few and over many items are comparable.
    state.PauseTiming();
    cache->purge();
    settleHeap();
    state.ResumeTiming();
    RVTransitItemArtworkColumnCalculator calculator;
    const TransitItems fitted = calculator.itemsFromItems(items, kParameter, &width, withArtwork);
    if (width != kParameter.defaultArtworkViewWidth || !isSmallest(fitted.front()) ||
        !isSmallest(fitted.back())) {
      state.SkipWithError("not every artwork was shrunk");
    }
  }
  const auto count = static_cast<double>(items.size());
  state.counters["s/(n log n)"] = benchmark::Counter(
      count * std::log2(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  installPlatform(nullptr);
}
BENCHMARK(fitEveryArtworkShrunk)
    ->ArgNames({"items", "distinctWidths"})
    ->ArgsProduct({{1'000, 10'000, 100'000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

/// A repeated call, as tables make it.
void fitTheSameAgain(benchmark::State& state) {
  installPlatform(simulation::SimulatedPlatform::make());
  const TransitItems items = wideItems(memoryConstrainedImageViewCache(), state.range(0), true);
  RVTransitItemArtworkColumnCalculator calculator;
  calculator.itemsFromItems(items, kParameter, nullptr, withArtwork);
  for (auto _ : state)
    benchmark::DoNotOptimize(calculator.itemsFromItems(items, kParameter, nullptr, withArtwork));
  installPlatform(nullptr);
}
BENCHMARK(fitTheSameAgain)->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace linewatch
