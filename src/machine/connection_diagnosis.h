#pragma once

#include <filesystem>
#include <utility>

#include "platform/device.h"

namespace linewatch {

/// The files in which the kernel describes the machine's connections.
struct NetworkFiles {
  std::filesystem::path routes = "/proc/net/route";
  std::filesystem::path ipv6Routes = "/proc/net/ipv6_route";
  /// Has a folder for each radio; absent on a machine without radios.
  std::filesystem::path radios = "/sys/class/rfkill";
};

/// Why servers cannot be reached, if the reason is on this machine: no internet connection when there is no
/// default route; airplane mode when also every radio that could carry one is switched off. Quick, and
/// contacts no other machine.
ConnectionFailureDiagnosis diagnoseConnection(const NetworkFiles& files = {});

/// Detects that a connection has returned, from its state at different times.
class ConnectionReturn {
 public:
  explicit ConnectionReturn(bool isConnected) : wasConnected_(isConnected) {}

  /// Whether the machine is connected now but was not at the last call.
  bool isBack(bool isConnected) { return !std::exchange(wasConnected_, isConnected) && isConnected; }

 private:
  bool wasConnected_;
};

}  // namespace linewatch
