#pragma once

#include "platform/device.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// The device that the world describes.
class SimulatedDevice final : public Device {
 public:
  explicit SimulatedDevice(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  ConnectionFailureDiagnosis diagnoseConnectionFailure() override { return backstage_->world.diagnosis; }
  bool hasCapability(std::string_view capability) override {
    const auto& capabilities = backstage_->world.capabilities;
    const auto known = capabilities.find(capability);
    return known != capabilities.end() && known->second;
  }
  int lockState() override { return backstage_->world.lockState; }

 private:
  SharedBackstage backstage_;
};

}  // namespace linewatch::simulation
