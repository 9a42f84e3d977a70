#include "desktop/window/panel_preferences.h"

#include <string>
#include <string_view>

#include "platform/platform.h"
#include "platform/preferences_store.h"
#include "storage/program_preferences.h"

namespace linewatch::desktop {

namespace {

constexpr std::string_view kExpandedKey = "panelExpanded";
constexpr std::string_view kListDateKey = "panelListDate";

std::shared_ptr<PreferencesStore> programPreferences() {
  return platform().makePreferencesStore(kProgramSuite);
}

}  // namespace

std::optional<bool> loadExpansion() {
  const auto preferences = programPreferences();
  if (!preferences->objectForKey(kExpandedKey)) return std::nullopt;
  return preferences->boolForKey(kExpandedKey);
}

void saveExpansion(bool isExpanded) { programPreferences()->setObject(isExpanded, kExpandedKey); }

std::optional<Date> loadListDate() {
  const auto value = programPreferences()->objectForKey(kListDateKey);
  const auto* const seconds = value ? value->get<double>() : nullptr;
  return seconds ? std::optional(Date(Seconds(*seconds))) : std::nullopt;
}

void saveListDate(std::optional<Date> date) {
  if (!date) return programPreferences()->removeObject(kListDateKey);
  programPreferences()->setObject(secondsOf(*date), kListDateKey);
}

}  // namespace linewatch::desktop
