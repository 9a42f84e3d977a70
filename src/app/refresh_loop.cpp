#include "app/refresh_loop.h"

#include <algorithm>
#include <utility>

namespace linewatch::app {

namespace {

/// A change that is due already must not make the loop spin.
constexpr Seconds kLeastPause{1};

}  // namespace

RefreshLoop::RefreshLoop(MainLoop& mainLoop, Look look, Options options)
    : mainLoop_(mainLoop), look_(std::move(look)), options_(std::move(options)) {}

RefreshLoop::~RefreshLoop() { cancelTimer(); }

void RefreshLoop::setRefresh(Seconds refresh) {
  options_.refresh = refresh;
  if (ended_) scheduleLook();
}

void RefreshLoop::refreshNow() {
  cancelTimer();
  ended_ = std::nullopt;
  mustLookAgain_ = isLooking_;
  if (isLooking_) return;
  isLooking_ = true;
  look_([self = std::weak_ptr(self_)] {
    if (const auto loop = self.lock()) (*loop)->didLook();
  });
}

void RefreshLoop::didLook() {
  isLooking_ = false;
  if (mustLookAgain_) {
    // Not from here, because a look may end before the call that started it.
    mustLookAgain_ = false;
    timer_ = mainLoop_.scheduleTimer(Seconds(0), false, [this] { refreshNow(); });
    return;
  }
  ended_ = mainLoop_.now();
  scheduleLook();
}

void RefreshLoop::scheduleLook() {
  cancelTimer();
  const Date now = mainLoop_.now();
  Seconds pause = std::clamp(Seconds(*ended_ + options_.refresh - now), Seconds(0), options_.refresh);
  if (const auto change = options_.nextChange())
    pause = std::min(pause, std::max(kLeastPause, Seconds(*change - now)));
  timer_ = mainLoop_.scheduleTimer(pause, false, [this] { refreshNow(); });
}

void RefreshLoop::cancelTimer() {
  if (timer_) timer_->invalidate();
  timer_ = nullptr;
}

}  // namespace linewatch::app
