#pragma once

#include <memory>
#include <string_view>

#include "widget/transit_incident_view_controller_state.h"

namespace linewatch {

/// The key of the saved state in the app group's preferences.
inline constexpr std::string_view kSavedUIDataKey = "Rova.LineWatch.savedUIData";

/// Replaces the saved state. False when the new state could not be archived or written; the old state then
/// stays. Main thread.
bool saveUIData(const std::shared_ptr<const RVTransitIncidentViewControllerState>& state);

/// The saved state; null when there is none or it cannot be read. A state that fails to decode is removed
/// from the preferences. Main thread.
std::shared_ptr<const RVTransitIncidentViewControllerState> loadSavedUIData();

}  // namespace linewatch
