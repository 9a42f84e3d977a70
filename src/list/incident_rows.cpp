#include "list/incident_rows.h"

#include <algorithm>
#include <utility>

namespace linewatch {

namespace {

/// The most entries that a table reserves in advance. A larger table would slow down a list with few rows
/// whose lines all list the same incident.
constexpr std::size_t kMostReservedEntries = 1000;

}  // namespace

IncidentRows::IncidentRows(std::size_t listings) {
  incidents_.reserve(listings);
  items_.reserve(listings);
  firstLines_.reserve(listings);
  itemToLinesMap_.reserve(std::min(listings, kMostReservedEntries));
  rowOfIncident_.reserve(std::min(listings, kMostReservedEntries));
}

std::optional<std::size_t> IncidentRows::find(std::uint64_t muid) const {
  const auto row = rowOfIncident_.find(muid);
  return row == rowOfIncident_.end() ? std::nullopt : std::optional(row->second);
}

void IncidentRows::add(const SharedIncident& incident, SharedTransitItem item, const TransitLineItem& line) {
  rowOfIncident_.emplace(incident->muid(), items_.size());
  itemToLinesMap_[item.get()].push_back(line);
  firstLines_.push_back(&line);
  incidents_.push_back(incident);
  items_.push_back(std::move(item));
}

void IncidentRows::addLine(std::size_t row, const TransitLineItem& line) {
  itemToLinesMap_.at(items_[row].get()).push_back(line);
}

IncidentsToLineMapping IncidentRows::incidentsToLineMapping() const {
  IncidentsToLineMapping mapping;
  mapping.reserve(incidents_.size());
  for (std::size_t row = 0; row < incidents_.size(); ++row)
    mapping.emplace(incidents_[row]->muid(), firstLines_[row]);
  return mapping;
}

}  // namespace linewatch
