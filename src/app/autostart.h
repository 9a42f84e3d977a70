#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "shared/environment.h"
#include "shared/error.h"

namespace linewatch::app {

/// The desktop entry by which the user's desktop starts the panel at login. Any thread.
class Autostart {
 public:
  /// `stateFolder`: the folder that the started panel uses; absent for the user's usual one. Each folder has
  /// an entry of its own, because it has settings of its own.
  Autostart(const Environment& environment, std::optional<std::string> stateFolder);

  /// The entry's file; empty when the user's folders are not known.
  const std::filesystem::path& file() const { return file_; }
  /// Writes the entry, or removes it if this program has written it. An entry that is as wanted, or that the
  /// user or a package has written, stays untouched.
  std::optional<Error> apply(bool isOn) const;

 private:
  std::string entry() const;

  std::filesystem::path file_;
  std::optional<std::string> stateFolder_;
};

}  // namespace linewatch::app
