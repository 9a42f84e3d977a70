#include "desktop/window/panel_updates.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/main_loop.h"
#include "platform/platform.h"

namespace linewatch::desktop {

namespace {

/// After a connection has returned, it may take a few seconds until servers can be reached.
constexpr Seconds kSoon{5};
constexpr Seconds kFirstRetry{60};
constexpr Seconds kLastRetry{1800};
constexpr double kRetryTolerance = 0.1;

/// The interval doubles with each failure.
Seconds retryInterval(int failures) { return std::min(kLastRetry, kFirstRetry * std::exp2(failures - 1)); }

}  // namespace

void PanelUpdates::fetchDidBegin() {
  isFetching_ = true;
  cancelRetry();
}

void PanelUpdates::fetchDidEnd(bool failed) {
  isFetching_ = false;
  const bool favoritesHaveChanged = std::exchange(favoritesHaveChanged_, false);
  const bool connectionHasReturned = std::exchange(connectionHasReturned_, false);
  failures_ = failed && !connectionHasReturned ? failures_ + 1 : 0;
  if (!isInSight_) return;
  if (favoritesHaveChanged) return ask_();
  if (failed) scheduleRetry(connectionHasReturned ? kSoon : retryInterval(failures_));
}

void PanelUpdates::setInSight(bool isInSight) {
  isInSight_ = isInSight;
  failures_ = 0;
  cancelRetry();
}

/// The user waits, so retries start again at the shortest interval.
void PanelUpdates::userDidAsk() {
  failures_ = 0;
  if (!isFetching_) ask_();
}

void PanelUpdates::favoritesDidChange() {
  if (isFetching_) {
    favoritesHaveChanged_ = true;
  } else if (isInSight_) {
    ask_();
  }
}

void PanelUpdates::connectionDidReturn() {
  if (!isInSight_) return;
  connectionHasReturned_ = true;
  if (!isFetching_) ask_();
}

void PanelUpdates::scheduleRetry(Seconds interval) {
  cancelRetry();
  retry_ = platform().mainLoop().scheduleTimer(interval, /*repeats=*/false, [this] { ask_(); });
  retry_->setTolerance(interval * kRetryTolerance);
}

void PanelUpdates::cancelRetry() {
  if (const auto retry = std::exchange(retry_, nullptr)) retry->invalidate();
}

}  // namespace linewatch::desktop
