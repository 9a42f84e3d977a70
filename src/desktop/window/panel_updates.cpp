#include "desktop/window/panel_updates.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/random_source.h"

namespace linewatch::desktop {

namespace {

/// After a connection has returned, it may take a few seconds until servers can be reached.
constexpr Seconds kSoon{5};
/// An update that ended this recently has seen the connection that has returned.
constexpr Seconds kJustNow{10};
constexpr Seconds kMeteredRefresh{600};
constexpr Seconds kShortestPause{5};
constexpr Seconds kTimerTolerance{1};
// What chance adds to a pause: a part of it, and for a retry at most this long.
constexpr double kJitter = 0.1;
constexpr Seconds kMostRetryJitter{5};

bool isFailing(const FeedState& state) { return state.failures > 0; }

Date now() { return platform().mainLoop().now(); }

}  // namespace

PanelUpdates::PanelUpdates(std::function<void()> ask, Settings settings)
    : ask_(std::move(ask)), settings_(std::move(settings)), begun_(settings_.readClocks()) {}

std::vector<FeedState> PanelUpdates::feedStates() const {
  return settings_.feedStates ? settings_.feedStates() : std::vector<FeedState>();
}

void PanelUpdates::fetchDidBegin() {
  isFetching_ = true;
  begun_ = settings_.readClocks();
  cancelTimer();
}

void PanelUpdates::fetchDidEnd(bool failed) {
  isFetching_ = false;
  ended_ = now();
  hasFailed_ = failed || std::ranges::any_of(feedStates(), isFailing);
  const bool mustAskAgain = std::exchange(mustAskAgain_, false);
  const bool connectionHasReturned = std::exchange(connectionHasReturned_, false);
  if (!isInSight_) return;
  if (mustAskAgain) return ask_();
  if (connectionHasReturned && hasFailed_) return scheduleIn(kSoon);
  scheduleNext();
}

void PanelUpdates::setInSight(bool isInSight) {
  isInSight_ = isInSight;
  cancelTimer();
}

void PanelUpdates::userDidAsk() {
  if (!isFetching_) ask_();
}

void PanelUpdates::favoritesDidChange() {
  if (isFetching_) {
    mustAskAgain_ = true;
  } else if (isInSight_) {
    ask_();
  }
}

/// A machine that wakes up finds its network a moment later: the update after waking was enough, unless it
/// failed.
void PanelUpdates::connectionDidReturn() {
  if (!isInSight_) return;
  if (!isFetching_ && !hasFailed_ && ended_ && *ended_ <= now() && now() - *ended_ < kJustNow) return;
  connectionHasReturned_ = true;
  if (!isFetching_) ask_();
}

void PanelUpdates::setMetered(bool isMetered) {
  if (std::exchange(isMetered_, isMetered) == isMetered) return;
  if (timer_) scheduleNext();
}

void PanelUpdates::checkClock() {
  const ClockReading reading = settings_.readClocks();
  if (!isInSight_ || !hasJumped(begun_, reading)) return;
  begun_ = reading;
  if (isFetching_) {
    mustAskAgain_ = true;
  } else {
    ask_();
  }
}

// ---- The next update ----

double PanelUpdates::randomPart() {
  return platform().randomSource().next() / (std::numeric_limits<std::uint32_t>::max() + 1.0);
}

Seconds PanelUpdates::ordinaryPause() const {
  const Seconds refresh = isMetered_ ? std::max(settings_.refresh, kMeteredRefresh) : settings_.refresh;
  return refresh * (1 + kJitter * randomPart());
}

/// Until the first retry or end of a grace; absent when no feed needs one. A retry is never early; the end of
/// a grace is exact, because from then on the kept alerts no longer count.
std::optional<Seconds> PanelUpdates::pauseForFeeds(const std::vector<FeedState>& states) const {
  const Date present = now();
  std::optional<Seconds> shortest;
  const auto consider = [&shortest](Seconds pause) { shortest = std::min(pause, shortest.value_or(pause)); };
  for (const FeedState& state : states) {
    if (const auto retry = nextRetry(state, present)) {
      const Seconds pause = *retry - present;
      consider(pause + std::min(pause * kJitter, kMostRetryJitter) * randomPart());
    }
    if (const auto end = graceEnd(state)) consider(*end - present);
  }
  return shortest;
}

void PanelUpdates::scheduleNext() {
  const std::vector<FeedState> states = feedStates();
  const auto forFeeds = pauseForFeeds(states);
  const bool allFail = !states.empty() && std::ranges::all_of(states, isFailing);
  if (allFail && forFeeds) return scheduleIn(*forFeeds);
  scheduleIn(forFeeds ? std::min(*forFeeds, ordinaryPause()) : ordinaryPause());
}

void PanelUpdates::scheduleIn(Seconds interval) {
  cancelTimer();
  timer_ = platform().mainLoop().scheduleTimer(std::max(interval, kShortestPause), /*repeats=*/false,
                                               [this] { ask_(); });
  timer_->setTolerance(kTimerTolerance);
}

void PanelUpdates::cancelTimer() {
  if (const auto timer = std::exchange(timer_, nullptr)) timer->invalidate();
}

}  // namespace linewatch::desktop
