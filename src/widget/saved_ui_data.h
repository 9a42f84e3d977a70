#pragma once

#include <memory>
#include <string_view>

#include "widget/transit_incident_view_controller_state.h"

namespace linewatch {

/// The key of the saved state in the preferences that the widget shares with the companion application.
inline constexpr std::string_view kSavedUIDataKey = "Rova.LineWatch.savedUIData";

/// Replaces the saved state; the old one stays when this one cannot be archived. Main thread.
void saveUIData(const std::shared_ptr<const RVTransitIncidentViewControllerState>& state);

/// The saved state; null when there is none, or none that can be read. What fails to decode is removed. Main
/// thread.
std::shared_ptr<const RVTransitIncidentViewControllerState> loadSavedUIData();

}  // namespace linewatch
