#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace linewatch::simulation {

/// Appends a key or an index to a path such as `lines.A.incidents[2]`. A key with other characters than
/// letters, digits, _ and - is quoted: `lines["A 1"]`.
void appendKey(std::string& path, std::string_view key);
void appendIndex(std::string& path, std::size_t index);

/// The place of a value in a scenario. It refers to the place around it and to its key; both must outlive it.
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
