#pragma once

#include <functional>

#include "app/command_line.h"
#include "app/report.h"

namespace linewatch::app {

/// Runs the program and returns its exit status. For commands that draw, the process becomes
/// linewatch-screen.
int run(int argc, char** argv);

/// Parses the command line, calls `run` with it, prints the report and returns the exit status.
int runCommandLine(int argc, char** argv, const std::function<Report(const CommandLine&)>& run);

}  // namespace linewatch::app
