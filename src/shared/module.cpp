#include "shared/module.h"

#include <string>

#include <dlfcn.h>

#include "shared/failure.h"
#include "shared/installation.h"

namespace linewatch {

namespace {

/// The loader's last error.
Error unloadable(std::string_view module) {
  const char* const message = dlerror();
  return failure("cannot load a part of the program", module,
                 message ? message : "unknown error of the loader");
}

}  // namespace

Outcome<void*> moduleEntry(std::string_view module, const char* entry) {
  // Never unloaded: objects that a module made stay valid.
  void* const handle =
      dlopen((installedParts() / (std::string(module) + ".so")).c_str(), RTLD_NOW | RTLD_NODELETE);
  if (!handle) return unloadable(module);
  void* const address = dlsym(handle, entry);
  if (!address) return unloadable(module);
  return address;
}

}  // namespace linewatch
