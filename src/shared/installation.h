#pragma once

#include <filesystem>

namespace linewatch {

/// The folder of the installation. It holds the program in bin, its modules and second program in
/// lib/linewatch, and the sample city in share/linewatch/city. It is found from the path of the running
/// program, so an installation can be moved. Any thread.
std::filesystem::path installationRoot();

inline std::filesystem::path installedParts() { return installationRoot() / "lib" / "linewatch"; }
inline std::filesystem::path installedSampleCity() {
  return installationRoot() / "share" / "linewatch" / "city";
}

}  // namespace linewatch
