#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/command_line.h"

namespace linewatch::app {

/// What can stand for the last of these words, which follow "linewatch" on a command line that is being
/// typed: the subcommands or options that begin with it, and the kind of names that can stand there.
CompleteCommand completionOf(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace linewatch::app
