#pragma once

#include <filesystem>

#include "feeds/gtfs/gtfs_source.h"

namespace linewatch {

/// The tables of a feed as files of one folder.
class FolderSource final : public GtfsSource {
 public:
  explicit FolderSource(std::filesystem::path folder);

  /// A missing folder is an error; a missing table in the folder is not.
  Outcome<std::optional<std::string>> file(std::string_view name) override;

 private:
  std::filesystem::path folder_;
};

}  // namespace linewatch
