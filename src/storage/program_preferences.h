#pragma once

#include <string_view>

namespace linewatch {

/// The suite of preferences that are the program's own, and none of the widget's.
inline constexpr std::string_view kProgramSuite = "org.linewatch.program";

}  // namespace linewatch
