#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// The text as one line that is safe to print on a terminal: each control character, line end and mark that
/// changes the direction of text becomes a space. Route ids and file names need this, because they are kept
/// exactly as a feed or a file system has them.
std::string terminalLine(std::string_view text);

}  // namespace linewatch
