#pragma once

#include <cstdint>
#include <filesystem>

#include "feeds/gtfs/gtfs_source.h"

namespace linewatch {

/// The tables of a feed as files of one folder.
class FolderSource final : public GtfsSource {
 public:
  explicit FolderSource(std::filesystem::path folder);

  /// A missing folder is an error; a missing table in the folder is not.
  Outcome<std::optional<std::string>> file(std::string_view name) override;
  Outcome<bool> read(std::string_view name, const PieceTaker& take) override;

 private:
  /// The size in bytes; none when the feed does not have the table.
  Outcome<std::optional<std::uintmax_t>> sizeOf(std::string_view name) const;

  std::filesystem::path folder_;
};

}  // namespace linewatch
