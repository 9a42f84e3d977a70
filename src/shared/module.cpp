#include "shared/module.h"

#include <string>

#include <dlfcn.h>

#include "shared/failure.h"
#include "shared/installation.h"

namespace linewatch {

namespace {

std::string loaderError() {
  const char* message = dlerror();
  return message ? message : "unknown error of the loader";
}

}  // namespace

Outcome<void*> moduleEntry(std::string_view module, const char* entry) {
  // The loader counts and never unloads: what a module gave out must stay valid.
  void* const handle =
      dlopen((installedParts() / (std::string(module) + ".so")).c_str(), RTLD_NOW | RTLD_NODELETE);
  if (!handle) return failure("cannot load a part of the program", module, loaderError());
  void* const address = dlsym(handle, entry);
  if (!address) return failure("cannot load a part of the program", module, loaderError());
  return address;
}

}  // namespace linewatch
