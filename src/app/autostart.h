#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "settings/user_settings.h"
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
  /// Whether the desktop starts the panel at login: there is an entry, and the desktop has not switched it
  /// off.
  bool isOn() const;
  /// The setting's value. About autostart, the desktop has the last word.
  SettingValue find(const UserSettings& settings, const Setting& setting) const;
  /// Writes the entry, or removes it if this program has written it. To be called only when the user has just
  /// chosen this, because it undoes what the user has chosen in the desktop. An entry that the user or a
  /// package has written stays untouched; it is an error if it is not as wanted.
  std::optional<Error> apply(bool isOn) const;

 private:
  std::string entry() const;

  std::filesystem::path file_;
  std::optional<std::string> stateFolder_;
};

}  // namespace linewatch::app
