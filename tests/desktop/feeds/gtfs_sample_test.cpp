#include <fstream>
#include <set>

#include <gtest/gtest.h>

#include "desktop/feeds/colors.h"
#include "desktop/feeds/folder_source.h"
#include "desktop/feeds/gtfs_reader.h"
#include "desktop/feeds/line_records.h"
#include "desktop/feeds/line_search.h"
#include "desktop/sentence.h"

namespace linewatch::desktop {
namespace {

class SampleCity : public testing::Test {
 protected:
  void SetUp() override {
    FolderSource source(LINEWATCH_ROOT "/samples/city/gtfs");
    Outcome<LineIndex::Contents> contents = readGtfs(source, "city");
    ASSERT_TRUE(contents) << sentence(contents.error());
    index_ = std::make_shared<const LineIndex>(std::move(*contents));
  }

  SharedLineIndex index_;
};

TEST_F(SampleCity, ShowsWhatAFeedCanSay) {
  LineRecords records(index_);
  std::set<std::int64_t> modes;
  std::set<std::string> systems;
  std::set<std::optional<std::string>> colors;
  for (std::size_t route = 0; route < index_->routes().size(); ++route) {
    const TransitLineFields& line = *records.lineFieldsOfRoute(route);
    const ShieldDataSource& shield = *line.artwork->shieldDataSource;
    EXPECT_GE(contrastRatio(*shield.shieldColorString, *shield.textColorString), 4.5) << line.name;
    modes.insert(shield.shieldType);
    systems.insert(line.system->name);
    colors.insert(shield.shieldColorString);
  }
  EXPECT_EQ(index_->routes().size(), 15U);
  EXPECT_EQ(colors.size(), 15U);
  EXPECT_EQ(modes.size(), 6U);
  EXPECT_EQ(systems.size(), 2U);
}

TEST_F(SampleCity, HasTheFavoritesItNames) {
  std::ifstream favorites(LINEWATCH_ROOT "/samples/city/favorites.txt");
  std::set<std::size_t> routes;
  for (std::string id; std::getline(favorites, id);) {
    const Outcome<FoundLine> line = findLine(std::span(&index_, 1), id);
    ASSERT_TRUE(line) << sentence(line.error());
    EXPECT_EQ(line->entry().id, id);
    routes.insert(line->route);
  }
  EXPECT_EQ(routes.size(), 7U);
}

}  // namespace
}  // namespace linewatch::desktop
