#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "platform/device.h"

namespace linewatch {

/// A desktop computer. It has none of the capabilities of hand-held devices.
class DesktopDevice final : public Device {
 public:
  /// `diagnose` returns the state of the connection. Without this function the state is unknown.
  explicit DesktopDevice(std::function<ConnectionFailureDiagnosis()> diagnose)
      : diagnose_(std::move(diagnose)) {}

  ConnectionFailureDiagnosis diagnoseConnectionFailure() override {
    return diagnose_ ? diagnose_() : ConnectionFailureDiagnosis::unknown;
  }
  bool hasCapability(std::string_view) override { return false; }
  int lockState() override { return isLocked_ ? 1 : 0; }

  /// Whether the screen of the user's session is locked. Not locked at first.
  void setLocked(bool isLocked) {
    isLocked_ = isLocked;
    if (isLocked) return;
    for (const auto& action : std::exchange(waiting_, {})) action();
  }
  /// Runs `action` now, or once the device is unlocked.
  void whenUnlocked(std::function<void()> action) {
    if (!isLocked_) return action();
    waiting_.push_back(std::move(action));
  }

 private:
  std::function<ConnectionFailureDiagnosis()> diagnose_;
  bool isLocked_ = false;
  std::vector<std::function<void()>> waiting_;
};

}  // namespace linewatch
