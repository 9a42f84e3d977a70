#pragma once

namespace linewatch::app {

/// Runs the program under a QCoreApplication and gives its exit status.
int run(int argc, char** argv);

}  // namespace linewatch::app
