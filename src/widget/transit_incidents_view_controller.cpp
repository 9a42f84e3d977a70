#include "widget/transit_incidents_view_controller.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "incidents/transit_incident_fetcher.h"
#include "list/transit_item_data_source_builder.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "presentation/memory_constrained_artwork_cache.h"
#include "ui/artwork_cache.h"
#include "ui/notification_center.h"
#include "widget/saved_ui_data.h"
#include "widget/widget_display_mode.h"

namespace linewatch {

namespace {

constexpr Seconds kRefreshInterval{1800};
constexpr std::size_t kListSection = 0;

/// Ends the process: a call from another thread is a programming error.
void requireMainThread() {
  if (platform().mainLoop().isMainThread()) return;
  std::fputs("The widget was asked to fetch on another thread than the main one.\n", stderr);
  std::abort();
}

/// A result without an error is reported as new data, even when the list did not change.
WidgetUpdateResult updateResultOf(const RVResult& result) {
  return result.error() ? WidgetUpdateResult::failed : WidgetUpdateResult::newData;
}

}  // namespace

std::shared_ptr<RVTransitIncidentsViewController> RVTransitIncidentsViewController::make(
    std::shared_ptr<ExtensionContext> context, const Size& viewSize) {
  std::shared_ptr<RVTransitIncidentsViewController> controller(
      new RVTransitIncidentsViewController(std::move(context), viewSize));
  controller->analyticsDelegate_ = std::make_shared<RVTransitIncidentsAnalyticsDelegate>(controller);
  return controller;
}

RVTransitIncidentsViewController::RVTransitIncidentsViewController(std::shared_ptr<ExtensionContext> context,
                                                                   const Size& viewSize)
    : extensionContext_(std::move(context)), viewSize_(viewSize) {}

// The main loop keeps a running updater alive, so it must be invalidated.
RVTransitIncidentsViewController::~RVTransitIncidentsViewController() { setUpdater(nullptr); }

// ---- View lifecycle ----

std::shared_ptr<ui::View> RVTransitIncidentsViewController::loadView() {
  return std::make_shared<ui::View>(ui::Rect{0, 0, viewSize_.width, viewSize_.height});
}

void RVTransitIncidentsViewController::viewDidLoad() {
  ViewController::viewDidLoad();
  _createSubviews();
}

void RVTransitIncidentsViewController::viewWillAppear(bool animated) {
  ViewController::viewWillAppear(animated);
  view();  // loads the view when it is not loaded yet
  visible_ = true;
  _createUpdaterForTransitLineItemsIfVisible();
  _contentSizeCategoryDidChange();
  platform().notificationCenter().addObserver(shared_from_this(), ui::kTextSizeDidChangeNotification,
                                              [this] { _contentSizeCategoryDidChange(); });
  tellHostLargestAvailableDisplayMode(*dataSource_);
  _fetchUpdatesWithCompletitionHandler(nullptr);
}

void RVTransitIncidentsViewController::viewDidAppear(bool animated) {
  ViewController::viewDidAppear(animated);
  analyticsDelegate_->startSessionIfNeeded();
}

void RVTransitIncidentsViewController::viewWillDisappear(bool animated) {
  _saveUIData();
  platform().notificationCenter().removeObserver(*this);
  setUpdater(nullptr);
  visible_ = false;
  ViewController::viewWillDisappear(animated);
}

void RVTransitIncidentsViewController::viewDidDisappear(bool animated) {
  analyticsDelegate_->recordCloseSessionSwiping();
  ViewController::viewDidDisappear(animated);
}

void RVTransitIncidentsViewController::viewWillTransitionToSize(const Size& size) {
  if (dataSource_) dataSource_->setAvailableWidth(size.width);
}

void RVTransitIncidentsViewController::didReceiveMemoryWarning() {
  ViewController::didReceiveMemoryWarning();
  artworkCache()->purge();
}

void RVTransitIncidentsViewController::_createSubviews() {
  tableView_ = std::make_shared<ui::TableView>(view().bounds());
  tableView_->setResizesWithSuperview(true, true);
  tableView_->setSeparatorEffect(ui::VibrancyEffect::tertiary);
  const auto state = _loadSavedUIData();
  dataSource_ = std::make_shared<RVTransitIncidentDataSource>(
      state ? state->lineItemsResult() : nullptr, state && state->expanded(), artworkCache(),
      _maxNumberOfRowsFromAvailableWidgetSize(), _availablWidth());
  dataSource_->configureTableView(*tableView_);
  dataSource_->setDelegate(shared_from_this());
  view().addSubview(tableView_);
}

// ---- Fetching ----

void RVTransitIncidentsViewController::widgetPerformUpdateWithCompletionHandler(
    UpdateHandler completionHandler) {
  _fetchUpdatesWithCompletitionHandler(std::move(completionHandler));
}

void RVTransitIncidentsViewController::_fetchUpdatesWithCompletitionHandler(UpdateHandler completionHandler) {
  requireMainThread();
  if (request_) {
    if (!completionHandler) return;
    return request_->addHandler(
        [handler = std::move(completionHandler)](const std::shared_ptr<RVResult>& result) {
          handler(updateResultOf(*result));
        });
  }
  setRequest(RVTransitIncidentFetcher::make()->fetchFavoriteLinesTransitIncidentsWithCompletionHandler(
      [weakSelf = weak_from_this(),
       handler = std::move(completionHandler)](const std::shared_ptr<RVResult>& result) {
        if (const auto self = weakSelf.lock()) self->setTransitLineItemResult(result);
        if (handler) handler(updateResultOf(*result));
        if (const auto self = weakSelf.lock()) self->setRequest(nullptr);
      }));
}

void RVTransitIncidentsViewController::setRequest(std::shared_ptr<RVTransitIncidentFetcherRequest> request) {
  request_ = std::move(request);
  if (requestHandler_) requestHandler_();
}

void RVTransitIncidentsViewController::setTransitLineItemResult(const std::shared_ptr<RVResult>& result) {
  transitLineItemResult_ = result;
  _createUpdaterForTransitLineItemsIfVisible();
  if (dataSource_) dataSource_->updateTransitLineItemResult(result, analyticsDelegate_);
}

// ---- Refresh ----

void RVTransitIncidentsViewController::_createUpdaterForTransitLineItemsIfVisible() {
  const auto lineItems = transitLineItemResult_ ? transitLineItemResult_->successObject() : nullptr;
  if (!visible_ || !lineItems) return setUpdater(nullptr);
  setUpdater(RVTransitIncidentUpdater::make(*lineItems, kRefreshInterval));
  updater_->setObserver(weak_from_this());
}

void RVTransitIncidentsViewController::setUpdater(std::shared_ptr<RVTransitIncidentUpdater> updater) {
  if (updater == updater_) return;
  if (updater_) updater_->invalidate();
  updater_ = std::move(updater);
}

void RVTransitIncidentsViewController::transitIncidentUpdaterDateExpired(RVTransitIncidentUpdater&, Date) {
  if (visible_) dataSource_->recalculateDataSourceItemsWithAnalytics(analyticsDelegate_);
}

void RVTransitIncidentsViewController::transitIncidentUpdaterNeedsRefresh(RVTransitIncidentUpdater&) {
  if (visible_) _fetchUpdatesWithCompletitionHandler(nullptr);
}

// ---- Display modes and sizes ----

void RVTransitIncidentsViewController::widgetActiveDisplayModeDidChange(WidgetDisplayMode mode,
                                                                        const Size& /*withMaximumSize*/) {
  analyticsDelegate_->recordWidgetChangeDisplayMode(mode);
  if (dataSource_) dataSource_->setExpanded(activeDisplayMode() == WidgetDisplayMode::expanded);
}

void RVTransitIncidentsViewController::dataSourceDidUpdateContent(RVTransitIncidentDataSource& dataSource) {
  tellHostLargestAvailableDisplayMode(dataSource);
  const Size maximumSize = maximumSizeForDisplayMode(activeDisplayMode());
  const Size size = dataSource.preferredContentSizeForExpanded(dataSource.isExpanded(), maximumSize);
  tableView_->reloadSection(kListSection, ui::RowAnimation::automatic);
  setPreferredContentSize(size);
}

void RVTransitIncidentsViewController::_contentSizeCategoryDidChange() {
  dataSource_->setRowHeight(maximumSizeForDisplayMode(WidgetDisplayMode::compact).height,
                            _maxNumberOfRowsFromAvailableWidgetSize());
}

std::uint64_t RVTransitIncidentsViewController::_maxNumberOfRowsFromAvailableWidgetSize() const {
  const double compactHeight = maximumSizeForDisplayMode(WidgetDisplayMode::compact).height;
  const double expandedHeight = maximumSizeForDisplayMode(WidgetDisplayMode::expanded).height;
  if (!(compactHeight > 0)) return kNoRowLimit;
  const double rows = std::floor(expandedHeight / compactHeight);
  if (!(rows >= 1) || rows >= static_cast<double>(kNoRowLimit)) return kNoRowLimit;
  return static_cast<std::uint64_t>(rows);
}

double RVTransitIncidentsViewController::_availablWidth() {
  return extensionContext_ ? maximumSizeForDisplayMode(WidgetDisplayMode::compact).width
                           : view().bounds().width;
}

Size RVTransitIncidentsViewController::maximumSizeForDisplayMode(WidgetDisplayMode mode) const {
  return extensionContext_ ? extensionContext_->maximumSizeForDisplayMode(mode) : Size{};
}

WidgetDisplayMode RVTransitIncidentsViewController::activeDisplayMode() const {
  return extensionContext_ ? extensionContext_->activeDisplayMode() : WidgetDisplayMode::compact;
}

void RVTransitIncidentsViewController::tellHostLargestAvailableDisplayMode(
    const RVTransitIncidentDataSource& dataSource) {
  if (!extensionContext_) return;
  extensionContext_->setLargestAvailableDisplayMode(
      widgetLargestAvailableDisplayMode(dataSource.listItem().get()));
}

// ---- Opening ----

void RVTransitIncidentsViewController::dataSourceDidSelectOpenableItem(
    RVTransitIncidentDataSource&, const std::shared_ptr<const RVOpenable>& item,
    const ui::IndexPath& atIndexPath) {
  item->openInContext(shared_from_this(), [analytics = analyticsDelegate_, atIndexPath](
                                              bool success, const std::optional<Error>&) {
    if (success) analytics->recordOpenItemAtIndexPath(atIndexPath);
  });
}

// ---- Saved state ----

std::shared_ptr<const RVTransitIncidentViewControllerState>
RVTransitIncidentsViewController::_loadSavedUIData() const {
  return loadSavedUIData();
}

void RVTransitIncidentsViewController::_saveUIData() const {
  if (!dataSource_) return;
  saveUIData(std::make_shared<const RVTransitIncidentViewControllerState>(
      dataSource_->transitLineItemResult(), dataSource_->isExpanded()));
}

const std::shared_ptr<ArtworkDataSourceCache>& RVTransitIncidentsViewController::artworkCache() {
  if (!artworkCache_) artworkCache_ = memoryConstrainedImageViewCache();
  return artworkCache_;
}

}  // namespace linewatch
