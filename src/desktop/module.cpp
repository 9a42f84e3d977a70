#include "desktop/module.h"

#include <filesystem>
#include <string>
#include <system_error>

#include <dlfcn.h>

namespace linewatch::desktop {

namespace {

std::filesystem::path modulePath(std::string_view module) {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return program.parent_path().parent_path() / "lib" / "linewatch" / (std::string(module) + ".so");
}

std::string loaderError() {
  const char* message = dlerror();
  return message ? message : "unknown error of the loader";
}

}  // namespace

Outcome<void*> moduleEntry(std::string_view module, const char* entry) {
  // The loader counts and never unloads: what a module gave out must stay valid.
  void* const handle = dlopen(modulePath(module).c_str(), RTLD_NOW | RTLD_NODELETE);
  if (!handle) return failure("cannot load a part of the program", module, loaderError());
  void* const address = dlsym(handle, entry);
  if (!address) return failure("cannot load a part of the program", module, loaderError());
  return address;
}

}  // namespace linewatch::desktop
