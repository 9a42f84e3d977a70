#include "feeds/timetable_renewals.h"

#include <utility>

namespace linewatch {

void TimetableRenewals::setDue(const std::string& key, Date due) {
  const MutexLock lock(mutex_);
  states_[key].due = due;
}

void TimetableRenewals::beginIfDue(const std::string& key, Date now, Renewal renew) {
  {
    const MutexLock lock(mutex_);
    const auto state = states_.find(key);
    if (state == states_.end() || state->second.isRunning || now < state->second.due) return;
    state->second.isRunning = true;
  }
  queue_.post([this, key, renew = std::move(renew)] { end(key, renew()); });
}

bool TimetableRenewals::isRunning(const std::string& key) const {
  const MutexLock lock(mutex_);
  const auto state = states_.find(key);
  return state != states_.end() && state->second.isRunning;
}

bool TimetableRenewals::takeNews(const std::string& key) {
  const MutexLock lock(mutex_);
  const auto state = states_.find(key);
  return state != states_.end() && std::exchange(state->second.hasNews, false);
}

void TimetableRenewals::end(const std::string& key, const Result& result) {
  const MutexLock lock(mutex_);
  State& state = states_[key];
  state.isRunning = false;
  state.due = result.due;
  state.hasNews = state.hasNews || result.isNew;
}

}  // namespace linewatch
