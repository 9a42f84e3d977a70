#include "feeds/gtfs/line_index.h"

#include <algorithm>
#include <utility>

namespace linewatch {

namespace {

// FNV-1a, with the finalizer of a 64-bit mixer so that ids that differ in their last digit differ everywhere.
class StableHash {
 public:
  void add(std::string_view bytes) {
    for (const char byte : bytes) add(static_cast<unsigned char>(byte));
  }
  void add(unsigned char byte) { state_ = (state_ ^ byte) * 0x100000001B3U; }
  std::uint64_t finish() const {
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 33U)) * 0xFF51AFD7ED558CCDU;
    mixed = (mixed ^ (mixed >> 33U)) * 0xC4CEB9FE1A85EC53U;
    return mixed ^ (mixed >> 33U);
  }

 private:
  std::uint64_t state_ = 0xCBF29CE484222325U;
};

}  // namespace

std::uint64_t stableMuid(std::string_view feedName, std::string_view id) {
  StableHash hash;
  hash.add(feedName);
  hash.add(static_cast<unsigned char>(0));  // "ab" + "c" is not "a" + "bc"
  hash.add(id);
  const std::uint64_t muid = hash.finish();
  return muid == 0 ? 1 : muid;
}

LineIndex::LineIndex(Contents contents) : contents_(std::move(contents)) {
  muids_.reserve(routes().size());
  routesByMuid_.reserve(routes().size());
  for (const FeedRoute& route : routes()) {
    muids_.push_back(stableMuid(feedName(), route.id));
    routesByMuid_.emplace_back(muids_.back(), static_cast<std::uint32_t>(routesByMuid_.size()));
  }
  std::sort(routesByMuid_.begin(), routesByMuid_.end());
}

std::optional<std::size_t> LineIndex::routeWithId(std::string_view id) const {
  const std::optional<std::size_t> route = routeWithMuid(stableMuid(feedName(), id));
  return route && routes()[*route].id == id ? route : std::nullopt;
}

std::optional<std::size_t> LineIndex::routeWithMuid(std::uint64_t muid) const {
  const auto place = std::lower_bound(routesByMuid_.begin(), routesByMuid_.end(), std::pair(muid, 0U));
  return place != routesByMuid_.end() && place->first == muid ? std::optional<std::size_t>(place->second)
                                                              : std::nullopt;
}

const std::string& LineIndex::nameOfRoute(std::size_t route) const {
  const FeedRoute& entry = routes()[route];
  if (!entry.shortName.empty()) return entry.shortName;
  return entry.longName.empty() ? entry.id : entry.longName;
}

}  // namespace linewatch
