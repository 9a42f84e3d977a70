#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// A name from a feed as one line to show: white space is folded, and hidden characters (controls, direction
/// overrides, tags, fillers) are dropped. A name without a visible character is empty.
std::string singleLine(std::string_view text);

}  // namespace linewatch
