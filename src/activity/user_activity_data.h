#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "activity/openable.h"
#include "shared/value.h"

namespace linewatch {

/// The domain of the error that says that no user activity could be made (code 0), and the key of its info
/// under which the description stands that none could be made from.
inline constexpr const char* kUserActivityErrorDomain = "RVUserActivityErrorDomain";
inline constexpr const char* kUserActivityErrorMissingActivityKey = "RVUserActivityErrorMissingActivityKey";

/// The keys of a row's user info: the bytes of a line's record, compressed, and of an archived list of
/// incidents.
inline constexpr const char* kActivityRecordKey = "bs";
inline constexpr const char* kIncidentListKey = "incidentListKey";

/// Describes a user activity for the companion application: its type, and what the application reads from it.
class RVUserActivityData final : public RVOpenable, public std::enable_shared_from_this<RVUserActivityData> {
 public:
  /// Shares the session with the companion application; `userInfo` is kept as extended with that session.
  static std::shared_ptr<const RVUserActivityData> make(std::optional<std::string> activityType,
                                                        std::optional<Dictionary> userInfo);

  /// Shares the session once more, as making an equal description anew would; this object, as it never
  /// changes, can then stand for the new one.
  void shareSessionAgain() const;

  const std::optional<std::string>& activityType() const { return activityType_; }
  const std::optional<Dictionary>& userInfo() const { return userInfo_; }

  /// Hands the activity to the application that contains this process. `context` is not used.
  void openInContext(const std::shared_ptr<Object>& context, OpenHandler completionHandler) const override;

  bool isEqual(const Object& other) const override;
  bool isEqualToUserActivityData(const RVUserActivityData& other) const;
  std::size_t hash() const override;
  std::string description() const override;

 private:
  RVUserActivityData(std::optional<std::string> activityType, std::optional<Dictionary> userInfo);

  std::optional<std::string> activityType_;
  std::optional<Dictionary> userInfo_;
  /// Made on first use, as a list of incidents can be long; 0 until then.
  mutable std::atomic<std::size_t> hash_{0};
};

}  // namespace linewatch
