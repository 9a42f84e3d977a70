#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "platform/log.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// The text with the addresses of objects in it, which differ from run to run, as "0x0".
std::string withoutAddresses(std::string_view text);

/// Records every line with its arguments filled in, private ones too, as "log" with its level ("debug" or
/// "error") and text. Addresses in it are left out.
class SimulatedLog final : public Log {
 public:
  explicit SimulatedLog(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  void write(const LogMessage& message) override {
    if (!isEnabled(message.level)) return;
    if (listener_) listener_(message);
    backstage_->transcript->record("log", {{"level", message.level == LogLevel::error ? "error" : "debug"},
                                           {"text", withoutAddresses(message.text(false))}});
  }
  bool isEnabled(LogLevel level) const override { return !disabled_.contains(level); }

  /// Told of every line before it is recorded, with its arguments apart.
  void setListener(std::function<void(const LogMessage& message)> listener) {
    listener_ = std::move(listener);
  }

  /// Every level is enabled at first.
  void setEnabled(LogLevel level, bool enabled) {
    if (enabled) {
      disabled_.erase(level);
    } else {
      disabled_.insert(level);
    }
  }

 private:
  SharedBackstage backstage_;
  std::function<void(const LogMessage&)> listener_;
  std::set<LogLevel> disabled_;
};

}  // namespace linewatch::simulation
