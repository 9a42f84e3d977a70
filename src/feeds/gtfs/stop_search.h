#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/gtfs/gtfs_source.h"
#include "feeds/gtfs/stop_names.h"
#include "shared/outcome.h"

namespace linewatch {

/// A feed that has stops.txt only. The text must outlive it.
class StopsTable final : public GtfsSource {
 public:
  explicit StopsTable(std::string_view text) : text_(text) {}

  Outcome<std::optional<std::string>> file(std::string_view name) override {
    return name == kStopsTable ? std::optional(std::string(text_)) : std::nullopt;
  }
  Outcome<bool> read(std::string_view name, const PieceTaker& take) override {
    if (name == kStopsTable) take(text_);
    return name == kStopsTable;
  }

 private:
  std::string_view text_;
};

using StopIds = std::set<std::string, std::less<>>;

/// Reads only the rows of stops.txt that have one of the ids, and gives them as pages. Far quicker than
/// `readStopPages`, because the values of all other rows are skipped. The pages may have other stops too.
Outcome<std::vector<StopPage>> findStops(GtfsSource& source, const StopIds& ids);

}  // namespace linewatch
