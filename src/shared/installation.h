#pragma once

#include <filesystem>

namespace linewatch {

/// The folder under which the program lies with what belongs to it: the program in bin, the parts that are
/// loaded or started when they are needed in lib/linewatch, the sample city in share/linewatch/city. Each is
/// found from the place of the running program, so that the folder can be moved. Any thread.
std::filesystem::path installationRoot();

inline std::filesystem::path installedParts() { return installationRoot() / "lib" / "linewatch"; }
inline std::filesystem::path installedSampleCity() {
  return installationRoot() / "share" / "linewatch" / "city";
}

}  // namespace linewatch
