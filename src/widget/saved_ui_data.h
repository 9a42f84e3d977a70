#pragma once

#include <memory>
#include <string_view>

#include "widget/transit_incident_view_controller_state.h"

namespace linewatch {

/// The key of the saved state in the preferences that the widget shares with the companion application.
inline constexpr std::string_view kSavedUIDataKey = "Rova.LineWatch.savedUIData";

/// Replaces the saved state. False when this one could not be archived or written; then the old one stays.
/// Main thread.
bool saveUIData(const std::shared_ptr<const RVTransitIncidentViewControllerState>& state);

/// The saved state; null when there is none, or none that can be read. What fails to decode is removed. Main
/// thread.
std::shared_ptr<const RVTransitIncidentViewControllerState> loadSavedUIData();

}  // namespace linewatch
