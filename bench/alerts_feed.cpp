// Times the way from the bytes of an alerts feed to the items of ten favourite lines: decoding, merging
// repeated alerts, matching them with the lines and wording them. `peer_ms` is the time of libprotobuf's
// generated code to decode the same bytes, and `times_peer` our time divided by it.
//
// The feed is made up: 5,000 alerts in two languages on 1,000 lines, in a second measurement a quarter of
// them about some of 100,000 stops. Set LINEWATCH_ALERTS to the file of a real feed to measure that too.

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <alerts.pb.h>
#include <benchmark/benchmark.h>
#include <protozero/pbf_writer.hpp>

#include "feeds/alerts/incident_records.h"
#include "feeds/gtfs/line_records.h"
#include "feeds/gtfs/stop_names.h"
#include "feeds/gtfs/stop_search.h"
#include "platform/transit_records.h"

namespace linewatch {
namespace {

constexpr std::size_t kLines = 1000;
constexpr std::size_t kAlerts = 5000;
constexpr std::size_t kFavorites = 10;
constexpr std::size_t kStops = 100'000;

std::string stopId(std::size_t stop) { return "stop-" + std::to_string(stop % kStops); }

std::string lineId(std::size_t line) { return "line-" + std::to_string(line % kLines); }

void addTexts(protozero::pbf_writer& alert, protozero::pbf_tag_type field, const std::string& english,
              const std::string& german) {
  protozero::pbf_writer texts(alert, field);
  for (const auto& [language, text] : {std::pair("en", &english), std::pair("de", &german)}) {
    protozero::pbf_writer translation(texts, 1);
    translation.add_string(1, *text);
    translation.add_string(2, language);
  }
}

/// A quarter of the alerts are about stops alone.
bool isAboutStops(std::size_t number) { return number % 4 == 0; }

void addAlert(protozero::pbf_writer& feed, std::size_t number, bool namesStops) {
  constexpr std::int32_t kStopMoved = 9;
  const std::string place = "Street " + std::to_string(number % 700);
  protozero::pbf_writer entity(feed, 2);
  entity.add_string(1, "alert-" + std::to_string(number));
  protozero::pbf_writer alert(entity, 5);
  for (std::size_t period = 0; period < 1 + number % 3; ++period) {
    protozero::pbf_writer range(alert, 1);
    range.add_uint64(1, 1'700'000'000 + period * 86'400);
    range.add_uint64(2, 1'700'000'000 + period * 86'400 + 50'000);
  }
  for (std::size_t selector = 0; selector < 1 + number % 5; ++selector) {
    protozero::pbf_writer informed(alert, 5);
    informed.add_string(1, "agency");
    informed.add_string(2, lineId(number + selector * 211));
    informed.add_int32(3, 3);
    if (namesStops) informed.add_string(5, stopId(number + selector));
  }
  alert.add_int32(6, static_cast<std::int32_t>(1 + number % 12));
  alert.add_int32(7, namesStops ? kStopMoved : static_cast<std::int32_t>(1 + number % 8));
  addTexts(alert, 8, "https://transit.example/en/alerts/" + std::to_string(number),
           "https://transit.example/de/alerts/" + std::to_string(number));
  addTexts(alert, 10, "Line runs another way near " + place, "Umleitung bei der Haltestelle " + place);
  addTexts(alert, 11,
           "<p>Because of works buses do not serve " + place +
               " until further notice.</p><p>Please use the next stop, and allow ten more minutes for your "
               "trip.</p>",
           "Wegen Bauarbeiten wird die Haltestelle " + place +
               " bis auf Weiteres nicht bedient.\n\nBitte benutzen Sie die nächste Haltestelle und rechnen "
               "Sie mit "
               "zehn Minuten mehr.");
}

std::string madeUpFeed(bool hasStops) {
  std::string bytes;
  protozero::pbf_writer feed(bytes);
  {
    protozero::pbf_writer header(feed, 1);
    header.add_string(1, "2.0");
    header.add_uint64(3, 1'700'000'100);
  }
  for (std::size_t number = 0; number < kAlerts; ++number)
    addAlert(feed, number, hasStops && isAboutStops(number));
  return bytes;
}

SharedLineIndex indexOf(const std::vector<std::string>& lineIds) {
  LineIndex::Contents contents{
      .feedName = "bench", .language = "en", .agencies = {{.id = "agency", .name = "City"}}};
  for (const std::string& id : lineIds) {
    FeedRoute& route = contents.routes.emplace_back();
    route.id = route.shortName = id;
    route.type = 3;
  }
  return std::make_shared<const LineIndex>(std::move(contents));
}

std::vector<std::string> linesThatAlertsName(const peer::FeedMessage& message) {
  std::set<std::string> ids;
  for (const auto& entity : message.entity()) {
    for (const auto& selector : entity.alert().informed_entity()) {
      if (!selector.route_id().empty()) ids.insert(selector.route_id());
    }
  }
  return {ids.begin(), ids.end()};
}

/// The stops as they are kept on the disk: no stop is in memory before it is asked for.
std::shared_ptr<StopNames> stopNames() {
  static const std::vector<StopPage> pages = [] {
    std::string table = "stop_id,stop_name\n";
    for (std::size_t stop = 0; stop < kStops; ++stop)
      table += stopId(stop) + ",Stop " + std::to_string(stop) + "\n";
    StopsTable source(table);
    return *readStopPages(source);
  }();
  return std::make_shared<StopNames>(std::vector<StopNames::PageSource>{
      [](std::string_view id) { return std::optional(pageWithStop(pages, id)->text); }});
}

TransitLineItems favoriteItems(Bytes payload, LineRecords& lines) {
  static const auto language =
      std::make_shared<const IncidentLanguage>(IncidentLanguage{.languages = {"en"}});
  const auto message = readAlertsMessage(std::move(payload));
  TransitLineItems items;
  if (!message) return items;
  IncidentRecords incidents(std::make_shared<const IncidentTable>(*message, lines.index()), language,
                            Date(Seconds(static_cast<double>((*message)->timestamp()))), stopNames());
  const std::size_t count = std::min(kFavorites, lines.index()->routes().size());
  for (std::size_t favorite = 0; favorite < count; ++favorite) {
    const std::size_t route = favorite * lines.index()->routes().size() / count;
    items.push_back(
        std::make_shared<const TransitLineRecord>(lines.lineFieldsOfRoute(route), incidents.ofRoute(route)));
  }
  return items;
}

std::size_t incidentsOf(const TransitLineItems& items) {
  std::size_t count = 0;
  for (const auto& item : items) {
    for (const SharedIncident& incident : item->incidents()) count += incident->title()->empty() ? 0 : 1;
  }
  return count;
}

// Counts the incidents of the favourites alert by alert. Right for the made-up feed without stops only: no
// two of its alerts are equal.
std::size_t expectedIncidents(const peer::FeedMessage& message, const LineRecords& lines) {
  std::size_t count = 0;
  for (std::size_t favorite = 0; favorite < kFavorites; ++favorite) {
    const std::string& id =
        lines.index()->routes()[favorite * lines.index()->routes().size() / kFavorites].id;
    for (const auto& entity : message.entity()) {
      const auto& selectors = entity.alert().informed_entity();
      count +=
          std::any_of(selectors.begin(), selectors.end(), [&](const auto& s) { return s.route_id() == id; })
              ? 1
              : 0;
    }
  }
  return count;
}

// The CPU time of this thread in seconds, so that other work on the machine does not count.
double timeSpent() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void race(benchmark::State& state, const std::string& bytes, bool isCountable) {
  peer::FeedMessage decoded;
  if (!decoded.ParseFromString(bytes)) return state.SkipWithError("the peer cannot read the feed");
  LineRecords lines(indexOf(linesThatAlertsName(decoded)));
  const std::size_t incidents = incidentsOf(favoriteItems(Bytes(bytes.begin(), bytes.end()), lines));
  if (incidents == 0 || (isCountable && incidents != expectedIncidents(decoded, lines))) {
    return state.SkipWithError("not the incidents that the feed has");
  }

  double ours = 0;
  double peers = 0;
  for ([[maybe_unused]] const auto iteration : state) {
    Bytes payload(bytes.begin(), bytes.end());
    const double start = timeSpent();
    const TransitLineItems items = favoriteItems(std::move(payload), lines);
    const double between = timeSpent();
    peer::FeedMessage message;
    benchmark::DoNotOptimize(message.ParseFromString(bytes));
    const double end = timeSpent();
    benchmark::DoNotOptimize(items.data());
    state.SetIterationTime(between - start);
    ours += between - start;
    peers += end - between;
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes.size()) * state.iterations());
  state.counters["alerts"] = decoded.entity_size();
  state.counters["incidents"] = static_cast<double>(incidents);
  state.counters["peer_ms"] = peers / static_cast<double>(state.iterations()) * 1000;
  state.counters["times_peer"] = ours / peers;
}

void AlertsToLineItems(benchmark::State& state) { race(state, madeUpFeed(false), true); }
BENCHMARK(AlertsToLineItems)->UseManualTime()->Unit(benchmark::kMillisecond);

void StopAlertsToLineItems(benchmark::State& state) { race(state, madeUpFeed(true), false); }
BENCHMARK(StopAlertsToLineItems)->UseManualTime()->Unit(benchmark::kMillisecond);

void NamedAlertsToLineItems(benchmark::State& state) {
  const char* file = std::getenv("LINEWATCH_ALERTS");
  if (!file) return state.SkipWithError("LINEWATCH_ALERTS names no feed");
  std::stringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  race(state, bytes.str(), false);
}
BENCHMARK(NamedAlertsToLineItems)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace linewatch
