#pragma once

#include <cstddef>

#include "platform/compressor.h"
#include "simulation/backstage.h"

namespace linewatch::simulation {

/// Compresses as the library does, or not at all when the world says so. Counts what it is asked for.
class SimulatedCompressor final : public Compressor {
 public:
  explicit SimulatedCompressor(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::optional<Bytes> bzip2(const Bytes& data) override {
    ++callCount_;
    return backstage_->world.compresses ? library_.bzip2(data) : std::nullopt;
  }

  std::size_t callCount() const { return callCount_; }

 private:
  SharedBackstage backstage_;
  LibraryCompressor library_;
  std::size_t callCount_ = 0;
};

}  // namespace linewatch::simulation
