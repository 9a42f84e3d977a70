#include "platform/platform.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/installed_platform.h"

namespace linewatch {

namespace {

std::shared_ptr<Platform>& installed() {
  static std::shared_ptr<Platform> platform;
  return platform;
}

}  // namespace

std::shared_ptr<void> Platform::onceOfType(std::type_index type,
                                           const std::function<std::shared_ptr<void>()>& make) {
  const MutexLock lock(onceMutex_);
  auto& slot = once_[type];
  if (!slot) slot = make();
  return slot;
}

void installPlatform(std::shared_ptr<Platform> platform) { installed() = std::move(platform); }

Platform* installedPlatform() { return installed().get(); }

Platform& platform() {
  if (!installed()) {
    std::fputs("linewatch: no platform is installed\n", stderr);
    std::abort();
  }
  return *installed();
}

}  // namespace linewatch
