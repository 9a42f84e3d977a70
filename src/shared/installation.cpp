#include "shared/installation.h"

#include <system_error>
#include <utility>

#include <dlfcn.h>
#include <link.h>

#include "shared/mutex.h"

namespace linewatch {

namespace {

Mutex chosenMutex;
std::filesystem::path chosenFolder LINEWATCH_GUARDED_BY(chosenMutex);

std::filesystem::path chosenInstallation() {
  const MutexLock lock(chosenMutex);
  return chosenFolder;
}

/// The shared library or the program that contains this code; empty when unknown.
std::filesystem::path fileOfThisCode() {
  Dl_info info{};
  link_map* map = nullptr;
  void* const code = reinterpret_cast<void*>(&installationRoot);
  const bool isKnown = dladdr1(code, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0;
  // The loader knows the program itself by no name.
  const bool isLibrary = isKnown && map != nullptr && map->l_name[0] != '\0';
  std::error_code error;
  if (isLibrary) return std::filesystem::canonical(map->l_name, error);
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

}  // namespace

std::filesystem::path installationRoot() {
  if (auto chosen = chosenInstallation(); !chosen.empty()) return chosen;
  // ROOT/bin/linewatch, ROOT/lib/liblinewatch-system.so or ROOT/lib/linewatch/linewatch-screen
  const auto folder = fileOfThisCode().parent_path();
  const bool isPart = folder.filename() == "linewatch" && folder.parent_path().filename() == "lib";
  return isPart ? folder.parent_path().parent_path() : folder.parent_path();
}

void useInstallation(std::filesystem::path folder) {
  const MutexLock lock(chosenMutex);
  chosenFolder = std::move(folder);
}

}  // namespace linewatch
