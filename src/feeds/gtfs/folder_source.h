#pragma once

#include <filesystem>

#include "feeds/gtfs/gtfs_source.h"

namespace linewatch {

/// The tables of a feed as files of one folder.
class FolderSource final : public GtfsSource {
 public:
  explicit FolderSource(std::filesystem::path folder);

  /// A folder that is not there is an error, not a feed without tables.
  Outcome<std::optional<std::string>> file(std::string_view name) override;

 private:
  std::filesystem::path folder_;
};

}  // namespace linewatch
