#include "desktop/remembered_in_state.h"

#include <string_view>

#include "platform/preferences_store.h"
#include "storage/program_preferences.h"

namespace linewatch::desktop {

namespace {

constexpr std::string_view kTextSizeKey = "panelTextSize";

}  // namespace

std::optional<std::string> RememberedInState::find(const Setting& setting) const {
  if (&setting == &kAnalyticsSetting)
    return saved_.recordsAnalytics() ? std::nullopt : std::optional<std::string>("false");
  if (&setting != &kTextSizeSetting) return std::nullopt;
  const auto value = saved_.preferences(kProgramSuite)->objectForKey(kTextSizeKey);
  const auto* const name = value ? value->get<std::string>() : nullptr;
  return name ? std::optional(*name) : std::nullopt;
}

void RememberedInState::forget(const Setting& setting) {
  if (&setting == &kAnalyticsSetting) saved_.forgetAnalyticsSwitch();
  if (&setting == &kTextSizeSetting) saved_.preferences(kProgramSuite)->removeObject(kTextSizeKey);
}

}  // namespace linewatch::desktop
