#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "platform/random_source.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// Gives the numbers of the world's list in order, then those of a 32-bit Mersenne Twister (`std::mt19937`,
/// whose numbers the C++ standard fixes) started with the world's seed. A list or seed that the world is
/// given while it runs is started from its beginning, also when it is the same as before.
class SimulatedRandomSource final : public RandomSource {
 public:
  explicit SimulatedRandomSource(SharedBackstage backstage)
      : backstage_(std::move(backstage)), seed_(backstage_->world.seed), generator_(seed_.value) {}

  std::uint32_t next() override;

 private:
  void followWorld();

  SharedBackstage backstage_;
  Restarting<std::vector<std::uint32_t>> list_;
  std::size_t drawn_ = 0;
  Restarting<std::uint32_t> seed_;
  std::mt19937 generator_;
};

}  // namespace linewatch::simulation
