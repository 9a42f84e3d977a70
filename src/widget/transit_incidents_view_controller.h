#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "analytics/transit_incidents_analytics_delegate.h"
#include "incidents/transit_incident_fetcher_request.h"
#include "incidents/transit_incident_updater.h"
#include "platform/extension_context.h"
#include "platform/widget_providing.h"
#include "presentation/transit_incident_data_source.h"
#include "ui/table_view.h"
#include "ui/view_controller.h"
#include "widget/transit_incident_view_controller_state.h"

namespace linewatch {

class ArtworkDataSourceCache;

/// The widget's principal controller, which a host makes, shows and asks for updates. Main thread.
///
/// It fetches the favourite lines with their incidents, one fetch at a time, and shows them in a table that
/// fills its view. It keeps the list current while it is visible, restores the last list at the next start,
/// opens the tapped row and records analytics.
class RVTransitIncidentsViewController final
    : public ui::ViewController,
      public WidgetProviding,
      public RVTransitIncidentUpdaterObserver,
      public RVTransitIncidentDataSourceDelegate,
      public std::enable_shared_from_this<RVTransitIncidentsViewController> {
 public:
  /// Without a context the controller is not hosted and shows the list without a row limit. `viewSize` is the
  /// view's initial size.
  static std::shared_ptr<RVTransitIncidentsViewController> make(std::shared_ptr<ExtensionContext> context,
                                                                const Size& viewSize);
  ~RVTransitIncidentsViewController() override;

  std::shared_ptr<ExtensionContext> extensionContext() const override { return extensionContext_; }

  // Called by the host.

  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;
  void viewDidAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;
  void viewDidDisappear(bool animated) override;
  void viewWillTransitionToSize(const Size& size) override;
  void didReceiveMemoryWarning() override;
  void widgetPerformUpdateWithCompletionHandler(
      std::function<void(WidgetUpdateResult result)> completionHandler) override;
  void widgetActiveDisplayModeDidChange(WidgetDisplayMode activeDisplayMode,
                                        const Size& withMaximumSize) override;

  // Called by the updater and the data source.

  void transitIncidentUpdaterDateExpired(RVTransitIncidentUpdater& updater, Date date) override;
  void transitIncidentUpdaterNeedsRefresh(RVTransitIncidentUpdater& updater) override;
  void dataSourceDidUpdateContent(RVTransitIncidentDataSource& dataSource) override;
  void dataSourceDidSelectOpenableItem(RVTransitIncidentDataSource& dataSource,
                                       const std::shared_ptr<const RVOpenable>& item,
                                       const ui::IndexPath& atIndexPath) override;

  /// True from `viewWillAppear` until `viewWillDisappear`.
  bool isVisible() const { return visible_; }
  /// Both null until the view is loaded.
  const std::shared_ptr<ui::TableView>& tableView() const { return tableView_; }
  const std::shared_ptr<RVTransitIncidentDataSource>& dataSource() const { return dataSource_; }
  /// Null unless the widget is visible and the last fetch gave line items.
  const std::shared_ptr<RVTransitIncidentUpdater>& updater() const { return updater_; }
  /// The fetch in flight, or null.
  const std::shared_ptr<RVTransitIncidentFetcherRequest>& request() const { return request_; }
  /// The handler is called at the start and at the end of every fetch, also of a fetch that the host did not
  /// ask for.
  void setRequestHandler(std::function<void()> handler) { requestHandler_ = std::move(handler); }
  /// The result of the last fetch; null before the first. A restored list is not stored here.
  const std::shared_ptr<RVResult>& transitLineItemResult() const { return transitLineItemResult_; }
  const std::shared_ptr<RVTransitIncidentsAnalyticsDelegate>& analyticsDelegate() const {
    return analyticsDelegate_;
  }
  /// Made on first use.
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache();

 protected:
  std::shared_ptr<ui::View> loadView() override;

 private:
  using UpdateHandler = std::function<void(WidgetUpdateResult result)>;

  RVTransitIncidentsViewController(std::shared_ptr<ExtensionContext> context, const Size& viewSize);

  void _createSubviews();
  void _fetchUpdatesWithCompletitionHandler(UpdateHandler completionHandler);
  void setRequest(std::shared_ptr<RVTransitIncidentFetcherRequest> request);
  void setTransitLineItemResult(const std::shared_ptr<RVResult>& result);
  void _createUpdaterForTransitLineItemsIfVisible();
  void setUpdater(std::shared_ptr<RVTransitIncidentUpdater> updater);
  void _contentSizeCategoryDidChange();
  std::uint64_t _maxNumberOfRowsFromAvailableWidgetSize() const;
  double _availablWidth();
  std::shared_ptr<const RVTransitIncidentViewControllerState> _loadSavedUIData() const;
  void _saveUIData() const;

  /// Zero when the controller is not hosted.
  Size maximumSizeForDisplayMode(WidgetDisplayMode mode) const;
  WidgetDisplayMode activeDisplayMode() const;
  void tellHostLargestAvailableDisplayMode(const RVTransitIncidentDataSource& dataSource);

  std::shared_ptr<ExtensionContext> extensionContext_;
  Size viewSize_;
  bool visible_ = false;
  std::shared_ptr<ui::TableView> tableView_;
  std::shared_ptr<RVTransitIncidentDataSource> dataSource_;
  std::shared_ptr<RVTransitIncidentUpdater> updater_;
  std::shared_ptr<ArtworkDataSourceCache> artworkCache_;
  std::shared_ptr<RVTransitIncidentFetcherRequest> request_;
  std::function<void()> requestHandler_;
  std::shared_ptr<RVResult> transitLineItemResult_;
  std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analyticsDelegate_;
};

}  // namespace linewatch
