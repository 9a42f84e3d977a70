#pragma once

#include <string_view>

namespace linewatch {

/// Why nothing could be loaded.
enum class ConnectionFailureDiagnosis { airplaneMode = 0, noInternetConnection = 1, other = 2, unknown = 3 };

/// The device that the widget runs on. Main thread; every call answers at once and none fails.
class Device {
 public:
  virtual ~Device() = default;

  /// The diagnosis at the time of the call; `unknown` when there is none.
  virtual ConnectionFailureDiagnosis diagnoseConnectionFailure() = 0;
  /// Whether the device has the capability ("wapi"). False for a capability that it does not know.
  virtual bool hasCapability(std::string_view capability) = 0;
  /// 1 and 2: the device is locked. Any other number: it is not.
  virtual int lockState() = 0;
};

}  // namespace linewatch
