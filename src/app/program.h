#pragma once

namespace linewatch::app {

/// Runs the program and gives its exit status. Commands that draw go on in another program.
int run(int argc, char** argv);

}  // namespace linewatch::app
