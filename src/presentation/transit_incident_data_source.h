#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "analytics/transit_incidents_analytics_delegate.h"
#include "incidents/result.h"
#include "list/transit_list_item.h"
#include "platform/extension_context.h"
#include "ui/table_view.h"

namespace linewatch {

class ArtworkDataSourceCache;
struct ArtworkWidthCalculatorSizeParameter;
class RVTransitIncidentDataSource;
class RVTransitItemArtworkColumnCalculator;

/// Hears what happens to the rows. Main thread.
class RVTransitIncidentDataSourceDelegate {
 public:
  virtual ~RVTransitIncidentDataSourceDelegate() = default;

  /// What the table shows, or its geometry, has changed.
  virtual void dataSourceDidUpdateContent(RVTransitIncidentDataSource& dataSource) = 0;
  /// The user has tapped a row that opens something.
  virtual void dataSourceDidSelectOpenableItem(RVTransitIncidentDataSource& dataSource,
                                               const std::shared_ptr<const RVOpenable>& item,
                                               const ui::IndexPath& atIndexPath) = 0;
};

/// Lays the list out as the rows of a table: the summary while compact, a row an item while expanded, the
/// artwork of all of them fitted into one column. Main thread.
class RVTransitIncidentDataSource final : public ui::TableViewDataSource,
                                          public ui::TableViewDelegate,
                                          public std::enable_shared_from_this<RVTransitIncidentDataSource> {
 public:
  using Analytics = std::shared_ptr<RVTransitIncidentsAnalyticsDelegate>;

  /// Shows the list of the result; without one, that of a user without favourite lines. `expanded` is refused
  /// when the list has no rows for it. Widths and heights are points.
  RVTransitIncidentDataSource(std::shared_ptr<RVResult> transitLineItemsResult, bool expanded,
                              std::shared_ptr<ArtworkDataSourceCache> artworkCache,
                              std::uint64_t maxNumberOfRows, double availableWidth);
  ~RVTransitIncidentDataSource() override;

  /// Makes this the data source and the delegate of the table, which keep it weakly.
  void configureTableView(ui::TableView& tableView);

  /// Known weakly.
  void setDelegate(std::weak_ptr<RVTransitIncidentDataSourceDelegate> delegate) {
    delegate_ = std::move(delegate);
  }
  std::shared_ptr<RVTransitIncidentDataSourceDelegate> delegate() const { return delegate_.lock(); }

  // Each of these tells the delegate at most once, and only of a real change, save where it says more.

  /// The very object that is held already is ignored. `captureAnalytics` may be null.
  void updateTransitLineItemResult(std::shared_ptr<RVResult> result, const Analytics& captureAnalytics);
  /// Builds the list again from the result that is held, as of now.
  void recalculateDataSourceItemsWithAnalytics(const Analytics& analytics);
  /// The list may be null: nothing is shown then.
  void setListItem(std::shared_ptr<const RVTransitListItem> listItem);
  /// A new limit tells the delegate only when it makes another list, whatever the height.
  void setRowHeight(double rowHeight, std::uint64_t maxNumberOfRows);
  /// Tells the delegate whenever the other state is asked for, also when it is refused.
  void setExpanded(bool expanded);
  void setAvailableWidth(double availableWidth);

  /// As wide as `maxSize`, and as high as the rows of the present state.
  Size preferredContentSizeForExpanded(bool expanded, const Size& maxSize) const;

  const std::shared_ptr<const RVTransitListItem>& listItem() const { return listItem_; }
  bool isExpanded() const { return expanded_; }
  const std::shared_ptr<RVResult>& transitLineItemResult() const { return transitLineItemResult_; }
  double availableWidth() const { return availableWidth_; }
  double rowHeight() const { return rowHeight_; }
  std::uint64_t maxNumberOfRows() const { return maxNumberOfRows_; }
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache() const { return artworkCache_; }
  void setArtworkCache(std::shared_ptr<ArtworkDataSourceCache> cache) { artworkCache_ = std::move(cache); }
  /// The rows with their artwork as large as the column allows.
  const TransitItems& shieldAdjustedExpandedItems() const { return *shieldAdjustedExpandedItems_; }
  const SummaryItem& shieldAjustedSummaryItem() const { return *shieldAjustedSummaryItem_; }
  double artworkColumnWidth() const { return artworkColumnWidth_; }

  // What the table asks.

  std::size_t numberOfSectionsInTableView(ui::TableView& tableView) override;
  std::size_t tableViewNumberOfRowsInSection(ui::TableView& tableView, std::size_t section) override;
  std::shared_ptr<ui::TableViewCell> tableViewCellForRowAtIndexPath(ui::TableView& tableView,
                                                                    const ui::IndexPath& indexPath) override;
  double tableViewEstimatedHeightForRowAtIndexPath(ui::TableView& tableView,
                                                   const ui::IndexPath& indexPath) override;
  bool tableViewShouldHighlightRowAtIndexPath(ui::TableView& tableView,
                                              const ui::IndexPath& indexPath) override;
  void tableViewDidSelectRowAtIndexPath(ui::TableView& tableView, const ui::IndexPath& indexPath) override;

  /// The row as shown; none where there is no such row.
  SummaryItem _itemAtIndexPath(const ui::IndexPath& indexPath) const;

 private:
  std::shared_ptr<const RVTransitListItem> builtListItem(const Analytics& analytics) const;
  static bool _sanatizedExpandedValue(bool expanded, const RVTransitListItem* forListItem);
  void _updateAdjustedShieldItemsAndColumnWidth();
  void dropAdjustedItems();
  TransitItems fittedIntoColumn(const TransitItems& items);
  SummaryItem summaryFittedIntoColumn();
  ArtworkWidthCalculatorSizeParameter _sizeParameters() const;
  RVTransitItemArtworkColumnCalculator& artworkColumnCalculator();
  std::size_t _numberOfRowInFirstSectionForExpandedState(bool expanded) const;
  std::shared_ptr<const RVOpenable> _openableItemAtIndexPath(const ui::IndexPath& indexPath) const;
  void notifyDelegate();

  double rowHeight_;
  std::uint64_t maxNumberOfRows_;
  bool expanded_ = false;
  /// Absent only while they are to be fitted anew.
  std::optional<TransitItems> shieldAdjustedExpandedItems_;
  std::optional<SummaryItem> shieldAjustedSummaryItem_;
  std::shared_ptr<RVResult> transitLineItemResult_;
  double availableWidth_;
  std::shared_ptr<const RVTransitListItem> listItem_;
  std::shared_ptr<ArtworkDataSourceCache> artworkCache_;
  std::weak_ptr<RVTransitIncidentDataSourceDelegate> delegate_;
  double artworkColumnWidth_ = 0;
  std::unique_ptr<RVTransitItemArtworkColumnCalculator> artworkColumnCalculator_;
};

}  // namespace linewatch
