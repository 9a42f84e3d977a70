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

/// The version of the document. It grows if a field is removed or changes its meaning, but not if one is
/// added.
inline constexpr int kShowDocumentVersion = 1;

/// A favourite line.
struct ShownLine {
  std::uint64_t muid = 0;
  std::string feed;
  std::string routeId;
  /// The name; the route id if the timetable does not have the line or cannot be read.
  std::string name;
  /// Empty when not known.
  std::string agency;
  /// Null for an unknown line.
  SharedLineItem item;
};

/// The content of the document.
struct ShownContent {
  Date now;
  std::vector<FeedState> feeds;
  std::vector<ShownLine> lines;
  /// The details of the incidents, by `muid`; an incident may have none.
  IncidentDetailsByMuid details;
  std::vector<UpcomingIncident> upcoming;
  /// May be null.
  std::shared_ptr<const RVTransitListItem> list;
};

/// The limits of the document.
struct ShowDocumentLimits {
  /// The number of incidents of all lines; a shared incident counts for each line. With more there is no
  /// document.
  std::size_t listings = 1'000'000;
  /// The number of different incidents. Each takes about 50 µs and at most 10 kB of memory. With more there
  /// is no document.
  std::size_t incidents = 50'000;
  /// The size of all records together, in bytes before base64. Records beyond it are null.
  std::size_t recordBytes = std::size_t{64} << 20U;
};

struct ShowDocument {
  Dictionary form;
  /// The number of records beyond the limit.
  std::size_t recordsLeftOut = 0;
};

/// Makes the document of `show --json`; docs/json.md and docs/show.schema.json describe it. Each record is in
/// it once, and rows refer to it, so its size grows with the number of lines and incidents. An error if the
/// lines have more incidents than the limit. Reads the clock of the installed platform.
Outcome<ShowDocument> showDocument(const ShownContent& content, const ShowDocumentLimits& limits = {});

/// A feed's state in a document.
Dictionary feedStateForm(const FeedState& state, Date now);

}  // namespace linewatch::app
