#include "feeds/gtfs/gtfs_reader.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/gtfs/folder_source.h"
#include "feeds/gtfs/memory_source.h"
#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;

LineIndex::Contents filesRead(MemorySource::Files files) {
  MemorySource source(std::move(files));
  Outcome<LineIndex::Contents> contents = readGtfs(source, "city");
  EXPECT_TRUE(contents) << sentenceOf(contents.error());
  return *contents;
}

std::string faultOf(MemorySource::Files files) {
  MemorySource source(std::move(files));
  const Outcome<LineIndex::Contents> contents = readGtfs(source, "city");
  return contents ? "none" : sentenceOf(contents.error());
}

TEST(GtfsReader, ReadsAgenciesAndRoutesInFeedOrder) {
  const LineIndex::Contents contents = filesRead({
      {"agency.txt", "agency_id,agency_name,agency_lang\nA,\"Alpha,  Inc.\",en\nB,Beta,pt_BR\n"},
      {"routes.txt",
       "route_type,route_id,agency_id,route_short_name,route_long_name,route_color,route_text_color\n"
       "109,r2,B,S2,\"North\n– South\",00ff7F,#000000\n"
       "3,r1,C,,Loop,red,12345\n"
       "x,r2,A,again,,,\n"
       ",,A,no id,,,\n"
       "-1,r\x1b[3\n"},
  });
  EXPECT_EQ(contents.feedName, "city");
  EXPECT_EQ(contents.language, "en");
  EXPECT_THAT(contents.agencies,
              ElementsAre(FeedAgency{"A", "Alpha, Inc.", "en"}, FeedAgency{"B", "Beta", "pt-BR"}));
  EXPECT_THAT(contents.routes, ElementsAre(FeedRoute{"r2", "S2", "North – South", 1, 109, "00FF7F", "000000"},
                                           FeedRoute{"r1", "", "Loop", std::nullopt, 3, "", ""},
                                           FeedRoute{"r\x1b[3", "", "r[3", std::nullopt, -1, "", ""}));
}

TEST(GtfsReader, GivesEveryRouteTheOnlyAgency) {
  const std::string routes = "route_id,agency_id\n1,\n2,X\n3\n4,Y\n";
  const auto agenciesOf = [&routes](const std::string& agencies) {
    std::vector<std::optional<std::uint32_t>> places;
    for (const FeedRoute& route : filesRead({{"agency.txt", agencies}, {"routes.txt", routes}}).routes) {
      places.push_back(route.agency);
    }
    return places;
  };
  EXPECT_THAT(agenciesOf("agency_id,agency_name\nX,Only\n"), ElementsAre(0, 0, 0, std::nullopt));
  EXPECT_THAT(agenciesOf("agency_name\nOnly\n"), ElementsAre(0, std::nullopt, 0, std::nullopt));
  EXPECT_THAT(agenciesOf("agency_id\nY\nX\n"), ElementsAre(std::nullopt, 1, std::nullopt, 0));
}

TEST(GtfsReader, TakesTheLanguageOfTheFeedThenOfItsAgencies) {
  const auto languageOf = [](const std::string& feed, const std::string& agencies) {
    return filesRead({{"agency.txt", "agency_id,agency_lang\n" + agencies},
                      {"feed_info.txt", "feed_lang\n" + feed},
                      {"routes.txt", "route_id\n"}})
        .language;
  };
  EXPECT_EQ(languageOf("fr", "A,de\n"), "fr");
  EXPECT_EQ(languageOf("mul", "A,\nB,de\n"), "de");
  EXPECT_EQ(languageOf("", "A,\n"), "");
  EXPECT_EQ(languageOf("Deutsch (Schweiz)", ""), "");
}

TEST(GtfsReader, NamesFileLineAndReasonOfAFault) {
  EXPECT_EQ(faultOf({}), "routes.txt: the feed has no such file");
  EXPECT_EQ(faultOf({{"routes.txt", ""}}), "routes.txt line 1: there is no column route_id");
  EXPECT_EQ(faultOf({{"routes.txt", "route_short_name\n1\n"}}),
            "routes.txt line 1: there is no column route_id");
  EXPECT_EQ(faultOf({{"routes.txt", "route_id\n1\n\n\"2"}}), "routes.txt line 4: a quote is not closed");
  EXPECT_EQ(faultOf({{"routes.txt", "\"route_id\n"}}), "routes.txt line 1: a quote is not closed");
  EXPECT_EQ(faultOf({{"agency.txt", "agency_id\n\"1\"2\n"}, {"routes.txt", "route_id\n"}}),
            "agency.txt line 2: there is text after a closing quote");
}

class FolderSourceTest : public testing::Test {
 protected:
  std::string faultOfFile(std::string_view name) const {
    const Outcome<std::optional<std::string>> bytes = FolderSource(folder_.path()).file(name);
    return bytes ? "none" : sentenceOf(bytes.error());
  }

  const TemporaryFolder folder_;
};

TEST_F(FolderSourceTest, GivesFilesAsTheyAre) {
  folder_.write("routes.txt", std::string("a\0b\r\n", 5));
  FolderSource source(folder_.path());
  EXPECT_EQ(**source.file("routes.txt"), std::string("a\0b\r\n", 5));
  EXPECT_EQ(*source.file("agency.txt"), std::nullopt);
}

TEST_F(FolderSourceTest, RefusesFoldersAndLargeFiles) {
  fs::create_directory(folder_ / "routes.txt");
  EXPECT_EQ(faultOfFile("routes.txt"), "routes.txt: it is not a file");
  folder_.write("agency.txt", "");
  fs::resize_file(folder_ / "agency.txt", kLargestGtfsTable + 1);
  EXPECT_EQ(faultOfFile("agency.txt"), "agency.txt: it is larger than 64 MiB");

  FolderSource nowhere(folder_ / "nowhere");
  const Outcome<LineIndex::Contents> contents = readGtfs(nowhere, "city");
  ASSERT_FALSE(contents);
  EXPECT_EQ(sentenceOf(contents.error()), "No such file or directory");
}

TEST_F(FolderSourceTest, ReadsAFeed) {
  folder_.write("routes.txt", "route_id\r\n7\r\n");
  FolderSource source(folder_.path());
  EXPECT_EQ(readGtfs(source, "city")->routes.at(0).id, "7");
}

}  // namespace
}  // namespace linewatch
