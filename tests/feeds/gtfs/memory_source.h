#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "feeds/gtfs/gtfs_reader.h"

namespace linewatch {

/// A feed's tables held in memory, by file name. `read` hands them out in pieces of at most `pieceSize`
/// bytes.
class MemorySource final : public GtfsSource {
 public:
  using Files = std::map<std::string, std::string, std::less<>>;

  explicit MemorySource(Files files, std::size_t pieceSize = std::string::npos)
      : files_(std::move(files)), pieceSize_(pieceSize) {}

  Outcome<std::optional<std::string>> file(std::string_view name) override {
    const auto entry = files_.find(name);
    return entry == files_.end() ? std::nullopt : std::optional(entry->second);
  }
  Outcome<bool> read(std::string_view name, const PieceTaker& take) override {
    const auto entry = files_.find(name);
    if (entry == files_.end()) return false;
    const std::string_view table = entry->second;
    for (taken = 0; taken < table.size();) {
      const std::string_view piece = table.substr(taken, pieceSize_);
      taken += piece.size();
      if (!take(piece)) break;
    }
    return true;
  }

  /// The bytes that the last `read` handed out.
  std::size_t taken = 0;

 private:
  Files files_;
  std::size_t pieceSize_;
};

}  // namespace linewatch
