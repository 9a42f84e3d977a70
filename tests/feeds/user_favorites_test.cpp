#include "feeds/user_favorites.h"

#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/shown_feeds.h"
#include "platform/recording_log.h"
#include "platform/transit_records.h"
#include "shared/failure.h"
#include "storage/stored_feeds.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class UserFavoritesTest : public testing::Test {
 protected:
  UserFavoritesTest() { writeFile(city_ / "favorites.txt", "1\n2\n"); }

  std::vector<std::uint64_t> muids() const {
    std::vector<std::uint64_t> all;
    const Favorites favorites = *favorites_.read();
    for (const Favorite& favorite : favorites)
      all.push_back(std::get<FavoriteTransitLine>(favorite).transitLine->muid());
    return all;
  }

  static StoredFavorite sampleLine(const char* route) { return {FavoriteKind::line, "sample", route}; }

  TemporaryFolder folder_;
  RecordingLog log_;
  const std::filesystem::path city_ = folder_.path();
  const SharedDatabase state_ = makeStateDatabase(*StateDirectories::under(folder_.path() / "state"), log_,
                                                  {.busyTimeout = std::chrono::milliseconds(0)});
  const UserFavorites favorites_{state_, city_};
};

TEST_F(UserFavoritesTest, AreTheSampleCitysUntilTheUserChangesThem) {
  EXPECT_THAT(muids(), ElementsAre(stableMuid("sample", "1"), stableMuid("sample", "2")));
  EXPECT_TRUE(*favorites_.change(sampleLine("1"), false));
  EXPECT_THAT(muids(), ElementsAre(stableMuid("sample", "2")));
  EXPECT_THAT(*favorites_.lines(), ElementsAre(sampleLine("2")));
}

TEST_F(UserFavoritesTest, OfAFeedKeepTheSampleCityAwayAlsoAfterItsRemoval) {
  const StoredFavorite bus{FavoriteKind::line, "bus", "7"};
  ASSERT_TRUE(favorites_.change(sampleLine("1"), false));
  ASSERT_TRUE(*StoredFeeds(state_).add({"bus", "/gtfs", "/alerts"}));
  ASSERT_TRUE(*favorites_.change(bus, true));
  for (const bool isRemoved : {false, true}) {
    EXPECT_THAT(muids(), ElementsAre(stableMuid("bus", "7")));
    EXPECT_THAT(*favorites_.lines(), ElementsAre(bus));
    EXPECT_EQ(ShownFeeds(state_, city_).read()->empty(), isRemoved);
    ASSERT_EQ(*StoredFeeds(state_).remove("bus"), !isRemoved);
  }
  ASSERT_TRUE(*favorites_.change(bus, false));
  EXPECT_THAT(*favorites_.lines(), ElementsAre(sampleLine("2")));
  EXPECT_TRUE(isSampleCity(*ShownFeeds(state_, city_).read()));
}

TEST_F(UserFavoritesTest, NameTheirFeedAndRouteToTheTransitService) {
  const Favorites favorites = *UserFavorites({"7"}).read();
  ASSERT_EQ(favorites.size(), 1U);
  const SharedLine line = std::get<FavoriteTransitLine>(favorites[0]).transitLine;
  EXPECT_EQ(line->identifier(), (MapItemIdentifier{stableMuid("given", "7"), "given", "7"}));
}

TEST_F(UserFavoritesTest, ThatCannotBeReadAreAnError) {
  std::filesystem::create_directories(state_->file());
  EXPECT_THAT(sentenceOf(favorites_.read().error()), HasSubstr("it cannot be opened"));
  EXPECT_FALSE(favorites_.lines());
  EXPECT_THAT(log_.lines(), IsEmpty()) << "the caller reports it";
}

TEST_F(UserFavoritesTest, WhoseChangeCannotBeReadAreNotTheSampleCitys) {
  ASSERT_TRUE(*favorites_.change(sampleLine("1"), false));
  ASSERT_FALSE(state_->write(
      [](SqliteDatabase& open) { return open.runScript("ALTER TABLE preference RENAME TO held"); }));
  EXPECT_FALSE(favorites_.read());
  EXPECT_FALSE(favorites_.lines());
  EXPECT_FALSE(favorites_.change(sampleLine("3"), true));
  ASSERT_FALSE(state_->write(
      [](SqliteDatabase& open) { return open.runScript("ALTER TABLE held RENAME TO preference"); }));
  EXPECT_THAT(*favorites_.lines(), ElementsAre(sampleLine("2")));
}

}  // namespace
}  // namespace linewatch
