// Tests the opening of rows: user activities, URLs, and the bytes in them.

#include <cstdlib>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "activity/bzip2_compression.h"
#include "activity/containing_application.h"
#include "activity/openable_url.h"
#include "activity/rova_activity.h"
#include "activity/user_activity_data.h"
#include "simulation/forwarding_platform.h"
#include "simulation/platform_test.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using simulation::World;
using simulation::WorldBundle;
using testing::ElementsAre;
using testing::IsEmpty;

struct Outcome {
  int calls = 0;
  bool success = false;
  std::optional<Error> error;
};

/// A simulated platform that notes how the session is shared.
class WatchedPlatform final : public ForwardingPlatform, public UserSession {
 public:
  UserSession& userSession() override { return *this; }
  void sessionEntity(bool share, bool reset) override {
    calls.push_back(std::string(share ? "share" : "keep") + (reset ? ", reset" : ""));
  }
  URL sharedSessionPunchOutURL(const std::string& absoluteString) override { return {absoluteString}; }
  Dictionary sharedSessionPunchOutUserInfo(Dictionary userInfo) override { return userInfo; }
  UserSessionSnapshot snapshot() override { return {}; }

  std::vector<std::string> calls;
};

class Opening : public PlatformTest {
 protected:
  OpenHandler handler() {
    return [this](bool success, std::optional<Error> error) {
      outcome_ = {outcome_.calls + 1, success, std::move(error)};
    };
  }
  void open(const RVOpenable& openable, const std::shared_ptr<Object>& context = nullptr) {
    outcome_ = {};
    openable.openInContext(context, handler());
  }

  Outcome outcome_;
};

TEST_F(Opening, ActivitiesAreEqualByTypeAndUserInfo) {
  const Dictionary one = {{"bs", Bytes{1, 2}}}, same = {{"bs", Bytes{1, 2}}}, other = {{"bs", Bytes{1, 3}}};
  struct Row {
    std::optional<std::string> type;
    std::optional<Dictionary> userInfo;
    bool isEqual;
  };
  const auto data = RVUserActivityData::make("T", one);
  for (const Row& row :
       {Row{"T", same, true}, Row{"T", other, false}, Row{"T", std::nullopt, false}, Row{"U", same, false},
        Row{std::nullopt, same, false}, Row{"T", Dictionary{}, false}}) {
    const auto second = RVUserActivityData::make(row.type, row.userInfo);
    EXPECT_EQ(data->isEqual(*second), row.isEqual);
    EXPECT_EQ(second->isEqual(*data), row.isEqual);
    if (row.isEqual) {
      EXPECT_EQ(data->hash(), second->hash());
    }
  }
  const auto empty = RVUserActivityData::make(std::nullopt, std::nullopt);
  EXPECT_TRUE(empty->isEqual(*RVUserActivityData::make(std::nullopt, std::nullopt)));
  EXPECT_EQ(empty->hash(), 0U);
  EXPECT_FALSE(data->isEqual(OpenableURL(URL{"T"})));
}

TEST_F(Opening, AnActivityOpensInTheContainingApplication) {
  const auto data = RVUserActivityData::make("org.linewatch.T", Dictionary{{"key", "value"}});
  EXPECT_THAT(platform_->transcript().names(), ElementsAre("shareSession"));
  for (int times = 1; times <= 2; ++times) {
    open(*data);
    EXPECT_EQ(outcome_.calls, 0) << "reported later";
    platform_->runUntilIdle();
    EXPECT_EQ(outcome_.calls, 1);
    EXPECT_TRUE(outcome_.success);
    EXPECT_FALSE(outcome_.error);
  }
  const auto opened = platform_->transcript().eventsNamed("openUserActivity");
  ASSERT_EQ(opened.size(), 2U);
  EXPECT_EQ(opened[0].fields, (Dictionary{{"type", "org.linewatch.T"},
                                          {"userInfo", Dictionary{{"key", "value"}}},
                                          {"application", "org.linewatch.Rova"},
                                          {"promptToUnlock", true}}));
  EXPECT_THAT(platform_->transcript().logTexts(), IsEmpty());
  data->openInContext(nullptr, nullptr);
  platform_->runUntilIdle();
}

TEST_F(Opening, PassesOnTheErrorOfTheSystem) {
  World world;
  world.opens = false;
  install(world);
  open(*RVUserActivityData::make("T", std::nullopt));
  platform_->runUntilIdle();
  EXPECT_EQ(outcome_.calls, 1);
  EXPECT_FALSE(outcome_.success);
  EXPECT_EQ(outcome_.error->domain, simulation::kSimulatedOpeningErrorDomain);
}

TEST_F(Opening, ARefusedActivityTypeIsAnError) {
  World world;
  world.acceptsActivities = false;
  install(world);
  const auto data = RVUserActivityData::make("T", Dictionary{});
  open(*data);
  EXPECT_EQ(outcome_.calls, 1);
  EXPECT_FALSE(outcome_.success);
  EXPECT_EQ(outcome_.error,
            (Error{"RVUserActivityErrorDomain",
                   0,
                   {{"RVUserActivityErrorMissingActivityKey", Value(std::shared_ptr<const Object>(data))}}}));
  data->openInContext(nullptr, nullptr);

  install();
  open(*RVUserActivityData::make(std::nullopt, Dictionary{}));
  EXPECT_EQ(outcome_.error->domain, "RVUserActivityErrorDomain");
  platform_->runUntilIdle();
  EXPECT_EQ(platform_->transcript().countOf("openUserActivity"), 0U);
  EXPECT_THAT(platform_->transcript().logTexts(), IsEmpty());
}

