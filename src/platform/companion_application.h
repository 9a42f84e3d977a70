#pragma once

#include <string_view>

namespace linewatch {

/// The reverse-domain prefix of the companion application's bundle and activity names.
inline constexpr std::string_view kCompanionReverseDomainPrefix = "org.linewatch.";

/// The name of the preferences suite that the companion application shares with its widget.
inline constexpr std::string_view kCompanionAppGroupSuite = "group.org.linewatch.Rova";

}  // namespace linewatch
