#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "activity/user_activity_data.h"
#include "list/item_to_lines_map.h"
#include "list/transit_incident_filter.h"
#include "list/transit_item_data_source_builder.h"

namespace linewatch {

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
  /// What every row of one line shares: its artwork, and what opens it (absent until it is first asked for,
  /// null when it cannot be made).
  struct LineProducts {
    const TransitLineItem* line = nullptr;
    std::shared_ptr<const RVConfiguredArtwork> artwork;
    std::optional<std::shared_ptr<const RVUserActivityData>> activityData;
  };

  std::shared_ptr<const RVTransitListItem> _buildTransitListItem();
  std::shared_ptr<const RVTransitListItem> noFavoritesList();
  Rows collectRows();
  bool addRowOrLine(const TransitLineItem& line, std::size_t index, Rows& rows);
  TransitItems expandedItems(Rows rows) const;
  void record(const Rows& rows) const;

  SharedTransitItem _itemForIncidentAtIndex(std::size_t index, const TransitLineItem& line);
  /// The products of the line whose rows are being made; made with its first row.
  LineProducts& productsOfLine(const TransitLineItem& line);
  std::shared_ptr<const RVUserActivityData> _userActivityDataForLineItem(const TransitLineItem& line);

  SharedTransitItem _allClearItem() const;
  std::string _allClearSecondaryText() const;
  static SharedTransitItem _clearServiceItemForLines(std::size_t lineCount);
  static std::string _clearServiceSecondaryTextForLines(std::size_t lineCount);
  static std::shared_ptr<const RVOpenable> _urlForFavorites();

  void applyRowLimit(TransitItems& items, bool endsWithGoodService, const Rows& rows) const;

  // Incidents that several lines share.
  void _updateItemsAffectingSeveralLines(TransitItems& items, ItemToLinesMap& itemToLinesMap) const;
  SharedTransitItem itemNamingLines(const RVTransitItem& item, const LinesOfRow& lines) const;
  std::shared_ptr<const RVConfiguredArtwork> artworkOfLines(const LinesOfRow& lines) const;
  static std::optional<std::string> _prependLineNames(const LinesOfRow& lines,
                                                      const std::optional<std::string>& text);

  // Rows that stand for several incidents.
  static std::shared_ptr<const RVTransitSummaryItem> _summaryItemForIncidents(
      const TransitIncidents& incidents, const ItemToLinesMap& itemToLinesMap);
  static std::shared_ptr<const RVUserActivityData> _activityDataForIncidents(
      const TransitIncidents& incidents);
  static SharedTransitItem _incidentsOverflowItemForIncidents(
      const TransitIncidents& incidents, std::span<const TransitLineItem* const> linesOfIncidents);
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
