#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "activity/openable.h"
#include "shared/value.h"

namespace linewatch {

/// The domain of the error for an activity that cannot be made, e.g. when the system does not accept its
/// type. The code is 0. The error's info holds the activity data under the key below.
inline constexpr const char* kUserActivityErrorDomain = "RVUserActivityErrorDomain";
inline constexpr const char* kUserActivityErrorMissingActivityKey = "RVUserActivityErrorMissingActivityKey";

/// The keys of a row's user info: the compressed activity record of a line, and the archived list of
/// incidents.
inline constexpr const char* kActivityRecordKey = "bs";
inline constexpr const char* kIncidentListKey = "incidentListKey";

/// Describes a user activity for the companion application by its type and user info. Immutable.
class RVUserActivityData final : public RVOpenable, public std::enable_shared_from_this<RVUserActivityData> {
  /// Restricts the constructor to `make`.
  struct Passkey {};

 public:
  /// Shares the session with the companion application. `userInfo()` is the given user info with the shared
  /// session added.
  static std::shared_ptr<const RVUserActivityData> make(std::optional<std::string> activityType,
                                                        std::optional<Dictionary> userInfo);

  RVUserActivityData(Passkey, std::optional<std::string> activityType, std::optional<Dictionary> userInfo);

  const std::optional<std::string>& activityType() const { return activityType_; }
  const std::optional<Dictionary>& userInfo() const { return userInfo_; }

  /// Opens the activity in the application that contains this process. `context` is not used.
  void openInContext(const std::shared_ptr<Object>& context, OpenHandler completionHandler) const override;

  bool isEqual(const Object& other) const override;
  bool isEqualToUserActivityData(const RVUserActivityData& other) const;
  std::size_t hash() const override;
  std::string description() const override;

 private:
  std::optional<std::string> activityType_;
  std::optional<Dictionary> userInfo_;
  /// Computed on first use, because a list of incidents can be long; 0 until then.
  mutable std::atomic<std::size_t> hash_{0};
};

}  // namespace linewatch
