#pragma once

#include <functional>
#include <utility>

#include "platform/device.h"

namespace linewatch {

/// A desktop computer: unlocked whenever someone can see the widget, and without the capabilities that only
/// some hand-held devices have.
class DesktopDevice final : public Device {
 public:
  /// `diagnose` gives the present state of the connection; when empty, it is unknown.
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
