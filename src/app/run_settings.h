#pragma once

#include <memory>

#include "app/command_line.h"
#include "settings/user_settings.h"

namespace linewatch::app {

/// The settings of a run: the file in the user's folder, or in that of --state-dir, under what the command
/// line says. A run without saved state has no file. Reads nothing yet.
std::shared_ptr<UserSettings> settingsOfRun(const CommandLine& line);

/// Reads the settings file again, and logs the mistakes that are new. True if the file has changed.
bool rereadSettings(UserSettings& settings);

}  // namespace linewatch::app
