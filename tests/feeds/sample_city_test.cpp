#include <fstream>
#include <memory>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"
#include "feeds/alerts/incident_records.h"
#include "feeds/gtfs/colors.h"
#include "feeds/gtfs/folder_source.h"
#include "feeds/gtfs/gtfs_reader.h"
#include "feeds/gtfs/line_lookup.h"
#include "feeds/gtfs/line_records.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SampleCity : public testing::Test {
 protected:
  void SetUp() override {
    FolderSource source(LINEWATCH_ROOT "/samples/city/gtfs");
    auto contents = readGtfs(source, "city");
    ASSERT_TRUE(contents) << sentenceOf(contents);
    lines_ = std::make_shared<const LineIndex>(std::move(*contents));
  }

  SharedLineIndex lines_;
};

TEST_F(SampleCity, HasEveryKindOfRoute) {
  LineRecords records(lines_);
  std::set<std::int64_t> modes;
  std::set<std::string> systems;
  std::set<std::optional<std::string>> colors;
  for (std::size_t route = 0; route < lines_->routes().size(); ++route) {
    const TransitLineFields& line = *records.lineFieldsOfRoute(route);
    const ShieldDataSource& shield = *line.artwork->shieldDataSource;
    EXPECT_GE(contrastRatio(*shield.shieldColorString, *shield.textColorString), 4.5) << line.name;
    modes.insert(shield.shieldType);
    systems.insert(line.system->name);
    colors.insert(shield.shieldColorString);
  }
  EXPECT_EQ(lines_->routes().size(), 15U);
  EXPECT_EQ(colors.size(), 15U);
  EXPECT_EQ(modes.size(), 6U);
  EXPECT_EQ(systems.size(), 2U);
}

TEST_F(SampleCity, HasTheFavoritesItNames) {
  std::ifstream favorites(LINEWATCH_ROOT "/samples/city/favorites.txt");
  std::set<std::size_t> routes;
  for (std::string id; std::getline(favorites, id);) {
    const Outcome<FoundLine> line = findLine(std::span(&lines_, 1), id);
    ASSERT_TRUE(line) << sentenceOf(line);
    EXPECT_EQ(line->entry().id, id);
    routes.insert(line->route);
  }
  EXPECT_EQ(routes.size(), 7U);
}

TEST_F(SampleCity, HasAlertsAboutItsLines) {
  const auto message = readAlertsMessage(payloadOf(textIn(LINEWATCH_ROOT "/samples/city/alerts.pb")));
  ASSERT_TRUE(message) << sentenceOf(message);
  const auto table = std::make_shared<const IncidentTable>(*message, lines_);
  EXPECT_EQ(table->counts().fitting, 9U);
  EXPECT_EQ(table->counts().notAboutLines, 1U);
  EXPECT_EQ(complaintOf("sample", table->counts()), "");
  const auto titles = [&](const char* route, const char* language) {
    IncidentRecords records(
        table, std::make_shared<const IncidentLanguage>(IncidentLanguage{.languages = {language}}), Date());
    std::vector<std::string> all;
    for (const SharedIncident& incident : records.ofRoute(lines_->routeWithId(route).value())) {
      all.push_back(incident->title().value_or("-"));
    }
    return all;
  };
  EXPECT_THAT(titles("T3", "en"), ElementsAre("Works on Pont-Neuf"));
  EXPECT_THAT(titles("T7", "de"),
              ElementsAre("Bauarbeiten am Pont-Neuf", "Messe: demonstration this afternoon"));
  EXPECT_THAT(titles("B12", "fr"), ElementsAre("Bauarbeiten am Pont-Neuf"));
  EXPECT_THAT(titles("M1", "en"), ElementsAre("Signal failure at Zentralbahnhof"));
  EXPECT_THAT(titles("L1", "fr-CH"), ElementsAre("Pas de bateaux"));
  EXPECT_THAT(titles("S4", "en"), ElementsAre("Shorter trains"));
  EXPECT_THAT(titles("F", "en"), ElementsAre("No service"));
  EXPECT_THAT(titles("B34", "en"), ElementsAre("Stop Collège moved by 50 m")) << "without the names of stops";
  for (const char* fine : {"S1", "M2"}) EXPECT_THAT(titles(fine, "en"), IsEmpty()) << fine;
}

}  // namespace
}  // namespace linewatch
