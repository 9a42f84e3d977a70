// Writes and reads the record, compared with the code that libprotobuf generates for the same fields.

#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "activity/rova_activity.h"
#include "platform/transit_records.h"
#include "record.pb.h"

namespace linewatch {
namespace {

/// A record as the widget writes it: a line with a few incidents, and display options.
RovaActivity lineRecord() {
  const auto artwork = std::make_shared<const TransitArtworkDataSource>(
      TransitArtworkDataSource{.artworkSourceType = 1,
                               .shieldDataSource = ShieldDataSource{.shieldType = 3,
                                                                    .shieldText = "M1",
                                                                    .shieldColorString = "0A3F80",
                                                                    .textColorString = "FFFFFF"},
                               .accessibilityText = "Line M1"});
  TransitIncidents incidents;
  for (std::uint64_t i = 1; i <= 3; ++i) {
    incidents.push_back(std::make_shared<const TransitIncidentRecord>(
        TransitIncidentFields{.muid = i * 0x9E3779B97F4A7C15,
                              .startDate = Date(Seconds(1.79e9)),
                              .endDate = Date(Seconds(1.8e9)),
                              .title = "Delays between Harbour and Central",
                              .summary = "Expect longer journeys until the evening",
                              .fullDescription = std::string(200, 'x'),
                              .iconType = 2}));
  }
  TransitLineFields line{.muid = 0x123456789ABCDEF0,
                         .identifier = MapItemIdentifier{0x123456789ABCDEF0},
                         .name = "M1",
                         .system = std::make_shared<const TransitSystem>(
                             TransitSystem{.muid = 77, .name = "Metro", .artwork = artwork}),
                         .artwork = artwork,
                         .modeArtwork = artwork,
                         .alternateArtwork = artwork,
                         .lineColorString = "0A3F80",
                         .operatingHours = "05:00 to 01:00"};
  RovaActivity activity;
  activity.setLineItem(
      std::make_shared<TransitStorageLineItem>(TransitLineRecord(std::move(line), std::move(incidents))));
  auto options = std::make_shared<UrlDisplayOptions>();
  options->setMapType(3);
  activity.setDisplayOptions(std::move(options));
  return activity;
}

/// A record as the companion application writes it: a search with directions.
RovaActivity searchRecord() {
  RovaActivity activity;
  activity.setSearchString("coffee near the harbour");
  for (int i = 0; i < 5; ++i) {
    auto place = std::make_shared<MapItemStorage>();
    place->setMuid(static_cast<std::uint64_t>(i) + 1000000);
    place->setName("Place number " + std::to_string(i));
    place->setLatitude(47.5 + i);
    place->setLongitude(8.25);
    activity.addSearchPlaces(std::move(place));
  }
  activity.setSelectedPlaceIndex(2);
  activity.setCollectionsMode(CollectionsMode::recents);
  auto plan = std::make_shared<DirectionsPlan>();
  plan->setOriginString("Harbour");
  plan->setDestinationString("Central station, platform 3");
  plan->setDepartureTime(1.79e9);
  plan->setCurrentRouteIndex(1);
  plan->setDisplayMethod(DisplayMethod::directionsStarted);
  plan->setTransitPreferences(std::make_shared<DirectionsPlanTransitPreferences>());
  plan->transitPreferences()->setAvoidFerryRoutes(true);
  plan->setRoutesPerInitialPage(5);
  plan->setExpiryTime(1.8e9);
  plan->setIsPlayingTrace(false);
  activity.setDirectionsPlan(std::move(plan));
  return activity;
}

Bytes bytesOf(const std::string& text) { return {text.begin(), text.end()}; }
std::string textOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

void writeOwn(benchmark::State& state, RovaActivity (*make)()) {
  const RovaActivity activity = make();
  std::size_t size = 0;
  for (auto _ : state) size = activity.data().size();
  if (size != activity.data().size() || size == 0) state.SkipWithError("wrong size");
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
}

void writePeer(benchmark::State& state, RovaActivity (*make)()) {
  const Bytes bytes = make().data();
  peer::Activity activity;
  if (!activity.ParseFromString(textOf(bytes))) state.SkipWithError("does not parse");
  if (bytesOf(activity.SerializeAsString()) != bytes) state.SkipWithError("other bytes");
  std::size_t size = 0;
  for (auto _ : state) size = activity.SerializeAsString().size();
  if (size != bytes.size()) state.SkipWithError("wrong size");
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
}

void readOwn(benchmark::State& state, RovaActivity (*make)()) {
  const RovaActivity activity = make();
  const Bytes bytes = activity.data();
  std::shared_ptr<RovaActivity> read;
  for (auto _ : state) read = messageWithData<RovaActivity>(bytes);
  if (!read || !read->isEqual(activity)) state.SkipWithError("reads as another");
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
}

void readPeer(benchmark::State& state, RovaActivity (*make)()) {
  const std::string text = textOf(make().data());
  std::shared_ptr<peer::Activity> read;
  bool isRead = true;
  for (auto _ : state) {
    read = std::make_shared<peer::Activity>();
    isRead = isRead && read->ParseFromString(text);
  }
  if (!isRead || read->SerializeAsString() != text) state.SkipWithError("reads as another");
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

BENCHMARK_CAPTURE(writeOwn, line, lineRecord);
BENCHMARK_CAPTURE(writePeer, line, lineRecord);
BENCHMARK_CAPTURE(readOwn, line, lineRecord);
BENCHMARK_CAPTURE(readPeer, line, lineRecord);
BENCHMARK_CAPTURE(writeOwn, search, searchRecord);
BENCHMARK_CAPTURE(writePeer, search, searchRecord);
BENCHMARK_CAPTURE(readOwn, search, searchRecord);
BENCHMARK_CAPTURE(readPeer, search, searchRecord);

}  // namespace
}  // namespace linewatch
