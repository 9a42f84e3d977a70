#include "desktop/window/panel_updates.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/main_loop.h"
#include "platform/random_source.h"

namespace linewatch::desktop {

namespace {

/// After the network has returned, it may take a few seconds until servers can be reached.
constexpr Seconds kRetryAfterReturn{5};
/// A fetch that ended this recently used the network that has just returned.
constexpr Seconds kRecently{10};
constexpr Seconds kMeteredRefresh{600};
constexpr Seconds kShortestPause{5};
constexpr Seconds kTimerTolerance{1};
// The random part of a pause: at most this share of the pause, and for a retry at most this long. It is added
// to a refresh and to the server's Retry-After. It is subtracted from the other retries, so that the first of
// them starts within a minute.
constexpr double kJitter = 0.1;
constexpr Seconds kMostRetryJitter{5};

bool isFailing(const FeedState& state) { return state.failures > 0; }

}  // namespace

PanelUpdates::PanelUpdates(MainLoop& mainLoop, RandomSource& randomSource, std::function<void()> ask,
                           Settings settings)
    : mainLoop_(mainLoop),
      randomSource_(randomSource),
      ask_(std::move(ask)),
      settings_(std::move(settings)),
      clocksAtStart_(settings_.readClocks()) {}

Date PanelUpdates::now() const { return mainLoop_.now(); }

std::vector<FeedState> PanelUpdates::feedStates() const {
  return settings_.feedStates ? settings_.feedStates() : std::vector<FeedState>();
}

void PanelUpdates::fetchDidBegin() {
  isFetching_ = true;
  clocksAtStart_ = settings_.readClocks();
  cancelTimer();
}

void PanelUpdates::fetchDidEnd(bool failed) {
  isFetching_ = false;
  endOfFetch_ = now();
  hasFailed_ = failed || std::ranges::any_of(feedStates(), isFailing);
  const bool mustAskAgain = std::exchange(mustAskAgain_, false);
  const bool connectionHasReturned = std::exchange(connectionHasReturned_, false);
  if (!isVisible_) return;
  if (mustAskAgain) return ask_();
  if (connectionHasReturned && hasFailed_) return scheduleIn(kRetryAfterReturn);
  scheduleNext();
}

void PanelUpdates::setVisible(bool isVisible) {
  isVisible_ = isVisible;
  cancelTimer();
}

void PanelUpdates::userDidAsk() {
  if (!isFetching_) ask_();
}

void PanelUpdates::favoritesDidChange() {
  if (isFetching_) {
    mustAskAgain_ = true;
  } else if (isVisible_) {
    ask_();
  }
}

/// After sleep the network returns a moment after the clock check. If the fetch of the clock check has
/// succeeded, the network needs no second one.
void PanelUpdates::connectionDidReturn() {
  if (!isVisible_) return;
  if (!isFetching_ && !hasFailed_ && endOfFetch_ && *endOfFetch_ <= now() && now() - *endOfFetch_ < kRecently)
    return;
  connectionHasReturned_ = true;
  if (!isFetching_) ask_();
}

void PanelUpdates::setMetered(bool isMetered) {
  if (std::exchange(isMetered_, isMetered) == isMetered) return;
  if (timer_) scheduleNext();
}

void PanelUpdates::setRefresh(Seconds refresh) {
  if (std::exchange(settings_.refresh, refresh) == refresh) return;
  if (timer_) scheduleNext();
}

void PanelUpdates::checkClock() {
  const ClockReading reading = settings_.readClocks();
  if (!isVisible_ || !hasJumped(clocksAtStart_, reading)) return;
  clocksAtStart_ = reading;
  if (isFetching_) {
    mustAskAgain_ = true;
  } else {
    ask_();
  }
}

// ---- The next update ----

double PanelUpdates::randomPart() const {
  return randomSource_.next() / (std::numeric_limits<std::uint32_t>::max() + 1.0);
}

Seconds PanelUpdates::refreshPause() const {
  const Seconds refresh = isMetered_ ? std::max(settings_.refresh, kMeteredRefresh) : settings_.refresh;
  return refresh * (1 + kJitter * randomPart());
}

/// The time until the retry of a feed that failed; the timer's tolerance may be added to it.
Seconds PanelUpdates::retryPause(const FeedState& state, Seconds pause) const {
  const Seconds jitter = std::min(pause * kJitter, kMostRetryJitter) * randomPart();
  return state.retryAfter ? pause + jitter : pause - kTimerTolerance - jitter;
}

/// The time until the first retry or the first end of a grace period; absent when no feed has failed. The end
/// of a grace period has no random part, because the kept alerts are not shown after it.
std::optional<Seconds> PanelUpdates::pauseForFeeds(const std::vector<FeedState>& states) const {
  const Date present = now();
  std::optional<Seconds> shortest;
  const auto consider = [&shortest](Seconds pause) { shortest = std::min(pause, shortest.value_or(pause)); };
  for (const FeedState& state : states) {
    if (const auto retry = nextRetry(state, present)) consider(retryPause(state, *retry - present));
    if (const auto end = graceEnd(state)) consider(*end - present);
  }
  return shortest;
}

void PanelUpdates::scheduleNext() {
  const std::vector<FeedState> states = feedStates();
  const auto forFeeds = pauseForFeeds(states);
  const bool allFail = !states.empty() && std::ranges::all_of(states, isFailing);
  if (allFail && forFeeds) return scheduleIn(*forFeeds);
  scheduleIn(forFeeds ? std::min(*forFeeds, refreshPause()) : refreshPause());
}

void PanelUpdates::scheduleIn(Seconds interval) {
  cancelTimer();
  timer_ = mainLoop_.scheduleTimer(std::max(interval, kShortestPause), /*repeats=*/false, [this] { ask_(); });
  timer_->setTolerance(kTimerTolerance);
}

void PanelUpdates::cancelTimer() {
  if (const auto timer = std::exchange(timer_, nullptr)) timer->invalidate();
}

}  // namespace linewatch::desktop
