#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace linewatch::simulation {

/// Appends a key or an index to a path such as `lines.A.incidents[2]`. A key that could be misread in one is
/// put in brackets and quotes.
void appendKey(std::string& path, std::string_view key);
void appendIndex(std::string& path, std::size_t index);

/// Where in a scenario a value stands. Refers to the place it is within, which must outlive it, and to its
/// key.
class Place {
 public:
  /// The whole scenario.
  Place() = default;
  Place(const Place& within, std::string_view key) : within_(&within), key_(key) {}
  Place(const Place& within, std::size_t index) : within_(&within), index_(index) {}

  /// Empty for the whole scenario.
  std::string path() const;

 private:
  const Place* within_ = nullptr;
  std::string_view key_;
  std::optional<std::size_t> index_;
};

}  // namespace linewatch::simulation
