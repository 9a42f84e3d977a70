#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/outcome.h"

namespace linewatch::app {

/// The words of a command as a shell tells them apart: at blanks, except where single quotes, double quotes
/// or a backslash keep them together. Nothing is looked up or put in place of anything, so no other character
/// means more than itself. Fails where a quote is not closed, or nothing follows a backslash.
Outcome<std::vector<std::string>> shellWords(std::string_view command);

}  // namespace linewatch::app
