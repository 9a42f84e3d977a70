// How the time of building a list grows with the number of listings, i.e. incidents on lines.
//
// Every figure is the time of one listing. `lookup_ns` is the minimum of any build: looking up each listed
// incident by its identifier. `records_ns` is the time of making the activity records, one a line, on a
// platform that neither compresses nor archives. `overhead` is the rest of the build in multiples of the
// look-ups.

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>
#include <string>
#include <unordered_map>
#include <vector>

#include <benchmark/benchmark.h>

#include "activity/rova_activity.h"
#include "list/quiet_platform.h"
#include "list/transit_item_data_source_builder.h"
#include "platform/transit_records.h"
#include "platform/transit_storage_incident.h"
#include "settled_heap.h"
#include "shared/rova_map.h"

namespace linewatch {
namespace {

SharedIncident incident(std::uint64_t muid, std::string title) {
  return std::make_shared<const TransitStorageIncident>(TransitIncidentFields{
      .muid = muid, .title = std::move(title), .summary = "Expect longer journeys until the evening"});
}

struct City {
  std::shared_ptr<const TransitLineItems> lines;
  /// The incidents with a row.
  TransitIncidents shown;
  std::size_t listings = 0, rows = 0, linesWithRows = 0;
};

City cityOf(std::vector<TransitIncidents> incidentsOfLines, std::size_t rows, std::size_t linesWithRows) {
  City city{nullptr, {}, 0, rows, linesWithRows};
  auto lines = std::make_shared<TransitLineItems>();
  for (TransitIncidents& incidents : incidentsOfLines) {
    city.listings += incidents.size();
    for (const SharedIncident& each : incidents)
      if (city.shown.size() < rows) city.shown.push_back(each);
    const std::uint64_t number = lines->size() + 1;
    const auto artwork = std::make_shared<const TransitArtworkDataSource>(TransitArtworkDataSource{
        .shieldDataSource = ShieldDataSource{.shieldText = std::to_string(number % 100)}});
    lines->push_back(std::make_shared<const TransitLineRecord>(
        TransitLineFields{
            .muid = number, .name = "Line " + std::to_string(number), .alternateArtwork = artwork},
        std::move(incidents)));
  }
  city.lines = std::move(lines);
  return city;
}

/// As many lines as incidents on each, no incident on two lines.
City disjointIncidents(std::size_t listings) {
  const auto side = static_cast<std::size_t>(std::lround(std::sqrt(static_cast<double>(listings))));
  std::vector<TransitIncidents> lines(side);
  std::uint64_t muid = 0;
  for (TransitIncidents& line : lines) {
    for (std::size_t i = 0; i < side; ++i, ++muid)
      line.push_back(incident(muid * 0x9E3779B97F4A7C15, "Delays near stop " + std::to_string(muid)));
  }
  return cityOf(std::move(lines), side * side, side);
}

/// One incident that every line lists.
City oneIncidentOnEveryLine(std::size_t listings) {
  return cityOf(std::vector<TransitIncidents>(listings, {incident(1, "Strike")}), 1, 1);
}

/// One line with incidents whose title equals their secondary text: the two cancel in the hash of a row.
City equalTexts(std::size_t listings) {
  TransitIncidents incidents;
  for (std::uint64_t muid = 0; muid < listings; ++muid) {
    const std::string text = "Delays near stop " + std::to_string(muid);
    incidents.push_back(std::make_shared<const TransitStorageIncident>(
        TransitIncidentFields{.muid = muid, .title = text, .summary = text}));
  }
  return cityOf({std::move(incidents)}, listings, 1);
}

/// One line whose incidents have the same texts.
City equalRows(std::size_t listings) {
  TransitIncidents incidents;
  for (std::uint64_t muid = 0; muid < listings; ++muid)
    incidents.push_back(incident(muid * 0x9E3779B97F4A7C15, "Delays"));
  return cityOf({std::move(incidents)}, listings, 1);
}

std::size_t rowsOf(const RVTransitListItem& list) {
  const auto isIncident = [](const SharedTransitItem& item) {
    return dynamic_cast<const RVUserActivityData*>(item->openable().get()) != nullptr;
  };
  return std::holds_alternative<SharedTransitItem>(list.summaryItem())
             ? 1
             : static_cast<std::size_t>(std::ranges::count_if(*list.expandedItems(), isIncident));
}

std::shared_ptr<const RVTransitListItem> build(const City& city) {
  return RVTransitDataSourceBuilderForResult(RVResult(city.lines), 0, nullptr, nullptr)->listItem();
}

/// Makes the records that the rows and the summary of the city carry.
void makeRecords(const City& city) {
  for (std::size_t i = 0; i < city.linesWithRows; ++i) {
    RovaActivity activity;
    activity.setLineItem(std::make_shared<TransitStorageLineItem>(*(*city.lines)[i]));
    benchmark::DoNotOptimize(activity.data());
  }
  if (city.rows < 2) return;
  const auto list = RovaMap(city.shown, [](const SharedIncident& each, std::size_t) {
    return std::optional(ArchivedObject{TransitStorageIncident::of(each)});
  });
  benchmark::DoNotOptimize(list.data());
}

/// Looks up every listed incident in a table that starts empty.
std::size_t lookUpAll(const City& city) {
  std::unordered_map<std::uint64_t, const TransitLineItem*> table;
  for (const SharedLineItem& line : *city.lines)
    for (const SharedIncident& each : line->incidents()) table.try_emplace(each->muid(), line.get());
  return table.size();
}

/// Looks up every listed incident in a table that holds all of them.
class FullTable {
 public:
  explicit FullTable(const City& city) {
    for (const SharedLineItem& line : *city.lines)
      for (const SharedIncident& each : line->incidents()) table_.emplace(each->muid(), line.get());
  }
  std::size_t lookUpAll(const City& city) const {
    std::size_t found = 0;
    for (const SharedLineItem& line : *city.lines)
      for (const SharedIncident& each : line->incidents()) found += table_.count(each->muid());
    return found;
  }

