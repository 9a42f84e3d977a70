#pragma once

#include <map>
#include <string>
#include <utility>

#include "feeds/gtfs/gtfs_reader.h"

namespace linewatch {

/// A feed's tables held in memory, by file name.
class MemorySource final : public GtfsSource {
 public:
  explicit MemorySource(std::map<std::string, std::string, std::less<>> files) : files_(std::move(files)) {}

  Outcome<std::optional<std::string>> file(std::string_view name) override {
    const auto entry = files_.find(name);
    return entry == files_.end() ? std::nullopt : std::optional(entry->second);
  }

 private:
  std::map<std::string, std::string, std::less<>> files_;
};

}  // namespace linewatch
