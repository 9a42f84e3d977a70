#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "feeds/alerts/incident_details.h"
#include "feeds/feed_state.h"
#include "feeds/upcoming_incidents.h"
#include "list/transit_list_item.h"
#include "platform/transit_line.h"
#include "shared/date.h"
#include "shared/outcome.h"
#include "shared/value.h"

namespace linewatch::app {

/// The version of the document. It grows when a field is removed or changes its meaning, not when one is
/// added.
inline constexpr int kShowDocumentVersion = 1;

/// A favourite line.
struct ShownLine {
  std::uint64_t muid = 0;
  std::string feed;
  std::string routeId;
  /// The route id when the timetable does not have the line or cannot be read.
  std::string name;
  /// Empty when not known.
  std::string agency;
  /// Null when nothing is known of the line's incidents.
  SharedLineItem item;
};

/// All that the document tells.
struct ShownContent {
  Date now;
  std::vector<FeedState> feeds;
  std::vector<ShownLine> lines;
  /// The details of the lines' incidents, by `muid`. An incident without details is missing.
  IncidentDetailsByMuid details;
  std::vector<UpcomingIncident> upcoming;
  /// May be null.
  std::shared_ptr<const RVTransitListItem> list;
};

/// Bounds of the document, whatever the feeds hold.
struct ShowDocumentLimits {
  /// The incidents of all lines, each counted once a line. With more there is no document.
  std::size_t listings = 1'000'000;
  /// The different incidents. Each takes about 50 µs and, at the most, 10 kB of memory. With more there is no
  /// document.
  std::size_t incidents = 50'000;
  /// Bytes of all records together, before they are encoded. Further records are null.
  std::size_t recordBytes = std::size_t{64} << 20U;
};

struct ShowDocument {
  Dictionary form;
  /// How many records are null because of the limit.
  std::size_t recordsLeftOut = 0;
};

/// Makes the document that `show --json` prints; docs/json.md and docs/show.schema.json describe it. A line's
/// record stands in it once and rows refer to it, so the size grows with the incidents and lines. An error
/// when the lines list more incidents than the limit. Reads the clock of the installed platform.
Outcome<ShowDocument> showDocument(const ShownContent& content, const ShowDocumentLimits& limits = {});

}  // namespace linewatch::app
