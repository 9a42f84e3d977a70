#include <unordered_set>
#include <utility>

#include "list/localized_text.h"
#include "list/row_artwork.h"
#include "list/transit_artwork_equality.h"
#include "list/transit_incidents_data_source_builder.h"
#include "platform/companion_application.h"
#include "platform/platform.h"
#include "platform/transit_storage_incident.h"
#include "shared/hash_index.h"
#include "shared/rova_map.h"
#include "wire/keyed_archiver.h"

namespace linewatch {

namespace {

/// Gathers artworks, each distinct one once, in the order in which they first come.
class DistinctArtworks {
 public:
  void add(const SharedArtwork& artwork) {
    // Lines often come in runs that share one description.
    if (!artwork || (!artworks_.empty() && artwork == artworks_.back())) return;
    const auto search = seen_.search(hash(*artwork), [&](std::uint32_t place) {
      return TransitArtworkDataSourceIsEqual(artwork.get(), artworks_[place].get());
    });
    if (search.place()) return;
    seen_.enter(search, static_cast<std::uint32_t>(artworks_.size()));
    artworks_.push_back(artwork);
  }
  TransitArtworks take() { return std::move(artworks_); }

 private:
  TransitArtworks artworks_;
  HashIndex seen_;
};

/// In the order of the rows, and of the lines that list each. Rows that share an entry add nothing after the
/// first.
TransitArtworks artworksOfRows(const ItemToLinesMap& itemToLinesMap, std::size_t rowCount) {
  DistinctArtworks artworks;
  std::vector<bool> isDone(itemToLinesMap.entryCount());
  for (std::size_t row = 0; row < rowCount; ++row) {
    const std::size_t entry = itemToLinesMap.entryOfRow(row);
    if (isDone[entry]) continue;
    isDone[entry] = true;
    itemToLinesMap.forEachLine(
        entry, [&](const TransitLineItem& line) { artworks.add(artworkStandingForLine(line)); });
  }
  return artworks.take();
}

std::size_t countLines(std::span<const TransitLineItem* const> lines) {
  std::unordered_set<std::uint64_t> muids;
  const TransitLineItem* last = nullptr;
  for (const TransitLineItem* line : lines) {
    if (line != last) muids.insert(line->muid());
    last = line;
  }
  return muids.size();
}

}  // namespace

std::shared_ptr<const RVTransitSummaryItem> RVTransitIncidentsDataSourceBuilder::_summaryItemForIncidents(
    const TransitIncidents& incidents, const ItemToLinesMap& itemToLinesMap) {
  return std::make_shared<const RVTransitSummaryItem>(
      kestrowText("LineWatch_Summary_advisory_count", {std::uint64_t{incidents.size()}}),
      artworksOfRows(itemToLinesMap, incidents.size()), _activityDataForIncidents(incidents));
}

std::shared_ptr<const RVUserActivityData> RVTransitIncidentsDataSourceBuilder::_activityDataForIncidents(
    const TransitIncidents& incidents) {
  auto storageIncidents = RovaMap(incidents, [](const SharedIncident& incident, std::size_t) {
    return std::optional(ArchivedObject{TransitStorageIncident::of(incident)});
  });
  auto bytes =
      platform().keyedArchiver().archivedData({std::move(storageIncidents)}, /*requiringSecureCoding=*/false);
  if (!bytes) return nullptr;
  return RVUserActivityData::make(std::string(kCompanionReverseDomainPrefix) + "Rova.Transit.IncidentList",
                                  Dictionary{{kIncidentListKey, *std::move(bytes)}});
}

SharedTransitItem RVTransitIncidentsDataSourceBuilder::_incidentsOverflowItemForIncidents(
    const TransitIncidents& incidents, std::span<const TransitLineItem* const> linesOfIncidents) {
  return std::make_shared<const RVTransitItem>(
      _advisoriesOverflowTitleForIncidentCount(incidents.size()),
      _advisoriesOverflowSecondaryTextForLineItemsCount(countLines(linesOfIncidents)),
      imageArtwork("advisories-v2", kFaintAlpha), /*displayArtwork=*/true,
      _activityDataForIncidents(incidents));
}

std::string RVTransitIncidentsDataSourceBuilder::_advisoriesOverflowTitleForIncidentCount(
    std::uint64_t count) {
  return kestrowText("LineWatch_advisory_overflow_title", {count});
}

std::string RVTransitIncidentsDataSourceBuilder::_advisoriesOverflowSecondaryTextForLineItemsCount(
    std::uint64_t count) {
  return kestrowText("LineWatch_AdvisoriesOverflow_SecondaryText", {count});
}

}  // namespace linewatch
