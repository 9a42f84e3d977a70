#include "status/panel_bus.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <system_error>

namespace linewatch {

namespace {

/// FNV-1a.
std::uint64_t hashOf(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
  return hash;
}

std::filesystem::path withoutLinks(const std::filesystem::path& folder) {
  std::error_code error;
  auto absolute = std::filesystem::weakly_canonical(std::filesystem::absolute(folder, error), error);
  if (error) return folder;
  // "folder/" names the same folder.
  return absolute.has_filename() ? absolute : absolute.parent_path();
}

}  // namespace

std::string panelBusName(const std::filesystem::path& stateFolder) {
  std::string name(kPanelBusName);
  if (stateFolder.empty()) return name;
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx",
                static_cast<unsigned long long>(hashOf(withoutLinks(stateFolder).string())));
  // An element of a bus name begins with a letter.
  return name + ".State" + digits.data();
}

}  // namespace linewatch
