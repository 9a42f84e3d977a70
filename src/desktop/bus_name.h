#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "shared/environment.h"

namespace linewatch::desktop {

inline constexpr const char* kApplicationId = "org.linewatch.LineWatch";

/// The name on the session bus of the panel with this saved state: the application's id and a suffix made
/// from the path of the state folder. Always the same for the same folder, whichever way it is written.
/// Absent stands for the user's own folders. Empty if there is no such folder.
std::string busNameFor(const std::optional<std::filesystem::path>& stateFolder,
                       const Environment& environment);

}  // namespace linewatch::desktop
