#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

#include "list/localized_text.h"
#include "list/row_artwork.h"
#include "list/transit_artwork_equality.h"
#include "list/transit_incidents_data_source_builder.h"
#include "platform/companion_application.h"
#include "platform/platform.h"
#include "platform/transit_storage_incident.h"
#include "shared/rova_map.h"
#include "wire/keyed_archiver.h"

namespace linewatch {

namespace {

struct ArtworkHash {
  std::size_t operator()(const SharedArtwork& artwork) const { return hash(*artwork); }
};
struct ArtworksEqual {
  bool operator()(const SharedArtwork& a, const SharedArtwork& b) const {
    return TransitArtworkDataSourceIsEqual(a.get(), b.get());
  }
};

/// Collects artworks without duplicates, in the order in which they are first added.
class DistinctArtworks {
 public:
  void add(const SharedArtwork& artwork) {
    // Successive rows often belong to one line, so the last artwork is checked before the hash set.
    if (!artwork || (!artworks_.empty() && artwork == artworks_.back())) return;
    if (known_.insert(artwork).second) artworks_.push_back(artwork);
  }
  TransitArtworks take() { return std::move(artworks_); }

 private:
  TransitArtworks artworks_;
  std::unordered_set<SharedArtwork, ArtworkHash, ArtworksEqual> known_;
};

TransitArtworks artworksOfItems(const TransitItems& items, const ItemToLinesMap& itemToLinesMap) {
  DistinctArtworks artworks;
  for (const SharedTransitItem& item : items) {
    const auto entry = itemToLinesMap.find(item.get());
    if (entry == itemToLinesMap.end()) continue;
    for (const TransitLineItem* line : entry->second.all()) artworks.add(artworkForLine(*line));
  }
  return artworks.take();
}

/// The number of distinct lines to which the mapping assigns the incidents.
std::size_t countLines(const TransitIncidents& incidents,
                       const IncidentsToLineMapping& incidentsToLineMapping) {
  std::unordered_set<std::uint64_t> muids;
  const TransitLineItem* last = nullptr;
  for (const SharedIncident& incident : incidents) {
    const auto line = incidentsToLineMapping.find(incident->muid());
    if (line == incidentsToLineMapping.end() || line->second == last) continue;
    last = line->second;
    muids.insert(last->muid());
  }
  return muids.size();
}

}  // namespace

std::shared_ptr<const RVTransitSummaryItem> RVTransitIncidentsDataSourceBuilder::_summaryItemForIncidents(
    const TransitIncidents& incidents, const TransitItems& items, const ItemToLinesMap& itemToLinesMap) {
  return std::make_shared<const RVTransitSummaryItem>(
      kestrowText("LineWatch_Summary_advisory_count", {std::uint64_t{incidents.size()}}),
      artworksOfItems(items, itemToLinesMap), _activityDataForIncidents(incidents));
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
    const TransitIncidents& incidents, const IncidentsToLineMapping& incidentsToLineMapping) {
  return std::make_shared<const RVTransitItem>(
      _advisoriesOverflowTitleForIncidentCount(incidents.size()),
      _advisoriesOverflowSecondaryTextForLineItemsCount(countLines(incidents, incidentsToLineMapping)),
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
