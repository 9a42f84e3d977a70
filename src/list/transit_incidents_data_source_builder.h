#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "activity/user_activity_data.h"
#include "list/transit_incident_filter.h"
#include "list/transit_item_data_source_builder.h"
#include "platform/value.h"

namespace linewatch {

/// Equality and hash of rows for look-up tables: by value.
struct TransitItemIdentity {
  bool operator()(const SharedTransitItem& a, const SharedTransitItem& b) const { return a->isEqual(*b); }
  std::size_t operator()(const SharedTransitItem& item) const { return item->hash(); }
};

/// For each row, every line that lists its incident, in the order of the lines. Rows that are equal share one
/// entry.
using ItemToLinesMap =
    std::unordered_map<SharedTransitItem, TransitLineItems, TransitItemIdentity, TransitItemIdentity>;

/// Makes the list of a user's lines: a row for each incident in force, the lines that share one named in it,
/// a row for the lines that run well, and a row for what goes beyond the row limit. Time and memory grow in
/// proportion to the lines and the incidents that they list.
class RVTransitIncidentsDataSourceBuilder final : public RVTransitItemDataSourceBuilder {
 public:
  /// `lineItems` in the order of the rows to be. Builds nothing yet.
  RVTransitIncidentsDataSourceBuilder(std::shared_ptr<const TransitLineItems> lineItems,
                                      std::uint64_t maxNumberOfItems,
                                      std::shared_ptr<ArtworkDataSourceCache> artworkCache,
                                      std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics);

  std::shared_ptr<const RVTransitListItem> listItem() override;

  const TransitLineItems& lineItems() const { return *lineItems_; }
  std::uint64_t maxNumberOfItems() const { return maxNumberOfItems_; }
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache() const { return artworkCache_; }

  /// Filter and analytics can be replaced until the list is first asked for. Without a filter of its own the
  /// builder makes the usual one; without analytics nothing is recorded.
  const std::shared_ptr<RVTransitIncidentFilter>& incidentFilter();
  void setIncidentFilter(std::shared_ptr<RVTransitIncidentFilter> filter) {
    incidentFilter_ = std::move(filter);
  }
  const std::shared_ptr<RVTransitIncidentsAnalyticsDelegate>& analytics() const { return analytics_; }
  void setAnalytics(std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics) {
    analytics_ = std::move(analytics);
  }

 private:
  /// What one build gathers while it walks the lines.
  struct Rows;
  /// What every row of one line shares: its artwork, and the bytes that open it (none when they cannot be
  /// made).
  struct LineProducts {
    const TransitLineItem* line = nullptr;
    std::shared_ptr<const RVConfiguredArtwork> artwork;
    std::optional<Bytes> activityBytes;
  };

  std::shared_ptr<const RVTransitListItem> _buildTransitListItem();
  std::shared_ptr<const RVTransitListItem> noFavoritesList();
  Rows collectRows();
  bool addRowOrLine(const SharedLineItem& line, std::size_t index, Rows& rows);
  TransitItems expandedItems(const Rows& rows) const;
  void record(const TransitIncidents& incidents, const IncidentsToLineMapping& incidentToLine);

  SharedTransitItem _itemForIncidentAtIndex(std::size_t index, const TransitLineItem& line);
  const LineProducts& productsOfLine(const TransitLineItem& line);
  std::shared_ptr<const RVUserActivityData> _userActivityDataForLineItem(const TransitLineItem& line);

  SharedTransitItem _allClearItem() const;
  std::string _allClearSecondaryText() const;
  static SharedTransitItem _clearServiceItemForLines(const TransitLineItems& lines);
  static std::string _clearServiceSecondaryTextForLines(const TransitLineItems& lines);
  static std::shared_ptr<const RVOpenable> _urlForFavorites();

  void applyRowLimit(TransitItems& items, bool endsWithGoodService, const Rows& rows) const;

  // Incidents that several lines share.
  void _updateItemsAffectingSeveralLines(TransitItems& items, ItemToLinesMap& itemToLinesMap) const;
  SharedTransitItem itemNamingLines(const RVTransitItem& item, const TransitLineItems& lines) const;
  std::shared_ptr<const RVConfiguredArtwork> artworkOfLines(const TransitLineItems& lines) const;
  static std::optional<std::string> _prependLineNames(const TransitLineItems& lines,
                                                      const std::optional<std::string>& text);

  // Rows that stand for several incidents.
  static std::shared_ptr<const RVTransitSummaryItem> _summaryItemForIncidents(
      const TransitIncidents& incidents, const TransitItems& items, const ItemToLinesMap& itemToLinesMap);
  static std::shared_ptr<const RVUserActivityData> _activityDataForIncidents(
      const TransitIncidents& incidents);
  static SharedTransitItem _incidentsOverflowItemForIncidents(
      const TransitIncidents& incidents, const IncidentsToLineMapping& incidentsToLineMapping);
  static std::string _advisoriesOverflowTitleForIncidentCount(std::uint64_t count);
  static std::string _advisoriesOverflowSecondaryTextForLineItemsCount(std::uint64_t count);

  std::shared_ptr<const RVTransitListItem> listItem_;
  std::shared_ptr<const TransitLineItems> lineItems_;
  std::uint64_t maxNumberOfItems_;
  std::shared_ptr<ArtworkDataSourceCache> artworkCache_;
  std::shared_ptr<RVTransitIncidentFilter> incidentFilter_;
  std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics_;
  LineProducts currentLine_;
};

}  // namespace linewatch
