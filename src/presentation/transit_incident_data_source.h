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

/// Observes changes of the rows and taps on them. Main thread.
class RVTransitIncidentDataSourceDelegate {
 public:
  virtual ~RVTransitIncidentDataSourceDelegate() = default;

  /// The rows or their geometry have changed.
  virtual void dataSourceDidUpdateContent(RVTransitIncidentDataSource& dataSource) = 0;
  /// The user has tapped a row that opens something.
  virtual void dataSourceDidSelectOpenableItem(RVTransitIncidentDataSource& dataSource,
                                               const std::shared_ptr<const RVOpenable>& item,
                                               const ui::IndexPath& atIndexPath) = 0;
};

/// Shows the list as rows of a table: one row, the summary, while compact; one row per item while expanded.
/// The artwork of all rows is fitted into one column. Main thread.
class RVTransitIncidentDataSource final : public ui::TableViewDataSource,
                                          public ui::TableViewDelegate,
                                          public std::enable_shared_from_this<RVTransitIncidentDataSource> {
 public:
  using Analytics = std::shared_ptr<RVTransitIncidentsAnalyticsDelegate>;

  /// Shows the list of the result; without a result, the list for a user without favourite lines. A list
  /// without expanded items stays compact. Widths and heights are in points.
  RVTransitIncidentDataSource(std::shared_ptr<RVResult> transitLineItemsResult, bool expanded,
                              std::shared_ptr<ArtworkDataSourceCache> artworkCache,
                              std::uint64_t maxNumberOfRows, double availableWidth);
  ~RVTransitIncidentDataSource() override;

  /// Registers the cells and makes this the data source and delegate of the table, which holds it weakly.
  void configureTableView(ui::TableView& tableView);

  /// Held weakly.
  void setDelegate(std::weak_ptr<RVTransitIncidentDataSourceDelegate> delegate) {
    delegate_ = std::move(delegate);
  }
  std::shared_ptr<RVTransitIncidentDataSourceDelegate> delegate() const { return delegate_.lock(); }

  // Each of these calls the delegate at most once, and only after a change unless stated otherwise.

  /// Does nothing when the data source already holds this object. `captureAnalytics` may be null.
  void updateTransitLineItemResult(std::shared_ptr<RVResult> result, const Analytics& captureAnalytics);
  /// Builds the list again from the present result and date.
  void recalculateDataSourceItemsWithAnalytics(const Analytics& analytics);
  /// A null list shows nothing.
  void setListItem(std::shared_ptr<const RVTransitListItem> listItem);
  /// When the limit changes, the delegate is called only if the list changes, even if the height changes too.
  void setRowHeight(double rowHeight, std::uint64_t maxNumberOfRows);
  /// Calls the delegate whenever `expanded` differs from the present state, even if the list cannot expand.
  void setExpanded(bool expanded);
  void setAvailableWidth(double availableWidth);

  /// The width of `maxSize` and the height of the rows in the present state.
  Size preferredContentSizeForExpanded(bool expanded, const Size& maxSize) const;

  const std::shared_ptr<const RVTransitListItem>& listItem() const { return listItem_; }
  bool isExpanded() const { return expanded_; }
  const std::shared_ptr<RVResult>& transitLineItemResult() const { return transitLineItemResult_; }
  double availableWidth() const { return availableWidth_; }
  double rowHeight() const { return rowHeight_; }
  std::uint64_t maxNumberOfRows() const { return maxNumberOfRows_; }
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache() const { return artworkCache_; }
  void setArtworkCache(std::shared_ptr<ArtworkDataSourceCache> cache) { artworkCache_ = std::move(cache); }
  /// The items with their artwork fitted into the column.
  const TransitItems& shieldAdjustedExpandedItems() const { return *shieldAdjustedExpandedItems_; }
  const SummaryItem& shieldAjustedSummaryItem() const { return *shieldAjustedSummaryItem_; }
  double artworkColumnWidth() const { return artworkColumnWidth_; }

  // For the table.

  std::size_t numberOfSectionsInTableView(ui::TableView& tableView) override;
  std::size_t tableViewNumberOfRowsInSection(ui::TableView& tableView, std::size_t section) override;
  std::shared_ptr<ui::TableViewCell> tableViewCellForRowAtIndexPath(ui::TableView& tableView,
                                                                    const ui::IndexPath& indexPath) override;
  double tableViewEstimatedHeightForRowAtIndexPath(ui::TableView& tableView,
                                                   const ui::IndexPath& indexPath) override;
  bool tableViewShouldHighlightRowAtIndexPath(ui::TableView& tableView,
                                              const ui::IndexPath& indexPath) override;
  void tableViewDidSelectRowAtIndexPath(ui::TableView& tableView, const ui::IndexPath& indexPath) override;

  /// The item of a row; none when there is no such row.
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
  /// Absent only while the artwork is being fitted again.
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
