// Times the loading of a feed's lines at a start: from the tables of the feed, and from the cached line
// index.

#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "feeds/gtfs/gtfs_reader.h"
#include "feeds/gtfs/line_index_encoding.h"
#include "feeds/gtfs/line_records.h"
#include "feeds/gtfs/line_search.h"

namespace linewatch {
namespace {

std::string routesTable(std::int64_t routes) {
  std::string table =
      "route_id,agency_id,route_short_name,route_long_name,route_type,route_color,route_text_color\n";
  for (std::int64_t i = 0; i < routes; ++i) {
    const std::string number = std::to_string(i);
    table += "de:operator:" + number + ":" + std::to_string(i % 7) + ",agency-" + std::to_string(i % 40) +
             "," + number + ",\"Hauptbahnhof – Stadtteil " + number + ", Schleife\",700,C8102E,FFFFFF\n";
  }
  return table;
}

class Tables final : public GtfsSource {
 public:
  explicit Tables(std::int64_t routes) : routes_(routesTable(routes)), agencies_("agency_id,agency_name\n") {
    for (int i = 0; i < 40; ++i) agencies_ += "agency-" + std::to_string(i) + ",Verkehrsbetriebe\n";
  }
  Outcome<std::optional<std::string>> file(std::string_view name) override {
    if (name == "routes.txt") return std::optional(routes_);
    if (name == "agency.txt") return std::optional(agencies_);
    return std::optional<std::string>();
  }

 private:
  std::string routes_;
  std::string agencies_;
};

LineIndex::Contents contentsOf(std::int64_t routes) {
  Tables tables(routes);
  return *readGtfs(tables, "feed");
}

void readTables(benchmark::State& state) {
  Tables tables(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(readGtfs(tables, "feed"));
}

void decodeKeptBytes(benchmark::State& state) {
  const Bytes bytes = encodeLineIndex(contentsOf(state.range(0)));
  state.counters["bytes"] = static_cast<double>(bytes.size());
  for (auto _ : state) benchmark::DoNotOptimize(decodeLineIndex(bytes));
  if (*decodeLineIndex(bytes) != contentsOf(state.range(0))) state.SkipWithError("other lines");
}

void openIndexFromKeptBytes(benchmark::State& state) {
  const Bytes bytes = encodeLineIndex(contentsOf(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(LineIndex(std::move(*decodeLineIndex(bytes))));
}

void makeTenLines(benchmark::State& state) {
  const auto index = std::make_shared<const LineIndex>(contentsOf(state.range(0)));
  for (auto _ : state) {
    LineRecords records(index);
    for (std::size_t route = 0; route < 10; ++route)
      benchmark::DoNotOptimize(records.lineFieldsOfRoute(route * 7));
  }
}

void search(benchmark::State& state) {
  const SharedLineIndex index = std::make_shared<const LineIndex>(contentsOf(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(searchLines(std::span(&index, 1), "stadtteil 12"));
}

BENCHMARK(readTables)->Arg(100)->Arg(20'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(decodeKeptBytes)->Arg(100)->Arg(20'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(openIndexFromKeptBytes)->Arg(100)->Arg(20'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(makeTenLines)->Arg(100)->Arg(20'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(search)->Arg(100)->Arg(20'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace linewatch
