#include "desktop/bus_name.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <system_error>

#include "storage/state_directories.h"

namespace linewatch::desktop {

namespace {

/// FNV-1a. The name is part of the interface to other programs, so it must not depend on the standard
/// library.
std::uint64_t hashOf(const std::string& text) {
  std::uint64_t hash = 0xCBF29CE484222325ULL;
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3ULL;
  return hash;
}

/// Without links, "..", and slashes at the end. The folder need not exist.
std::string canonicalPath(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::path path =
      std::filesystem::weakly_canonical(std::filesystem::absolute(folder, error), error);
  if (error) path = folder.lexically_normal();
  return path.has_filename() ? path.string() : path.parent_path().string();
}

}  // namespace

std::string busNameFor(const std::optional<std::filesystem::path>& stateFolder,
                       const Environment& environment) {
  const auto folders =
      stateFolder ? StateDirectories::under(*stateFolder) : StateDirectories::fromEnvironment(environment);
  if (!folders) return {};
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx",
                static_cast<unsigned long long>(hashOf(canonicalPath(folders->data))));
  // A part of a bus name must not begin with a digit.
  return std::string(kApplicationId) + ".state_" + digits.data();
}

}  // namespace linewatch::desktop
