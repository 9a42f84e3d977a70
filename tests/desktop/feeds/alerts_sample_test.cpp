#include <fstream>
#include <memory>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/feeds/alerts_sketch.h"
#include "desktop/feeds/folder_source.h"
#include "desktop/feeds/gtfs_reader.h"
#include "desktop/feeds/incident_records.h"

namespace linewatch::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SampleAlerts : public testing::Test {
 protected:
  void SetUp() override {
    FolderSource gtfs(LINEWATCH_ROOT "/samples/city/gtfs");
    auto contents = readGtfs(gtfs, "city");
    ASSERT_TRUE(contents) << sentenceOf(contents);
    lines_ = std::make_shared<const LineIndex>(std::move(*contents));
    std::stringstream payload;
    payload << std::ifstream(LINEWATCH_ROOT "/samples/city/alerts.pb", std::ios::binary).rdbuf();
    const auto message = readAlertsMessage(payload.str());
    ASSERT_TRUE(message) << sentenceOf(message);
    table_ = std::make_shared<const IncidentTable>(*message, lines_);
  }

  std::vector<std::string> titles(const char* route, const char* language) const {
    IncidentRecords records(
        table_, std::make_shared<const IncidentLanguage>(IncidentLanguage{.languages = {language}}), Date());
    std::vector<std::string> all;
    for (const SharedIncident& incident : records.ofRoute(lines_->routeWithId(route).value())) {
      all.push_back(incident->title().value_or("-"));
    }
    return all;
  }

  SharedLineIndex lines_;
  SharedIncidentTable table_;
};

TEST_F(SampleAlerts, AreAboutTheSampleCitysLines) {
  EXPECT_EQ(table_->counts(), (SelectorCounts{.fitting = 8, .notAboutLines = 2}));
  EXPECT_THAT(titles("T3", "en"), ElementsAre("Works on Pont-Neuf"));
  EXPECT_THAT(titles("T7", "de"),
              ElementsAre("Bauarbeiten am Pont-Neuf", "Messe: demonstration this afternoon"));
  EXPECT_THAT(titles("B12", "fr"), ElementsAre("Bauarbeiten am Pont-Neuf"));
  EXPECT_THAT(titles("M1", "en"), ElementsAre("Signal failure at Zentralbahnhof"));
  EXPECT_THAT(titles("L1", "fr-CH"), ElementsAre("Pas de bateaux"));
  EXPECT_THAT(titles("S4", "en"), ElementsAre("Shorter trains"));
  EXPECT_THAT(titles("F", "en"), ElementsAre("No service"));
  for (const char* fine : {"B34", "S1", "M2"}) EXPECT_THAT(titles(fine, "en"), IsEmpty()) << fine;
}

}  // namespace
}  // namespace linewatch::desktop
