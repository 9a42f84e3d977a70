#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "shared/error.h"
#include "shared/value.h"

namespace linewatch {

/// Something the user is doing, handed to another application to continue.
struct UserActivity {
  std::string activityType;
  Dictionary userInfo;
};

/// An installed application.
struct ApplicationRecord {
  std::string bundleIdentifier;
};

struct PlugInRecord;
/// A bundle that is neither an application nor a plug-in.
struct OtherBundleRecord {
  std::string bundleIdentifier;
};

using BundleRecord = std::variant<ApplicationRecord, std::shared_ptr<const PlugInRecord>, OtherBundleRecord>;

/// A plug-in (as the widget is), with the bundle that contains it, if any.
struct PlugInRecord {
  std::string bundleIdentifier;
  std::optional<BundleRecord> containingBundle;
};

/// Called with the outcome of an opening. The error may be absent even when `success` is false.
using OpenHandler = std::function<void(bool success, std::optional<Error> error)>;

/// Starts applications. Main thread.
class SystemController {
 public:
  virtual ~SystemController() = default;

  /// A new activity of the type with an empty user info; absent when the system does not accept the type.
  virtual std::optional<UserActivity> makeUserActivity(const std::string& activityType) = 0;
  /// The bundle of the running process; absent when it has none.
  virtual std::optional<BundleRecord> bundleRecordOfCurrentProcess() = 0;
  /// Opens the activity in the application; when that is absent, the system chooses one. If `promptToUnlock`,
  /// the user is asked to unlock the device first. `handler` may be empty; otherwise it is called exactly
  /// once, on the main thread, within this call or later.
  virtual void openUserActivity(const UserActivity& activity,
                                const std::optional<ApplicationRecord>& application, bool promptToUnlock,
                                OpenHandler handler) = 0;
};

}  // namespace linewatch
