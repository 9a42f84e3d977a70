#include "simulation/simulated_random_source.h"

namespace linewatch::simulation {

std::uint32_t SimulatedRandomSource::next() {
  followWorld();
  return drawn_ < list_.size() ? list_[drawn_++] : static_cast<std::uint32_t>(generator_());
}

void SimulatedRandomSource::followWorld() {
  const World& world = backstage_->world;
  if (list_ != world.random || listCount_ != world.randomCount) {
    list_ = world.random;
    listCount_ = world.randomCount;
    drawn_ = 0;
  }
  if (seed_ != world.seed || seedCount_ != world.seedCount) {
    seed_ = world.seed;
    seedCount_ = world.seedCount;
    generator_.seed(seed_);
  }
}

}  // namespace linewatch::simulation
