#pragma once

#include <CLI/CLI.hpp>

#include "app/command_line.h"

namespace linewatch::app {

/// Adds the options of all commands. Parsing stores their values in `options`.
void addCommonOptions(CLI::App& app, CommonOptions& options);

}  // namespace linewatch::app
