#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>

#include "simulation/world/backstage.h"
#include "wire/compressor.h"

namespace linewatch::simulation {

/// Compresses with the library, or fails while the world's `compresses` is false. Counts the calls.
///
/// Remembers its results, because a simulated day builds hundreds of lists from the same records.
class SimulatedCompressor final : public Compressor {
 public:
  explicit SimulatedCompressor(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::optional<Bytes> bzip2(const Bytes& data) override {
    ++callCount_;
    if (!backstage_->world.compresses) return std::nullopt;
    if (compressed_.size() == kMostRemembered) compressed_.clear();
    const auto [entry, isNew] = compressed_.try_emplace(std::string(data.begin(), data.end()));
    if (isNew) entry->second = library_.bzip2(data);
    return entry->second;
  }

  std::size_t callCount() const { return callCount_; }

 private:
  static constexpr std::size_t kMostRemembered = 4096;

  SharedBackstage backstage_;
  LibraryCompressor library_;
  std::unordered_map<std::string, std::optional<Bytes>> compressed_;
  std::size_t callCount_ = 0;
};

}  // namespace linewatch::simulation
