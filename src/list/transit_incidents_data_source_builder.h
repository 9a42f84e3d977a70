#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "activity/user_activity_data.h"
#include "list/incident_rows.h"
#include "list/item_to_lines_map.h"
#include "list/listed_line.h"
#include "list/transit_incident_filter.h"
#include "list/transit_item_data_source_builder.h"

namespace linewatch {

/// Builds the list for the user's lines. Each incident in force has one row, which names the lines when
/// several share the incident. One more row stands for the lines in good service, and one for the incidents
/// beyond the row limit. Time and memory grow in proportion to the number of lines and their incidents.
class RVTransitIncidentsDataSourceBuilder final : public RVTransitItemDataSourceBuilder {
 public:
  /// Rows follow the order of `lineItems`. `maxNumberOfItems` 0 means no limit; `artworkCache` and
  /// `analytics` may be null. Builds nothing yet.
  RVTransitIncidentsDataSourceBuilder(std::shared_ptr<const TransitLineItems> lineItems,
                                      std::uint64_t maxNumberOfItems,
                                      std::shared_ptr<ArtworkDataSourceCache> artworkCache,
                                      std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics);

  std::shared_ptr<const RVTransitListItem> listItem() override;

  const TransitLineItems& lineItems() const { return *lineItems_; }
  std::uint64_t maxNumberOfItems() const { return maxNumberOfItems_; }
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache() const { return artworkCache_; }

  /// Filter and analytics can be replaced until the first call of `listItem`. The builder makes a default
  /// filter when it has none; without analytics nothing is recorded.
  const std::shared_ptr<RVTransitIncidentFilter>& incidentFilter();
  void setIncidentFilter(std::shared_ptr<RVTransitIncidentFilter> filter) {
    incidentFilter_ = std::move(filter);
  }
  const std::shared_ptr<RVTransitIncidentsAnalyticsDelegate>& analytics() const { return analytics_; }
  void setAnalytics(std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics) {
    analytics_ = std::move(analytics);
  }

 private:
  std::shared_ptr<const RVTransitListItem> _buildTransitListItem();
  std::shared_ptr<const RVTransitListItem> listWithoutFavorites() const;
  void record(const IncidentRows& rows) const;

  // Incident rows.
  /// Adds a row for each incident in force that has none yet, and adds the line to the rows of its other
  /// incidents. False when no row was added.
  bool addRowsOfLine(const TransitLineItem& line, IncidentRows& rows);
  SharedTransitItem _itemForIncidentAtIndex(std::size_t index, ListedLine& inLine) const;
  const std::shared_ptr<const RVConfiguredArtwork>& artworkOfRows(ListedLine& line) const;
  /// Shares the session, so call this once for each row.
  static const std::shared_ptr<const RVUserActivityData>& activityDataOfNextRow(ListedLine& line);
  static std::shared_ptr<const RVUserActivityData> _userActivityDataForLineItem(const TransitLineItem& line);

  // Rows of good service.
  SharedTransitItem _allClearItem() const;
  std::string _allClearSecondaryText() const;
  static SharedTransitItem _clearServiceItemForLines(const Lines& lines);
  static std::string _clearServiceSecondaryTextForLines(const Lines& lines);
  static std::shared_ptr<const RVOpenable> _urlForFavorites();

  void applyRowLimit(TransitItems& expandedItems, bool endsWithGoodService, const IncidentRows& rows) const;

  // Incidents that several lines share.
  void _updateItemsAffectingSeveralLines(TransitItems& items, ItemToLinesMap& itemToLinesMap) const;
  SharedTransitItem itemWithLineNames(const RVTransitItem& item, LineSpan lines) const;
  std::shared_ptr<const RVConfiguredArtwork> artworkOfLines(LineSpan lines) const;
  /// The text with the names of the lines in front. Absent only when `toText` is absent and no line has a
  /// name.
  static OptionalText _prependLineNames(LineSpan lines, const OptionalText& toText);

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
};

}  // namespace linewatch
