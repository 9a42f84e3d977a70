#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "localization/icu_localization.h"
#include "shared/date.h"
#include "status/transit_status.h"

namespace linewatch::app {

enum class StatusFormat : std::uint8_t { plain, json, waybar, i3blocks, polybar, genmon, argos };

/// In the order of the enumeration.
inline constexpr std::array<std::string_view, 7> kStatusFormatNames = {
    "plain", "json", "waybar", "i3blocks", "polybar", "genmon", "argos"};

/// Whether a reader of this format reads line after line from one run. The others run the command at an
/// interval and read all that it prints.
bool isStream(StatusFormat format);

/// Whether the exit status is 0 although the incidents could not be loaded, because a status bar would hide
/// the line, or show an error instead.
bool alwaysSucceeds(StatusFormat format);

/// The status as a status bar reads it, with the line end: one line, but for Argos a menu of several. Texts
/// of feeds are escaped, so that the bar does not read them as markup or commands.
std::string statusText(StatusFormat format, const TransitStatus& status, Date now, IcuLocalization& texts);

}  // namespace linewatch::app
