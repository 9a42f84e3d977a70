#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/outcome.h"

namespace linewatch {

/// Splits a command into words as a shell does: at blanks, except inside quotes and after a backslash.
/// Variables, globs and substitutions are not expanded: all other characters stand for themselves. Fails when
/// a quote is not closed or nothing follows a backslash.
Outcome<std::vector<std::string>> shellWords(std::string_view command);

}  // namespace linewatch
