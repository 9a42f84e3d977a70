#pragma once

#include <string_view>

namespace linewatch {

/// The suite of the program's own preferences; the widget uses other suites.
inline constexpr std::string_view kProgramSuite = "org.linewatch.program";

}  // namespace linewatch
