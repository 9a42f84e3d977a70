#pragma once

#include "platform/transit_service.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// Answers look-ups from the world, as the world's service says. A submission is recorded as "lookup".
class SimulatedTransitService final : public TransitService {
 public:
  explicit SimulatedTransitService(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
      std::vector<MapItemIdentifier> identifiers) override;

 private:
  SharedBackstage backstage_;
};

}  // namespace linewatch::simulation
