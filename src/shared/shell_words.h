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

/// The word for a command that the user can copy: in single quotes unless a shell takes it as it is.
std::string shellQuoted(std::string_view word);

}  // namespace linewatch
