#include "storage/saved_state.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/companion_application.h"
#include "platform/recording_log.h"
#include "platform/transit_storage_incident.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

class SavedStateTest : public testing::Test {
 protected:
  std::shared_ptr<GivenPreferences> given_ = std::make_shared<GivenPreferences>(
      Dictionary{{"key", "given"}, {"Rova.LineWatch.recordAnalytics", false}, {"other", "given too"}});
  TemporaryFolder folder_;
  RecordingLog log_;
  SavedState saved_{*StateDirectories::under(folder_.path()), log_, given_};
};

TEST_F(SavedStateTest, GivenValuesHoldUntilAnotherIsWritten) {
  const auto store = saved_.preferences("suite");
  EXPECT_FALSE(store->setObject(Value(std::make_shared<const TransitStorageIncident>()), "key"));
  EXPECT_EQ(store->objectForKey("key"), Value("given")) << "after what cannot be written";
  EXPECT_TRUE(store->setObject("new", "key"));
  EXPECT_EQ(saved_.preferences("suite")->objectForKey("key"), Value("new"));
  store->removeObject("other");
  EXPECT_FALSE(saved_.preferences("suite")->objectForKey("other"));
  for (const char* key : {"key", "other"}) {
    EXPECT_THAT(saved_.preferences("other suite")->objectForKey(key)->description(),
                testing::HasSubstr("given"));
  }
}

TEST_F(SavedStateTest, WithoutAStoreASuiteLastsForTheRun) {
  const auto store = given_->inFrontOf(nullptr, "suite");
  EXPECT_EQ(store->objectForKey("key"), Value("given"));
  EXPECT_TRUE(store->setObject(5, "key"));
  EXPECT_EQ(given_->inFrontOf(nullptr, "suite")->objectForKey("key"), Value(5));
  EXPECT_EQ(given_->inFrontOf(nullptr, "other suite")->objectForKey("key"), Value("given"));
}

TEST_F(SavedStateTest, RecordingIsAsGivenUntilTheSwitchIsForgotten) {
  EXPECT_FALSE(saved_.recordsAnalytics());
  saved_.forgetAnalyticsSwitch();
  EXPECT_TRUE(saved_.recordsAnalytics());
}

TEST_F(SavedStateTest, NothingIsRecordedWhileTheSwitchCannotBeRead) {
  SavedState plain(*StateDirectories::under(folder_.path()), log_,
                   std::make_shared<GivenPreferences>(Dictionary{}));
  EXPECT_TRUE(plain.recordsAnalytics()) << "when nothing was switched";
  std::filesystem::create_directories(plain.database()->file());
  EXPECT_FALSE(plain.recordsAnalytics());
}

TEST_F(SavedStateTest, RecordingGoesOnWhileAnotherProgramUsesTheFile) {
  SavedState plain(*StateDirectories::under(folder_.path()), log_,
                   std::make_shared<GivenPreferences>(Dictionary{}), {.busyTimeout = {}});
  ASSERT_TRUE(plain.preferences("suite")->setObject(1, "key"));
  auto other =
      SqliteDatabase::open("state database", plain.database()->file(), SqliteDatabase::Mode::readWrite, {});
  ASSERT_TRUE(other);
  ASSERT_FALSE(other->run("BEGIN EXCLUSIVE"));
  EXPECT_FALSE(plain.recordsAnalytics()) << "nothing is known yet";
  ASSERT_FALSE(other->run("ROLLBACK"));
  EXPECT_TRUE(plain.recordsAnalytics());
  ASSERT_FALSE(other->run("BEGIN EXCLUSIVE"));
  EXPECT_TRUE(plain.recordsAnalytics());
}

}  // namespace
}  // namespace linewatch
