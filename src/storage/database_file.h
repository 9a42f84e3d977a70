#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <utility>

#include <sys/types.h>

namespace linewatch {

/// A database file, the files that SQLite keeps beside it, and its damaged predecessors. Holds no descriptor
/// and no state, so any thread may use it.
class DatabaseFile {
 public:
  /// Identifies the file, so that a replaced file is noticed.
  struct Identity {
    dev_t device;
    ino_t inode;
    bool operator==(const Identity&) const = default;
  };

  explicit DatabaseFile(std::filesystem::path path) : path_(std::move(path)) {}

  const std::filesystem::path& path() const { return path_; }
  /// Absent when there is no file, or when its folder may not be searched.
  std::optional<Identity> identity() const;
  /// False when it is unknown because a folder on the way may not be searched.
  bool isKnownAbsent() const;
  bool hasNoBytes() const;
  /// The name of the write-ahead log beside the file, and whether there is one.
  std::string logName() const;
  bool hasLog() const;
  /// Gives the log, if there is one, the present time, which whoever watches the file notices. SQLite writes
  /// a commit to the log well before it can be read.
  void touchLog() const;

  /// Makes the folder and its missing parents, all with mode 0700. An existing folder loses the rights of
  /// group and others, unless another user owns it or its sticky bit says that it is shared, as /tmp is.
  std::error_code makeFolder() const;
  /// Reduces the modes of the file and of SQLite's files beside it to 0600 at most. Files of another user
  /// stay as they are.
  void restrictToOwner() const;
  /// Creates the file with these bytes atomically: no program ever sees a part of it. When another program
  /// has created it first, that file stays, without an error.
  std::error_code create(std::span<const std::uint8_t> bytes) const;

  /// Renames the file, with its journal or log, to the next free name: "x.damaged", "x.damaged-2" … Does
  /// nothing when another program has already replaced the `damaged` file.
  std::error_code setAside(const std::optional<Identity>& damaged) const;
  /// The file that was set aside last, by any program; absent when there is none.
  std::optional<std::filesystem::path> lastSetAside() const;

 private:
  std::filesystem::path beside(const char* suffix) const;
  std::filesystem::path damagedName(int number) const;
  int countSetAside() const;
  std::error_code putInPlace(const std::filesystem::path& made) const;
  void removeUnfinished() const;

  std::filesystem::path path_;
};

}  // namespace linewatch
