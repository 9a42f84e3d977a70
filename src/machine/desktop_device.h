#pragma once

#include <functional>
#include <utility>

#include "platform/device.h"

namespace linewatch {

/// A desktop computer. It is unlocked when someone sees the widget, and has none of the capabilities of
/// hand-held devices.
class DesktopDevice final : public Device {
 public:
  /// `diagnose` returns the state of the connection. Without this function the state is unknown.
  explicit DesktopDevice(std::function<ConnectionFailureDiagnosis()> diagnose)
      : diagnose_(std::move(diagnose)) {}

  ConnectionFailureDiagnosis diagnoseConnectionFailure() override {
    return diagnose_ ? diagnose_() : ConnectionFailureDiagnosis::unknown;
  }
  bool hasCapability(std::string_view) override { return false; }
  int lockState() override { return 0; }

 private:
  std::function<ConnectionFailureDiagnosis()> diagnose_;
};

}  // namespace linewatch
