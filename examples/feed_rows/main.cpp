// feed_rows TIMETABLE ALERTS [ROUTE_ID...]: prints a row for each incident of these routes of an open feed,
// or of all routes. It has no window, no main loop and no saved state. Each call waits until the feed has
// been read.

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "feeds/alerts/feed_texts.h"
#include "feeds/transit_feeds.h"
#include "platform/in_force.h"
#include "shared/failure.h"
#include "shared/installation.h"

namespace {

using namespace linewatch;

constexpr const char* kFeedName = "example";

Date now() { return std::chrono::time_point_cast<Seconds>(std::chrono::system_clock::now()); }

/// The feeds are asked for at each look-up, so a program can add and remove feeds.
TransitFeeds::Source sourceOf(const std::string& timetable, const std::string& alerts) {
  return [=] { return Outcome<std::vector<StoredFeed>>({StoredFeed{kFeedName, timetable, alerts}}); };
}

MapItemIdentifier identifierOf(const std::string& routeId) {
  return {.muid = stableMuid(kFeedName, routeId), .feed = kFeedName, .routeId = routeId};
}

Outcome<std::vector<MapItemIdentifier>> allLines(TransitFeeds& feeds) {
  const auto lines = feeds.linesOf(kFeedName);
  if (!lines) return lines.error();
  std::vector<MapItemIdentifier> identifiers;
  for (const FeedRoute& route : (*lines)->routes()) identifiers.push_back(identifierOf(route.id));
  return identifiers;
}

Outcome<std::vector<MapItemIdentifier>> wantedLines(TransitFeeds& feeds, char** routeIds) {
  if (*routeIds == nullptr) return allLines(feeds);
  std::vector<MapItemIdentifier> identifiers;
  for (; *routeIds != nullptr; ++routeIds) identifiers.push_back(identifierOf(*routeIds));
  return identifiers;
}

void printRow(const std::string& line, const std::string& text) {
  std::printf("%-6s %s\n", line.c_str(), text.c_str());
}

/// The answer has future incidents too. Only those in force now are printed.
void printLine(const TransitLineItem& line) {
  bool runsNormally = true;
  for (const SharedIncident& incident : line.incidents()) {
    if (!isInForceAt(*incident, now())) continue;
    runsNormally = false;
    printRow(line.name(), incident->title().value_or("Incident"));
  }
  if (runsNormally) printRow(line.name(), "Good Service");
}

int fail(const Error& error) {
  std::fprintf(stderr, "feed_rows: %s\n", sentenceOf(error).c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: feed_rows TIMETABLE ALERTS [ROUTE_ID...]\n", stderr);
    return 2;
  }
  // The modules that read zip files and servers are loaded from there.
  useInstallation(LINEWATCH_INSTALLATION);
  TransitFeeds feeds(sourceOf(argv[1], argv[2]), std::make_shared<FeedDocuments>(nullptr, now),
                     IncidentLanguage{{"en"}, FeedTexts::english()});
  const auto wanted = wantedLines(feeds, argv + 3);
  if (!wanted) return fail(wanted.error());
  const auto lines = feeds.lineItems(*wanted, now());
  if (!lines) return fail(lines.error());
  for (const SharedLineItem& line : *lines) printLine(*line);
  // Their incidents are not known, so they must not count as good service.
  for (const UnknownLine& line : feeds.unknownLines()) printRow(line.name, "Unknown");
  return 0;
}
