#pragma once

#include <memory>

#include "simulation/world/transcript.h"
#include "simulation/world/virtual_main_loop.h"
#include "simulation/world/world.h"
#include "simulation/world/world_records.h"

namespace linewatch::simulation {

/// What the roles of one simulated platform share. The roles hold it, so that what the widget keeps of them
/// (tickets, stores, containers) works as long as it is kept.
struct Backstage {
  Backstage(World scripted, Seconds elapsed, std::shared_ptr<Transcript> record)
      : world(std::move(scripted)),
        transcript(std::move(record)),
        mainLoop(world.start, elapsed, transcript) {}

  World world;
  /// Made from the world when they are first needed, and made anew after the world has changed.
  std::shared_ptr<const WorldRecords> records() {
    if (!records_) records_ = std::make_shared<const WorldRecords>(world);
    return records_;
  }
  void worldChanged() { records_ = nullptr; }

  std::shared_ptr<Transcript> transcript;
  VirtualMainLoop mainLoop;

 private:
  std::shared_ptr<const WorldRecords> records_;
};

using SharedBackstage = std::shared_ptr<Backstage>;

}  // namespace linewatch::simulation
