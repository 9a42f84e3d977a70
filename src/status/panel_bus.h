#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace linewatch {

// The object of a running panel on the session bus. One interface has the properties Status, Summary,
// Incidents (the text of `statusForm`) and Feeds, and the methods Refresh and Show.
inline constexpr std::string_view kPanelBusName = "org.linewatch.LineWatch";
inline constexpr std::string_view kPanelObjectPath = "/org/linewatch/LineWatch";
inline constexpr std::string_view kPanelInterface = "org.linewatch.LineWatch";

/// The bus name of the panel with this state folder, as --state-dir names it; empty: the user's own folder. A
/// folder always has the same name, also by a relative path or a link.
std::string panelBusName(const std::filesystem::path& stateFolder);

}  // namespace linewatch
