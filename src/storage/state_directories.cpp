#include "storage/state_directories.h"

#include <string>
#include <system_error>

#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr const char* kFolderName = "linewatch";

std::filesystem::path absoluteOrNone(const char* value) {
  std::filesystem::path path = value != nullptr ? value : "";
  return path.is_absolute() ? path : std::filesystem::path();
}

/// Empty when neither the variable nor HOME is an absolute path.
std::filesystem::path folderFor(const Environment& environment, const char* variable,
                                const char* folderInHome) {
  const auto base = absoluteOrNone(environment(variable));
  if (!base.empty()) return base / kFolderName;
  const auto home = absoluteOrNone(environment("HOME"));
  return home.empty() ? home : home / folderInHome / kFolderName;
}

}  // namespace

Outcome<StateDirectories> StateDirectories::under(const std::filesystem::path& folder) {
  if (folder.empty()) return failure("state folder", "", "its name is empty");
  std::error_code error;
  const auto absolute = std::filesystem::absolute(folder, error);
  if (error) return failure("state folder", folder.string(), error.message());
  if (std::filesystem::exists(absolute, error) && !std::filesystem::is_directory(absolute, error))
    return failure("state folder", folder.string(), "it is not a folder");
  return StateDirectories{absolute, absolute / "cache", absolute};
}

Outcome<StateDirectories> StateDirectories::fromEnvironment(const Environment& environment) {
  StateDirectories folders{folderFor(environment, "XDG_DATA_HOME", ".local/share"),
                           folderFor(environment, "XDG_CACHE_HOME", ".cache"),
                           folderFor(environment, "XDG_CONFIG_HOME", ".config")};
  if (folders.data.empty() || folders.cache.empty()) {
    return failure("state folder", "", "HOME is not set to an absolute path, and --state-dir is not given");
  }
  return folders;
}

}  // namespace linewatch
