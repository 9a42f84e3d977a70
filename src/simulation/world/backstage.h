#pragma once

#include <deque>
#include <functional>
#include <memory>

#include "simulation/world/transcript.h"
#include "simulation/world/virtual_main_loop.h"
#include "simulation/world/world.h"
#include "simulation/world/world_records.h"

namespace linewatch::simulation {

/// The state that the roles of one simulated platform share. Each role owns a share of it, so that tickets,
/// stores and containers work as long as the widget keeps them.
struct Backstage {
  Backstage(World scripted, Seconds elapsed, std::shared_ptr<Transcript> record)
      : world(std::move(scripted)),
        transcript(std::move(record)),
        mainLoop(world.start, elapsed, transcript) {
    mainLoop.setClockOffset(world.clockOffset);
  }

  World world;
  /// The records of the world, made when first needed and again after a change of the world.
  std::shared_ptr<const WorldRecords> records() {
    if (!records_) records_ = std::make_shared<const WorldRecords>(world);
    return records_;
  }
  void worldChanged() { records_ = nullptr; }

  std::shared_ptr<Transcript> transcript;
  VirtualMainLoop mainLoop;
  /// Answer the look-ups that wait for the host, in the order of their submission.
  std::deque<std::function<void()>> waitingLookups;

 private:
  std::shared_ptr<const WorldRecords> records_;
};

using SharedBackstage = std::shared_ptr<Backstage>;

}  // namespace linewatch::simulation
