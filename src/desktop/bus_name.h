#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace linewatch::desktop {

inline constexpr const char* kApplicationId = "org.linewatch.LineWatch";

/// The name on the session bus of the panel with this saved state. Absent stands for the user's own folders,
/// whose panel has the application's id as its name; any other folder has a suffix made from its path. Always
/// the same for the same folder, whichever way it is written.
std::string busNameFor(const std::optional<std::filesystem::path>& stateFolder);

}  // namespace linewatch::desktop
