#pragma once

#include <string>
#include <vector>

namespace linewatch::app {

/// What a run of the program left behind.
struct ProgramRun {
  int status = -1;
  std::string output;
  std::string errors;
};

/// Runs the built program with an empty environment but for what `environment` says ("NAME=VALUE").
ProgramRun runProgram(const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment = {});

}  // namespace linewatch::app
