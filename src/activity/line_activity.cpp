#include "activity/line_activity.h"

#include <cstdint>
#include <memory>
#include <unordered_set>
#include <utility>

#include "activity/rova_activity.h"
#include "platform/transit_storage_line_item.h"
#include "platform/url_display_options.h"
#include "shared/hash_mixing.h"

namespace linewatch {

namespace {

using Muids = std::unordered_set<std::uint64_t, IdentifierHash>;

/// Adds the line's incidents to those that have been listed. True when one of them is new.
bool listsNewIncident(const TransitLineItem& line, Muids& listed) {
  bool isNew = false;
  for (const SharedIncident& incident : line.incidents())
    isNew = listed.insert(incident->muid()).second || isNew;
  return isNew;
}

}  // namespace

Bytes activityRecordOfLine(const TransitLineItem& line) {
  auto options = std::make_shared<UrlDisplayOptions>();
  options->setMapType(kOpenedMapType);
  RovaActivity activity;
  activity.setLineItem(std::make_shared<TransitStorageLineItem>(line));
  activity.setDisplayOptions(std::move(options));
  return activity.data();
}

std::vector<Bytes> activityRecordsOfRows(const TransitLineItems& lines) {
  std::vector<Bytes> records;
  Muids listed;
  for (const SharedLineItem& line : lines) {
    if (listsNewIncident(*line, listed)) records.push_back(activityRecordOfLine(*line));
  }
  return records;
}

}  // namespace linewatch
