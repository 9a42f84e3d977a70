#pragma once

#include <string>
#include <vector>

namespace linewatch::app {

/// The result of one run of the program.
struct ProgramRun {
  int status = -1;
  std::string output;
  std::string errors;
};

/// Runs the built program with `input` on its standard input. Its environment is empty except for
/// `environment`, as "NAME=VALUE".
ProgramRun runProgram(const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment = {}, const std::string& input = "");

}  // namespace linewatch::app