TEST_F(Opening, FindsTheContainingApplicationFromTheBundleRecord) {
  struct Row {
    WorldBundle bundle;
    std::optional<std::string> application;
    bool fails;
  };
  for (const Row& row :
       {Row{WorldBundle::plugin, "org.linewatch.Rova", false},
        Row{WorldBundle::application, "org.linewatch.Rova", false},
        Row{WorldBundle::other, std::nullopt, false}, Row{WorldBundle::none, std::nullopt, true}}) {
    World world;
    world.bundle = row.bundle;
    install(world);
    std::optional<Error> error;
    const auto application = _rova_containingApplicationProxy(&error);
    EXPECT_EQ(application ? std::optional(application->bundleIdentifier) : std::nullopt, row.application);
    EXPECT_EQ(error.has_value(), row.fails);
    EXPECT_EQ(_rova_containingApplicationProxy().has_value(), row.application.has_value());

    open(*RVUserActivityData::make("T", Dictionary{}));
    EXPECT_EQ(outcome_.calls, row.fails ? 1 : 0);
    platform_->runUntilIdle();
    EXPECT_EQ(outcome_.success, !row.fails);
    EXPECT_EQ(platform_->transcript().countOf("openUserActivity"), row.fails ? 0U : 1U)
        << "without an application the system chooses one";
    if (row.fails) {
      EXPECT_EQ(outcome_.error, error);
      EXPECT_EQ(*error, (Error{"RovaActivityErrorDomain",
                               0,
                               {{"debugDescription", "no appliction proxy object for current process"}}}));
    }
  }
}

TEST_F(Opening, TheHostOpensAURL) {
  const OpenableURL url(URL{"rova://?t=r"});
  for (const bool opens : {true, false}) {
    World world;
    world.opens = opens;
    install(world);
    const auto controller = platform_->makeViewController();
    open(url, controller);
    EXPECT_EQ(outcome_.calls, 0);
    platform_->runUntilIdle();
    EXPECT_EQ(outcome_.calls, 1);
    EXPECT_EQ(outcome_.success, opens);
    EXPECT_FALSE(outcome_.error);
    EXPECT_THAT(platform_->transcript().names(), ElementsAre("shareSession", "openURL"));
    EXPECT_EQ(platform_->transcript().eventsNamed("openURL")[0].field("url"), Value("rova://?t=r"));
    url.openInContext(controller, nullptr);
    platform_->runUntilIdle();
  }
  EXPECT_TRUE(url.isEqual(OpenableURL(URL{"rova://?t=r"})));
  EXPECT_EQ(url.hash(), OpenableURL(URL{"rova://?t=r"}).hash());
  EXPECT_FALSE(url.isEqual(OpenableURL(URL{"rova://?t=R"})));
  const std::unordered_set<OpenableURL> urls{url, OpenableURL(URL{"rova://?t=r"}), OpenableURL(URL{"x"})};
  EXPECT_EQ(urls.size(), 2U);
}

TEST_F(Opening, AddsTheSessionToUserInfoAndURL) {
  platform_->userSession().setMark("s1");
  const auto data = RVUserActivityData::make("T", Dictionary{{"key", "value"}});
  EXPECT_EQ(data->userInfo(), (Dictionary{{"key", "value"}, {"session", "s1"}}));
  OpenableURL(URL{"rova://?t=r"}).openInContext(platform_->makeViewController(), nullptr);
  EXPECT_EQ(platform_->transcript().eventsNamed("openURL").at(0).field("url"), Value("rova://?t=r#s1"));
}

TEST_F(Opening, SharesTheSessionAndNeverResetsIt) {
  const auto watched = std::make_shared<WatchedPlatform>();
  installPlatform(watched);
  RVUserActivityData::make("T", Dictionary{});
  OpenableURL(URL{"rova://?t=r"}).openInContext(watched->simulated().makeViewController(), nullptr);
  EXPECT_THAT(watched->calls, ElementsAre("share", "share"));
}

TEST_F(Opening, AURLOpensNothingWithoutTheWidgetsController) {
  const OpenableURL url(URL{"rova://?t=r"});
  for (const std::shared_ptr<Object>& context :
       {std::shared_ptr<Object>(), std::shared_ptr<Object>(std::make_shared<RovaActivity>())}) {
    open(url, context);
    platform_->runUntilIdle();
    EXPECT_EQ(outcome_.calls, 0);
  }
  EXPECT_THAT(platform_->transcript().names(), IsEmpty());
  World world;
  world.host.hosted = false;
  install(world);
  open(url, platform_->makeViewController());
  platform_->runUntilIdle();
  EXPECT_EQ(outcome_.calls, 0);
  EXPECT_EQ(platform_->transcript().countOf("openURL"), 0U);
}

/// The bytes as the bunzip2 program unpacks them.
Bytes unpacked(const Bytes& packed) {
  const TemporaryFolder folder;
  const std::string file = folder.write("packed.bz2", {packed.begin(), packed.end()});
  const std::string result = folder / "unpacked";
  EXPECT_EQ(std::system((std::string(BUNZIP2) + " -c " + file + " > " + result).c_str()), 0);
  const std::string text = textIn(result);
  return {text.begin(), text.end()};
}

TEST_F(Opening, CompressedRecordsDecompressToTheSameBytes) {
  RovaActivity activity;
  activity.setSearchString("Hauptbahnhof");
  std::string longText;
  for (int i = 0; i < 60000; ++i) longText += std::to_string(i * 7919);
  RovaActivity large;
  large.setSearchString(longText);
  for (const Bytes& bytes : {Bytes(), activity.data(), large.data()}) {
    const auto packed = bzip2CompressedData(bytes);
    ASSERT_TRUE(packed);
    EXPECT_TRUE(unpacked(*packed) == bytes) << bytes.size();
  }
}

}  // namespace
}  // namespace linewatch
