#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/command_line.h"

namespace linewatch::app {

/// Completes a command line that is being typed. `words` are the words after "linewatch"; the last one is
/// completed, and may be empty. The result has the subcommands, options and values that begin with it, and
/// the kind of names (lines, feeds) that can stand there.
CompleteCommand completionOf(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace linewatch::app
