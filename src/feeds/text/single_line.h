#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// A feed's name of something as one line to show: white space is folded, and control characters and the
/// marks that would turn the direction of the text around it are dropped.
std::string singleLine(std::string_view text);

}  // namespace linewatch
