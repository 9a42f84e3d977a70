#include "shared/installation.h"

#include <system_error>

namespace linewatch {

std::filesystem::path installationRoot() {
  std::error_code error;
  const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  const bool isPart = folder.filename() == "linewatch" && folder.parent_path().filename() == "lib";
  return isPart ? folder.parent_path().parent_path() : folder.parent_path();
}

}  // namespace linewatch
