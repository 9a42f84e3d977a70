#pragma once

#include <filesystem>

#include "shared/outcome.h"

namespace linewatch {

/// A folder in the temporary directory for files that a companion command reads. Only the user may open it.
/// The destructor deletes it with its files. A process that is killed leaves its folder behind; the next
/// process removes it with `removeAbandoned`.
class ContentFolder {
 public:
  /// `parent`: the temporary directory.
  static Outcome<ContentFolder> make(const std::filesystem::path& parent);
  /// Deletes the folders of this user's processes that have ended. A folder whose process still runs is
  /// locked, and stays.
  static void removeAbandoned(const std::filesystem::path& parent);

  ContentFolder(ContentFolder&& other) noexcept;
  ContentFolder& operator=(ContentFolder&&) = delete;
  ~ContentFolder();

  const std::filesystem::path& path() const { return path_; }

 private:
  ContentFolder(std::filesystem::path path, int descriptor)
      : path_(std::move(path)), descriptor_(descriptor) {}

  std::filesystem::path path_;
  /// The locked folder; negative after a move. The kernel unlocks it when the process ends.
  int descriptor_;
};

}  // namespace linewatch
