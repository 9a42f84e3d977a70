#pragma once

#include <set>
#include <string>
#include <string_view>

#include "platform/log.h"
#include "simulation/backstage.h"

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
    backstage_->transcript->record("log", {{"level", message.level == LogLevel::error ? "error" : "debug"},
                                           {"text", withoutAddresses(message.text(false))}});
  }
  bool isEnabled(LogLevel level) const override { return !disabled_.contains(level); }

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
  std::set<LogLevel> disabled_;
};

}  // namespace linewatch::simulation
