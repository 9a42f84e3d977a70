#include "app/run_settings.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "platform/log.h"
#include "shared/environment.h"
#include "storage/state_directories.h"

namespace linewatch::app {

namespace {

constexpr std::string_view kFileName = "settings.toml";
/// The preference that switches the analytics off for one run.
constexpr std::string_view kAnalyticsPreference = "Rova.LineWatch.recordAnalytics";

std::filesystem::path settingsFile(const CommonOptions& options) {
  if (isWithoutSavedState(options)) return {};
  const auto folders = options.stateDir ? StateDirectories::under(*options.stateDir)
                                        : StateDirectories::fromEnvironment(processEnvironment);
  // The session reports the error.
  return folders && !folders->settings.empty() ? folders->settings / kFileName : std::filesystem::path();
}

UserSettings::Given givenTexts(const CommandLine& line) {
  UserSettings::Given given;
  if (line.common.locale) given.emplace("language", line.common.locale->tag());
  const auto analytics = line.common.preferences.find(kAnalyticsPreference);
  const bool* const isOn =
      analytics == line.common.preferences.end() ? nullptr : analytics->second.get<bool>();
  if (isOn) given.emplace("analytics", *isOn ? "true" : "false");
  if (!line.common.catalogue.empty()) given.emplace("catalogue", line.common.catalogue);
  if (const auto* const panel = std::get_if<PanelCommand>(&line.command)) {
    if (panel->companion) given.emplace("companion", *panel->companion);
    if (panel->refresh) given.emplace("refresh", *panel->refresh);
  }
  return given;
}

}  // namespace

std::shared_ptr<UserSettings> settingsOfRun(const CommandLine& line) {
  return std::make_shared<UserSettings>(settingsFile(line.common), givenTexts(line));
}

bool rereadSettings(UserSettings& settings) {
  const std::vector<std::string> before = settings.faults();
  if (!settings.reread()) return false;
  for (const std::string& fault : settings.faults()) {
    if (std::ranges::find(before, fault) == before.end()) logError("%@", {fault});
  }
  return true;
}

}  // namespace linewatch::app
