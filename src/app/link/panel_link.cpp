#include "app/link/panel_link.h"

#include <filesystem>
#include <system_error>

#include "shared/module.h"

namespace linewatch::app {

namespace {

/// A quick look, because most runs without a bus need not load the library for it.
bool hasSessionBus(const Environment& environment) {
  if (!valueOf(environment, "DBUS_SESSION_BUS_ADDRESS").empty()) return true;
  const std::string folder = valueOf(environment, "XDG_RUNTIME_DIR");
  std::error_code ignored;
  return !folder.empty() && std::filesystem::is_socket(folder + "/bus", ignored);
}

}  // namespace

std::unique_ptr<PanelLink> connectToPanel(const std::string& busName, const Environment& environment) {
  std::unique_ptr<PanelLink> link;
  if (!hasSessionBus(environment)) return link;
  if (const auto entry = moduleEntry("sdbus", "linewatch_connectToPanel"))
    reinterpret_cast<void (*)(const std::string&, std::unique_ptr<PanelLink>&)> (*entry)(busName, link);
  return link;
}

}  // namespace linewatch::app
