#pragma once

#include <filesystem>
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

/// A folder of its own for one test, taken away at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  /// Makes a file, with its folders, and gives its path.
  std::string write(const std::string& name, const std::string& contents) const;

 private:
  std::filesystem::path path_;
};

}  // namespace linewatch::app