 private:
  std::unordered_map<std::uint64_t, const TransitLineItem*> table_;
};

/// The processor time of this thread in seconds, independent of other processes.
double processorTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// The shortest of several measured times: disturbances only make a time longer.
class Shortest {
 public:
  template <class Work>
  double time(Work work) {
    settleHeap();
    const double start = processorTime();
    work();
    const double taken = processorTime() - start;
    seconds_ = std::min(seconds_, taken);
    return taken;
  }
  double seconds() const { return seconds_; }

 private:
  double seconds_ = std::numeric_limits<double>::infinity();
};

void buildList(benchmark::State& state, City (*makeCity)(std::size_t)) {
  keepHeap();
  const auto world = std::make_shared<QuietPlatform>();
  installPlatform(world);
  const City city = makeCity(static_cast<std::size_t>(state.range(0)));
  const FullTable table(city);
  Shortest building, records, lookingUp, finding;
  for (auto _ : state) {
    std::shared_ptr<const RVTransitListItem> list;
    world->compressor().count = 0;
    state.SetIterationTime(building.time([&] { list = build(city); }));
    if (rowsOf(*list) != city.rows) state.SkipWithError("wrong rows");
    if (world->compressor().count != city.linesWithRows)
      state.SkipWithError("a line's record was made again");
    list = nullptr;
    records.time([&] { makeRecords(city); });
    lookingUp.time([&] {
      if (lookUpAll(city) != city.rows) state.SkipWithError("wrong look-ups");
    });
    finding.time([&] {
      if (table.lookUpAll(city) != city.listings) state.SkipWithError("wrong look-ups");
    });
  }
  const double nanoseconds = 1e9 / static_cast<double>(city.listings);
  state.counters["build_ns"] = building.seconds() * nanoseconds;
  state.counters["records_ns"] = records.seconds() * nanoseconds;
  state.counters["lookup_ns"] = lookingUp.seconds() * nanoseconds;
  state.counters["find_ns"] = finding.seconds() * nanoseconds;
  state.counters["overhead"] = (building.seconds() - records.seconds()) / lookingUp.seconds();
  installPlatform(nullptr);
}

BENCHMARK_CAPTURE(buildList, disjoint, disjointIncidents)
    ->RangeMultiplier(10)
    ->Range(100, 1000000)
    ->UseManualTime();
BENCHMARK_CAPTURE(buildList, shared, oneIncidentOnEveryLine)
    ->RangeMultiplier(10)
    ->Range(100, 1000000)
    ->UseManualTime();
BENCHMARK_CAPTURE(buildList, equalTexts, equalTexts)
    ->RangeMultiplier(10)
    ->Range(100, 1000000)
    ->UseManualTime();
BENCHMARK_CAPTURE(buildList, equal, equalRows)->RangeMultiplier(10)->Range(100, 1000000)->UseManualTime();

}  // namespace
}  // namespace linewatch
