#pragma once

#include <filesystem>
#include <utility>

#include "platform/device.h"

namespace linewatch {

/// Where the kernel tells how the machine is connected.
struct NetworkFiles {
  std::filesystem::path routes = "/proc/net/route";
  std::filesystem::path ipv6Routes = "/proc/net/ipv6_route";
  /// A folder for each radio; not there where the machine has none.
  std::filesystem::path radios = "/sys/class/rfkill";
};

/// Why a server cannot be reached, as far as this machine is to blame: no internet connection when there is
/// no route that leads anywhere, airplane mode when besides every radio that could carry one is switched off.
/// Takes no time to speak of and asks nobody outside of the machine.
ConnectionFailureDiagnosis diagnoseConnection(const NetworkFiles& files = {});

/// Tells the return of a connection from what is seen of it now and then.
class ConnectionReturn {
 public:
  explicit ConnectionReturn(bool isConnected) : wasConnected_(isConnected) {}

  /// Whether it is there and was not the last time.
  bool isBack(bool isConnected) { return !std::exchange(wasConnected_, isConnected) && isConnected; }

 private:
  bool wasConnected_;
};

}  // namespace linewatch
