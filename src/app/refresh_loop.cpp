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

void RefreshLoop::refreshNow() {
  cancelTimer();
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
  Seconds pause = options_.refresh;
  if (const auto change = options_.nextChange())
    pause = std::min(pause, std::max(kLeastPause, Seconds(*change - mainLoop_.now())));
  timer_ = mainLoop_.scheduleTimer(pause, false, [this] { refreshNow(); });
}

void RefreshLoop::cancelTimer() {
  if (timer_) timer_->invalidate();
  timer_ = nullptr;
}

}  // namespace linewatch::app
