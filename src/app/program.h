#pragma once

#include <functional>

#include "app/command_line.h"
#include "app/report.h"

namespace linewatch::app {

/// Runs the program and gives its exit status. Commands that draw go on in another program.
int run(int argc, char** argv);

/// Runs what the command line asks for and prints what comes of it; the exit status.
int runCommandLine(int argc, char** argv, const std::function<Report(const CommandLine&)>& run);

}  // namespace linewatch::app
