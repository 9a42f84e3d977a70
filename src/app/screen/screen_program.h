#pragma once

namespace linewatch::app {

/// Runs the commands that draw, and returns the exit status. The arguments are those of linewatch.
int runOnScreen(int argc, char** argv);

}  // namespace linewatch::app
