#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "shared/error.h"
#include "shared/value.h"

namespace linewatch {

/// Something the user is doing, for another application to go on with.
struct UserActivity {
  std::string activityType;
  Dictionary userInfo;
};

/// An application of the system.
struct ApplicationRecord {
  std::string bundleIdentifier;
};

struct PlugInRecord;
/// A record of any other kind.
struct OtherBundleRecord {
  std::string bundleIdentifier;
};

using BundleRecord = std::variant<ApplicationRecord, std::shared_ptr<const PlugInRecord>, OtherBundleRecord>;

/// A plug-in (as the widget is), with the bundle that contains it, if any.
struct PlugInRecord {
  std::string bundleIdentifier;
  std::optional<BundleRecord> containingBundle;
};

/// Called once with the outcome; an error may come with a failure.
using OpenHandler = std::function<void(bool success, std::optional<Error> error)>;

/// The part of the system that starts applications. Main thread.
class SystemController {
 public:
  virtual ~SystemController() = default;

  /// An activity of the type, or none when the system does not accept the type.
  virtual std::optional<UserActivity> makeUserActivity(const std::string& activityType) = 0;
  /// The record of the running process, or none.
  virtual std::optional<BundleRecord> bundleRecordOfCurrentProcess() = 0;
  /// Opens the activity in the application (in one of the system's choosing when none is given), asking the
  /// user to unlock the device first if `promptToUnlock`. `handler`, which may be empty, is called with the
  /// outcome.
  virtual void openUserActivity(const UserActivity& activity,
                                const std::optional<ApplicationRecord>& application, bool promptToUnlock,
                                OpenHandler handler) = 0;
};

}  // namespace linewatch
