#pragma once

namespace linewatch::app {

/// Runs the commands that draw, with the command line of the program, and gives the exit status.
int runOnScreen(int argc, char** argv);

}  // namespace linewatch::app
