#pragma once

#include <filesystem>
#include <utility>

#include "platform/device.h"

namespace linewatch {

/// The kernel's files about the machine's connections.
struct NetworkFiles {
  std::filesystem::path routes = "/proc/net/route";
  std::filesystem::path ipv6Routes = "/proc/net/ipv6_route";
  /// The directory with a folder for each radio; it does not exist on a machine without radios.
  std::filesystem::path radios = "/sys/class/rfkill";
};

/// The reason on this machine for which servers cannot be reached, if there is one. Without a default route
/// there is no internet connection. If also every radio that could carry one is switched off, it is airplane
/// mode. Quick; contacts no other machine.
ConnectionFailureDiagnosis diagnoseConnection(const NetworkFiles& files = {});

/// Detects that a connection has returned.
class ConnectionReturn {
 public:
  explicit ConnectionReturn(bool isConnected) : wasConnected_(isConnected) {}

  /// Takes the present state; true if it is connected and was not at the call before.
  bool isBack(bool isConnected) { return !std::exchange(wasConnected_, isConnected) && isConnected; }

 private:
  bool wasConnected_;
};

}  // namespace linewatch
