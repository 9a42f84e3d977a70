#include "simulation/roles/simulated_random_source.h"

namespace linewatch::simulation {

std::uint32_t SimulatedRandomSource::next() {
  followWorld();
  return drawn_ < list_.value.size() ? list_.value[drawn_++] : static_cast<std::uint32_t>(generator_());
}

void SimulatedRandomSource::followWorld() {
  const World& world = backstage_->world;
  if (list_ != world.random) {
    list_ = world.random;
    drawn_ = 0;
  }
  if (seed_ != world.seed) {
    seed_ = world.seed;
    generator_.seed(seed_.value);
  }
}

}  // namespace linewatch::simulation
