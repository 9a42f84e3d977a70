#pragma once

#include <string_view>

namespace linewatch {

/// The reverse-domain prefix under which the companion application's names stand.
inline constexpr std::string_view kCompanionReverseDomainPrefix = "org.linewatch.";

/// The suite of preferences that the companion application shares with its widget.
inline constexpr std::string_view kCompanionAppGroupSuite = "group.org.linewatch.Rova";

}  // namespace linewatch
