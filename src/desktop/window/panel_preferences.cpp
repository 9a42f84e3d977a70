#include "desktop/window/panel_preferences.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "platform/platform.h"
#include "platform/preferences_store.h"
#include "storage/program_preferences.h"

namespace linewatch::desktop {

namespace {

constexpr std::string_view kExpandedKey = "panelExpanded";
constexpr std::string_view kListDateKey = "panelListDate";
constexpr std::string_view kWidthKey = "panelWidth";
constexpr std::string_view kLeftKey = "panelLeft";
constexpr std::string_view kTopKey = "panelTop";

std::shared_ptr<PreferencesStore> programPreferences() {
  return platform().makePreferencesStore(kProgramSuite);
}

/// Absent for anything but a finite number, e.g. in a damaged store.
std::optional<double> numberFor(std::string_view key) {
  const auto value = programPreferences()->objectForKey(key);
  const auto* const number = value ? value->get<double>() : nullptr;
  return number && std::isfinite(*number) ? std::optional(*number) : std::nullopt;
}

constexpr double kFarthest = 1e6;

int coordinate(double number) {
  return static_cast<int>(std::clamp(std::round(number), -kFarthest, kFarthest));
}

}  // namespace

std::optional<bool> loadExpansion() {
  const auto preferences = programPreferences();
  if (!preferences->objectForKey(kExpandedKey)) return std::nullopt;
  return preferences->boolForKey(kExpandedKey);
}

void saveExpansion(bool isExpanded) { programPreferences()->setObject(isExpanded, kExpandedKey); }

SavedPlace loadPlace() {
  SavedPlace place;
  const auto left = numberFor(kLeftKey), top = numberFor(kTopKey), width = numberFor(kWidthKey);
  if (left && top) place.corner = SavedPlace::Corner{coordinate(*left), coordinate(*top)};
  if (width && *width > 0) place.width = std::min(*width, kFarthest);
  return place;
}

void savePlace(const SavedPlace& place) {
  const SavedPlace saved = loadPlace();
  const auto preferences = programPreferences();
  if (place.width && place.width != saved.width) preferences->setObject(*place.width, kWidthKey);
  if (!place.corner || place.corner == saved.corner) return;
  preferences->setObject(double(place.corner->x), kLeftKey);
  preferences->setObject(double(place.corner->y), kTopKey);
}

std::optional<Date> loadListDate() {
  const auto seconds = numberFor(kListDateKey);
  return seconds ? std::optional(Date(Seconds(*seconds))) : std::nullopt;
}

void saveListDate(std::optional<Date> date) {
  if (!date) return programPreferences()->removeObject(kListDateKey);
  programPreferences()->setObject(secondsOf(*date), kListDateKey);
}

}  // namespace linewatch::desktop
