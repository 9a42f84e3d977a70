#pragma once

#include "platform/transit_service.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// Answers look-ups from the world, after the delay and in the way that the world's `service` states. Records
/// a submission as "lookup".
class SimulatedTransitService final : public TransitService {
 public:
  explicit SimulatedTransitService(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
      std::vector<MapItemIdentifier> identifiers) override;

 private:
  SharedBackstage backstage_;
};

}  // namespace linewatch::simulation
