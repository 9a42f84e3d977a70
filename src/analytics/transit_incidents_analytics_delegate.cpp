#include "analytics/transit_incidents_analytics_delegate.h"

#include <string_view>
#include <utility>

#include "platform/device.h"
#include "platform/incident_string_provider.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/user_session.h"

namespace linewatch {

namespace {

constexpr std::int64_t kWidgetTarget = 706;
constexpr std::int64_t kWidgetInteractionType = 2;

void captureAction(std::string_view action) {
  platform().usageRecorder().captureUserAction(action, kWidgetTarget, std::nullopt);
}

bool deviceIsLocked() {
  const int state = platform().device().lockState();
  return state == 1 || state == 2;
}

IncidentAnalyticsItem analyticsItem(const SharedIncident& incident, const IncidentsToLineMapping& lines) {
  const auto line = lines.find(incident->muid());
  return {std::to_string(line == lines.end() ? std::uint64_t{0} : line->second->muid()),
          *platform().incidentStringProvider().cellTitleForIncident(incident)};
}

}  // namespace

RVTransitIncidentsAnalyticsDelegate::RVTransitIncidentsAnalyticsDelegate(
    std::weak_ptr<ui::ViewController> transitIncidentsViewController)
    : transitIncidentsViewController_(std::move(transitIncidentsViewController)) {}

void RVTransitIncidentsAnalyticsDelegate::startSessionIfNeeded() {
  if (!sessionStartDate_) sessionStartDate_ = platform().mainLoop().now();
  analyticsData_ = std::make_shared<WidgetAnalyticsRecord>();
  const bool expanded = isExpanded();
  analyticsData_->initiallyExpanded = expanded;
  if (expanded) analyticsData_->everExpanded = true;
}

void RVTransitIncidentsAnalyticsDelegate::recordWidgetChangeDisplayMode(WidgetDisplayMode mode) {
  if (!sessionStartDate_) return;
  if (mode == WidgetDisplayMode::expanded) {
    if (analyticsData_) analyticsData_->everExpanded = true;
    captureAction("SHOW_MORE");
  } else {
    captureAction("SHOW_LESS");
  }
}

void RVTransitIncidentsAnalyticsDelegate::recordInfoForLines(
    const TransitLineItems& lines, const TransitIncidents& incidentDisplayed,
    const IncidentsToLineMapping& incidentsToLineMapping) {
  if (!analyticsData_) return;
  const TransitMessageType type = lines.empty() ? TransitMessageType::noFavorites
                                                : _messageTypeForIncidentCount(incidentDisplayed.size());
  analyticsData_->transitMessageType = static_cast<std::int64_t>(type);
  for (const SharedIncident& incident : incidentDisplayed) {
    analyticsData_->transitIncidents.push_back(analyticsItem(incident, incidentsToLineMapping));
  }
}

void RVTransitIncidentsAnalyticsDelegate::recordOpenItemAtIndexPath(const ui::IndexPath& indexPath) {
  // Row 0 of the compact widget is the summary. The first row of the expanded widget counts as 1.
  const std::size_t index = indexPath.row != 0 ? indexPath.row : (isExpanded() ? 1 : 0);
  if (analyticsData_) analyticsData_->tappedItemIndex = static_cast<std::int64_t>(index);
  captureAction("TAP_WIDGET_ITEM");
  _closeSessionWithEndState(WidgetSessionEnd::itemOpened);
}

void RVTransitIncidentsAnalyticsDelegate::recordCloseSessionSwiping() {
  _closeSessionWithEndState(WidgetSessionEnd::disappeared);
}

void RVTransitIncidentsAnalyticsDelegate::_closeSessionWithEndState(WidgetSessionEnd endState) {
  if (sessionStartDate_) logSessionEvent(*sessionStartDate_, endState);
  sessionStartDate_.reset();
  analyticsData_.reset();
}

void RVTransitIncidentsAnalyticsDelegate::logSessionEvent(Date startDate, WidgetSessionEnd endState) const {
  Platform& world = platform();
  const bool wasLocked = deviceIsLocked();
  const Seconds duration = world.mainLoop().now() - startDate;
  const auto event = world.analyticsEventFactory().widgetInteractionEvent(
      kWidgetInteractionType, static_cast<std::int64_t>(endState), analyticsData_, wasLocked, startDate,
      duration);
  world.analyticsLogger().captureEvent(event, world.userSession().snapshot());
}

TransitMessageType RVTransitIncidentsAnalyticsDelegate::_messageTypeForIncidentCount(std::size_t count) {
  using enum TransitMessageType;
  if (count == 0) return noIncident;
  return count == 1 ? oneIncident : severalIncidents;
}

bool RVTransitIncidentsAnalyticsDelegate::isExpanded() const {
  const auto controller = transitIncidentsViewController_.lock();
  const auto host = controller ? controller->extensionContext() : nullptr;
  return host && host->activeDisplayMode() == WidgetDisplayMode::expanded;
}

}  // namespace linewatch
