#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "platform/random_source.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// Gives the numbers of the world's list in order, then the numbers of a `std::mt19937` that starts with the
/// world's seed; the C++ standard fixes its numbers. A list or seed that is assigned while the world runs
/// starts from its beginning, even when it is the same as before.
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
