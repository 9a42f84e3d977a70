#pragma once

#include <filesystem>

namespace linewatch {

/// The folder of the installation. It holds the program in bin, its modules and second program in
/// lib/linewatch, and the sample city in share/linewatch/city. It is, in this order:
///  - the folder of the last `useInstallation`,
///  - the folder that has liblinewatch-system.so in its lib, if the process uses that shared library,
///  - the folder that has the running program in its bin.
/// So an installation can be moved. Any thread.
std::filesystem::path installationRoot();

/// Uses the installation in `folder` from now on. A program that links the static libraries calls this before
/// anything else, as nothing else shows where the modules are:
///
///     linewatch::useInstallation(LINEWATCH_INSTALLATION);
///
/// The CMake package defines LINEWATCH_INSTALLATION as the folder that it is installed in; pkg-config has it
/// as the variable `prefix`. An empty folder undoes an earlier call. Any thread.
void useInstallation(std::filesystem::path folder);

inline std::filesystem::path installedParts() { return installationRoot() / "lib" / "linewatch"; }
inline std::filesystem::path installedSampleCity() {
  return installationRoot() / "share" / "linewatch" / "city";
}

}  // namespace linewatch
