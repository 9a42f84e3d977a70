#include "desktop/window/hosted_widget.h"

#include <algorithm>
#include <utility>

#include "desktop/window/panel_preferences.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "shared/failure.h"
#include "widget/host_observer.h"
#include "widget/saved_ui_data.h"
#include "widget/transit_incidents_view_controller.h"
#include "widget/widget_display_mode.h"

namespace linewatch::desktop {

namespace {

/// The date of a list that stays the same is saved only this often.
constexpr Seconds kListDatePrecision{600};

/// Opens, and tells the observer whether that succeeded.
PanelHost::OpenURL observed(PanelHost::OpenURL openURL, std::shared_ptr<HostObserver> observer) {
  if (!observer) return openURL;
  return [openURL = std::move(openURL), observer = std::move(observer)](
             const URL& url, std::function<void(bool success)> completion) {
    openURL(url, [observer, completion = std::move(completion)](bool success) {
      observer->hostDidOpen(success);
      if (completion) completion(success);
    });
  };
}

}  // namespace

HostedWidget::HostedWidget(const PanelHost::Limits& limits, PanelHost::OpenURL openURL,
                           std::optional<bool> wantsExpanded, PanelUpdates::Settings updates,
                           std::shared_ptr<HostObserver> observer)
    : observer_(std::move(observer)),
      host_(std::make_shared<PanelHost>(limits, observed(std::move(openURL), observer_))),
      controller_(RVTransitIncidentsViewController::make(host_, {limits.width, limits.compactHeight})),
      feedStates_(updates.feedStates),
      updates_(
          platform().mainLoop(), platform().randomSource(), [this] { askForUpdate(); }, std::move(updates)),
      savedListDate_(loadListDate()) {
  controller_->view();
  if (observer_) {
    observer_->hostDidLoad(controller_, {limits.width, limits.compactHeight});
    controller_->tableView()->setTapHandler(
        [observer = observer_](const ui::IndexPath& indexPath) { observer->hostWillTap(indexPath.row); });
  }
  const auto& dataSource = controller_->dataSource();
  wantsExpanded_ = wantsExpanded.value_or(dataSource->isExpanded());
  if (dataSource->isExpanded()) host_->setActiveDisplayMode(WidgetDisplayMode::expanded);
  host_->setLargestAvailableDisplayMode(widgetLargestAvailableDisplayMode(dataSource->listItem().get()));
}

HostedWidget::~HostedWidget() {
  controller_->setPreferredContentSizeHandler(nullptr);
  controller_->setRequestHandler(nullptr);
  host_->setAvailabilityHandler(nullptr);
}

void HostedWidget::start(Handlers handlers) {
  handlers_ = std::move(handlers);
  controller_->setPreferredContentSizeHandler([this](const Size&) { contentDidChange(); });
  controller_->setRequestHandler([this] { requestDidChange(); });
  host_->setAvailabilityHandler([this] { availabilityDidChange(); });
  applyMode();
}

void HostedWidget::setShown(bool isShown, const PanelHost::Limits& limits) {
  if (std::exchange(isShown_, isShown) == isShown) return;
  updates_.setVisible(isShown);
  if (isShown) {
    host_->setLimits(limits);
    if (observer_) observer_->hostWillShow();
    controller_->viewWillAppear(true);
    controller_->viewDidAppear(true);
  } else {
    if (observer_) observer_->hostWillHide();
    controller_->viewWillDisappear(true);
    controller_->viewDidDisappear(true);
    updateSavedListDate();
  }
}

// ---- Size ----

void HostedWidget::widthDidChange(const PanelHost::Limits& limits, double height) {
  host_->setLimits(limits);
  if (observer_) observer_->hostWillResize({limits.width, height});
  controller_->viewWillTransitionToSize({limits.width, height});
}

/// Asks the data source, because the widget announces its preferred size only when its list changes: not for
/// a restored list, and not always for another text size.
double HostedWidget::preferredHeight(double room) const {
  const auto& dataSource = controller_->dataSource();
  const Size preferred = dataSource->preferredContentSizeForExpanded(
      dataSource->isExpanded(), host_->maximumSizeForDisplayMode(host_->activeDisplayMode()));
  return std::max(limits().compactHeight, std::min(preferred.height, room));
}

/// The data source fits the shields, which grow with the text, only to a width that it does not know yet.
void HostedWidget::textSizeDidChange(const PanelHost::Limits& limits) {
  controller_->view().environmentDidChange();
  const double height = controller_->view().bounds().height;
  if (controller_->dataSource()->availableWidth() == limits.width) {
    PanelHost::Limits narrower = limits;
    narrower.width -= 1;
    widthDidChange(narrower, height);
  }
  widthDidChange(limits, height);
  // The widget reloads its rows only when its list changes, but the height of a row is set when the row is
  // made.
  controller_->tableView()->reloadData();
}

void HostedWidget::contentDidChange() {
  if (observer_) observer_->hostDidShowContent();
  handlers_.contentDidChange();
  if (isShown_) saveState();
}

// ---- Display mode ----

bool HostedWidget::isExpanded() const { return host_->activeDisplayMode() == WidgetDisplayMode::expanded; }

bool HostedWidget::offersMore() const {
  return host_->largestAvailableDisplayMode() == WidgetDisplayMode::expanded;
}

void HostedWidget::setExpanded(bool expanded) {
  wantsExpanded_ = expanded;
  applyMode();
}

/// Called during an update of the widget, so the mode changes in a later turn of the event loop.
void HostedWidget::availabilityDidChange() {
  if (std::exchange(isModePending_, true)) return;
  QMetaObject::invokeMethod(
      this, [this] { applyMode(); }, Qt::QueuedConnection);
}

/// Expands the widget if the user wants that and there is more to show. After an error, which collapses the
/// widget, it expands again by itself.
void HostedWidget::applyMode() {
  isModePending_ = false;
  const auto mode = offersMore() && wantsExpanded_ ? WidgetDisplayMode::expanded : WidgetDisplayMode::compact;
  if (mode != host_->activeDisplayMode()) {
    if (observer_) observer_->hostWillChangeMode(mode);
    host_->setActiveDisplayMode(mode);
    controller_->widgetActiveDisplayModeDidChange(mode, host_->maximumSizeForDisplayMode(mode));
  }
  handlers_.modeDidChange();
}

// ---- Updates ----

void HostedWidget::askForUpdate() {
  if (observer_) observer_->hostWillAskForUpdate();
  controller_->widgetPerformUpdateWithCompletionHandler(nullptr);
}

bool HostedWidget::isFetching() const { return controller_->request() != nullptr; }

bool HostedWidget::showsSavedList() const { return !controller_->transitLineItemResult(); }

std::optional<Error> HostedWidget::fetchError() const {
  return controller_->dataSource()->transitLineItemResult()->error();
}

/// Called when a fetch begins or ends, also if the widget has started it.
void HostedWidget::requestDidChange() {
  if (isFetching()) {
    updates_.fetchDidBegin();
  } else {
    const std::optional<Error>& error = controller_->transitLineItemResult()->error();
    listDate_ = error ? std::nullopt : std::optional(dateOfOldestAlerts());
    if (isShown_) {
      saveState();
      if (isSavedListDateOld()) updateSavedListDate();
    }
    logFailureOnce(error);
    updates_.fetchDidEnd(error.has_value());
  }
  handlers_.fetchDidChange();
}

/// A retry often fails for the same reason. Each reason is logged once, and again after a success.
void HostedWidget::logFailureOnce(const std::optional<Error>& error) {
  std::string reason = error ? sentenceOf(*error) : "";
  if (reason != loggedFailure_ && error) logError("%@", {reason});
  loggedFailure_ = std::move(reason);
}

/// The widget saves its state when it disappears, but a killed process never gets there. So the list is saved
/// as soon as it is on screen. If that fails, it is saved after the next fetch or change of mode.
void HostedWidget::saveState() {
  const auto& dataSource = controller_->dataSource();
  const auto result = dataSource->transitLineItemResult();
  if (!controller_->transitLineItemResult()) return;
  const bool isExpanded = dataSource->isExpanded();
  if (result == savedResult_ && isExpanded == savedExpanded_) return;
  if (!saveUIData(std::make_shared<const RVTransitIncidentViewControllerState>(result, isExpanded)))
    // The log already has the reason.
    return logDebug("The list on screen could not be saved; the one saved before stays");
  savedResult_ = result;
  savedExpanded_ = isExpanded;
}

/// Whether the list on screen is saved, but its saved date is out of date.
bool HostedWidget::isSavedListDateOld() const {
  if (savedResult_ != controller_->transitLineItemResult()) return false;
  if (!listDate_ || !savedListDate_) return listDate_ != savedListDate_;
  return *listDate_ < *savedListDate_ || *listDate_ - *savedListDate_ > kListDatePrecision;
}

/// Saves the date of the list for the next start. The widget's own saved state has no date.
void HostedWidget::updateSavedListDate() {
  if (!controller_->transitLineItemResult() || listDate_ == savedListDate_) return;
  savedListDate_ = listDate_;
  saveListDate(listDate_);
}

/// The time of the oldest alerts in the list: now, if all feeds were fetched; earlier, if alerts were kept.
Date HostedWidget::dateOfOldestAlerts() const {
  Date date = platform().mainLoop().now();
  if (!feedStates_) return date;
  for (const FeedState& state : feedStates_()) {
    if (state.kind == FeedState::Kind::kept && state.since) date = std::min(date, *state.since);
  }
  return date;
}

}  // namespace linewatch::desktop
