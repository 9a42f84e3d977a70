#pragma once

namespace linewatch::app {

/// The main function of linewatch-screen, the program for commands that draw. It has the arguments of
/// linewatch, and returns the exit status.
int runOnScreen(int argc, char** argv);

}  // namespace linewatch::app
