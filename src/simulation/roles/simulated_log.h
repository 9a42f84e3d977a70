#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "platform/log.h"
#include "shared/mutex.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// The text with each object's address replaced by "0x0", because addresses differ from run to run.
std::string withoutAddresses(std::string_view text);

/// Records every line as "log", with its level ("debug" or "error") and its text. Private arguments are
/// shown, addresses of objects are not. Lines may come from any thread, all else happens on the main thread.
class SimulatedLog final : public Log {
 public:
  explicit SimulatedLog(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  void write(const LogMessage& message) override LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    if (!isEnabled(message.level)) return;
    if (listener_) listener_(message);
    backstage_->transcript->record("log", {{"level", message.level == LogLevel::error ? "error" : "debug"},
                                           {"text", withoutAddresses(message.text(false))}});
  }
  bool isEnabled(LogLevel level) const override { return !disabled_.contains(level); }

  /// Sets a function that gets every line, with separate arguments, before it is recorded.
  void setListener(std::function<void(const LogMessage& message)> listener) {
    listener_ = std::move(listener);
  }

  /// Both levels are enabled at first.
  void setEnabled(LogLevel level, bool enabled) {
    if (enabled) {
      disabled_.erase(level);
    } else {
      disabled_.insert(level);
    }
  }

 private:
  /// Held while a line is recorded.
  Mutex mutex_;
  SharedBackstage backstage_;
  std::function<void(const LogMessage&)> listener_;
  std::set<LogLevel> disabled_;
};

}  // namespace linewatch::simulation
