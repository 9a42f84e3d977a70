#include "activity/user_activity_data.h"

#include <functional>
#include <utility>

#include "activity/containing_application.h"
#include "platform/platform.h"
#include "platform/user_session.h"

namespace linewatch {

namespace {

std::optional<UserActivity> makeActivity(const RVUserActivityData& data) {
  if (!data.activityType()) return std::nullopt;
  auto activity = platform().systemController().makeUserActivity(*data.activityType());
  if (activity) activity->userInfo = data.userInfo().value_or(Dictionary{});
  return activity;
}

void fail(const OpenHandler& handler, Error error) {
  if (handler) handler(false, std::move(error));
}

}  // namespace

std::shared_ptr<const RVUserActivityData> RVUserActivityData::make(std::optional<std::string> activityType,
                                                                   std::optional<Dictionary> userInfo) {
  return std::make_shared<const RVUserActivityData>(Passkey(), std::move(activityType), std::move(userInfo));
}

RVUserActivityData::RVUserActivityData(Passkey, std::optional<std::string> activityType,
                                       std::optional<Dictionary> userInfo)
    : activityType_(std::move(activityType)) {
  platform().userSession().shareSession();
  if (userInfo) userInfo_ = platform().userSession().sharedSessionPunchOutUserInfo(*std::move(userInfo));
}

void RVUserActivityData::openInContext(const std::shared_ptr<Object>&, OpenHandler completionHandler) const {
  const auto activity = makeActivity(*this);
  if (!activity) {
    return fail(
        completionHandler,
        {kUserActivityErrorDomain,
         0,
         {{kUserActivityErrorMissingActivityKey, Value(std::shared_ptr<const Object>(shared_from_this()))}}});
  }
  std::optional<Error> lookupError;
  const auto application = _rova_containingApplicationProxy(&lookupError);
  if (lookupError) return fail(completionHandler, *std::move(lookupError));
  platform().systemController().openUserActivity(*activity, application, /*promptToUnlock=*/true,
                                                 std::move(completionHandler));
}

bool RVUserActivityData::isEqual(const Object& other) const {
  if (this == &other) return true;
  const auto* data = dynamic_cast<const RVUserActivityData*>(&other);
  return data != nullptr && isEqualToUserActivityData(*data);
}

bool RVUserActivityData::isEqualToUserActivityData(const RVUserActivityData& other) const {
  return activityType_ == other.activityType_ && userInfo_ == other.userInfo_;
}

std::size_t RVUserActivityData::hash() const {
  std::size_t hash = hash_.load(std::memory_order_relaxed);
  if (hash != 0) return hash;
  hash = (activityType_ ? std::hash<std::string>{}(*activityType_) : 0) ^
         (userInfo_ ? linewatch::hash(*userInfo_) : 0);
  hash_.store(hash, std::memory_order_relaxed);
  return hash;
}

std::string RVUserActivityData::description() const {
  return "<" + classNameOf(*this) + " " + activityType_.value_or("(null)") + " " +
         (userInfo_ ? linewatch::description(*userInfo_) : "(null)") + ">";
}

}  // namespace linewatch
