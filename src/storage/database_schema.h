#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace linewatch {

/// The tables of a database file, and how the file is recognised.
struct DatabaseSchema {
  /// What messages call it, e.g. "state database".
  std::string_view name;
  /// Marks the file as one of this kind, in SQLite's own field for it.
  std::int32_t applicationId;
  /// The statements that lead from each version to the next, the first ones from an empty file to version 1.
  std::span<const std::string_view> migrations;
  /// Advice to the user after a damaged file was set aside; empty when the contents can be fetched again.
  std::string_view remedy = {};
  /// A value of SQLite's `PRAGMA synchronous`. EXTRA keeps every commit through a power cut, also with a
  /// rollback journal; for a write-ahead log it equals FULL.
  std::string_view synchronous = "EXTRA";

  std::int64_t version() const { return static_cast<std::int64_t>(migrations.size()); }
};

}  // namespace linewatch
