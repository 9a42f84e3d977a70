#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "companion/companion_session.h"
#include "contracts/subject.h"
#include "simulation/simulated_platform.h"

namespace linewatch {
namespace {

using testing::IsSupersetOf;
using testing::StartsWith;

class UserSessionContract : public testing::TestWithParam<Subject<UserSession>> {
 protected:
  std::shared_ptr<UserSession> session_ = GetParam().make();
};

TEST_P(UserSessionContract, SharingAddsToTheURLAndTheUserInfoAtMostOnce) {
  const Dictionary userInfo = {{"bs", Bytes{1, 2}}, {"k", 1U}};
  for (const bool isShared : {false, true}) {
    if (isShared) session_->sessionEntity(true, false);
    for (const char* address :
         {"rova://?t=r", "rova://favorites?type=2&map=3", "https://example.org/a?b#c", ""}) {
      const URL once = session_->sharedSessionPunchOutURL(address);
      EXPECT_THAT(once.absoluteString, StartsWith(address));
      // A row's URL already has the session; opening it adds the session again.
      EXPECT_EQ(session_->sharedSessionPunchOutURL(once.absoluteString), once);
    }
    const Dictionary carrying = session_->sharedSessionPunchOutUserInfo(userInfo);
    EXPECT_THAT(carrying, IsSupersetOf(userInfo));
    EXPECT_EQ(session_->sharedSessionPunchOutUserInfo(carrying), carrying);
  }
}

TEST_P(UserSessionContract, SharingDoesNotChangeTheIdentifier) {
  const std::string identifier = session_->snapshot().sessionIdentifier;
  EXPECT_FALSE(identifier.empty());
  session_->sessionEntity(true, false);
  session_->sessionEntity(false, false);
  EXPECT_EQ(session_->snapshot().sessionIdentifier, identifier);
}

class MapURLBuilderContract : public testing::TestWithParam<Subject<MapURLBuilder>> {};

TEST_P(MapURLBuilderContract, TheURLHoldsBothTypes) {
  const auto builder = GetParam().make();
  EXPECT_EQ(builder->urlForFavorites(2, 3).absoluteString, "rova://favorites?type=2&map=3");
  EXPECT_EQ(builder->urlForFavorites(0, -1).absoluteString, "rova://favorites?type=0&map=-1");
}

template <class Role>
std::shared_ptr<Role> simulated(Role& (*role)(simulation::SimulatedPlatform&)) {
  const auto platform = simulation::SimulatedPlatform::make();
  return std::shared_ptr<Role>(platform, &role(*platform));
}

INSTANTIATE_TEST_SUITE_P(
    Platforms, UserSessionContract,
    testing::Values(Subject<UserSession>{"Simulation",
                                         [] {
                                           return simulated<UserSession>([](auto& platform) -> UserSession& {
                                             return platform.userSession();
                                           });
                                         }},
                    Subject<UserSession>{"Desktop", [] { return std::make_shared<CompanionSession>(); }}),
    nameOfSubject<UserSession>);

INSTANTIATE_TEST_SUITE_P(Platforms, MapURLBuilderContract,
                         testing::Values(Subject<MapURLBuilder>{"Simulation",
                                                                [] {
                                                                  return simulated<MapURLBuilder>(
                                                                      [](auto& platform) -> MapURLBuilder& {
                                                                        return platform.mapURLBuilder();
                                                                      });
                                                                }},
                                         Subject<MapURLBuilder>{
                                             "Desktop",
                                             [] { return std::make_shared<CompanionURLBuilder>(); }}),
                         nameOfSubject<MapURLBuilder>);

}  // namespace
}  // namespace linewatch
