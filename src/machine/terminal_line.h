#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// The text as one line that is safe on a terminal: control characters, line ends and overrides of the
/// direction become spaces. Route ids and file names need this, because they are stored unchanged.
std::string terminalLine(std::string_view text);

}  // namespace linewatch
