#pragma once

#include <string_view>

namespace linewatch {

/// Why nothing could be loaded, as far as the system can tell.
enum class ConnectionFailureDiagnosis { airplaneMode = 0, noInternetConnection = 1, other = 2, unknown = 3 };

/// What is known of the device the widget runs on. Main thread.
class Device {
 public:
  virtual ~Device() = default;

  /// The diagnosis at this moment.
  virtual ConnectionFailureDiagnosis diagnoseConnectionFailure() = 0;
  /// Whether the device has the capability; an unknown one it has not.
  virtual bool hasCapability(std::string_view capability) = 0;
  /// A small number; 1 and 2 mean locked.
  virtual int lockState() = 0;
};

}  // namespace linewatch
