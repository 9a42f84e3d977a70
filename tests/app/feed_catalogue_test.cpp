#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/encoded_alerts.h"
#include "app/program_run.h"
#include "app/progress_line.h"
#include "app/terminal_program.h"
#include "feeds/catalogue/spreadsheet_sketch.h"
#include "feeds/http/local_http_server.h"
#include "feeds/timetable_zip.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// An agency on this machine, and a catalogue that names it.
class FeedCatalogueTest : public testing::Test {
 protected:
  void SetUp() override {
    const std::string hanging = agency_.url("/hangs");
    folder_.write("feeds.csv", spreadsheetOf({
                                   {.id = "t-1",
                                    .country = "CH",
                                    .city = "Hilltown",
                                    .url = agency_.url("/gone.zip"),
                                    .copy = agency_.url("/t.zip")},
                                   {.id = "a-1",
                                    .entities = "sa",
                                    .timetables = "t-1",
                                    .country = "CH",
                                    .city = "Hilltown",
                                    .provider = "Hilltown Transit (HTT)",
                                    .url = agency_.url("/alerts")},
                                   {.id = "a-2",
                                    .entities = "sa",
                                    .timetables = "t-2",
                                    .country = "CH",
                                    .city = "Seaport",
                                    .provider = "Seaport Ferries",
                                    .url = agency_.url("/alerts"),
                                    .key = "1,https://keys.example,token"},
                                   {.id = "a-3",
                                    .entities = "sa",
                                    .timetables = "t-2",
                                    .country = "CH",
                                    .city = "Seaport",
                                    .provider = "Seaport Tram",
                                    .url = hanging},
                                   {.id = "t-2", .city = "Seaport", .url = agency_.url("/t.zip")},
                                   {.id = "t-4", .city = "Oldtown"},
                               }));
  }
  std::vector<std::string> words(std::vector<std::string> command) const {
    command.insert(command.begin(), "feed");
    command.insert(command.end(), {"--catalogue", folder_ / "feeds.csv", "--state-dir", folder_ / "state"});
    return command;
  }
  ProgramRun run(const std::vector<std::string>& command, const std::string& input = "") const {
    return runProgram(words(command), {}, input);
  }
  std::string feeds() const { return runProgram({"feed", "--state-dir", folder_ / "state"}).output; }

  static void answer(LocalHttpServer::Connection& connection) {
    const std::string& request = connection.request();
    const auto send = [&connection](const std::string& body) {
      connection.write("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
                       body);
    };
    if (request.find("/hangs") != std::string::npos) return connection.awaitClose();
    if (request.find("/t.zip") != std::string::npos) return send(std::string(kTimetableZip));
    if (request.find("/alerts") != std::string::npos)
      return send(alertsFeed(alertEntity("a", "M1", "Strike")));
    connection.write("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
  }

  TemporaryFolder folder_;
  LocalHttpServer agency_{answer};
};

TEST_F(FeedCatalogueTest, FindsFeedsAndSaysWhatThereIsElse) {
  EXPECT_EQ(run({"find", "ferries"}).output,
            "Seaport Ferries\nSeaport, Switzerland\nalerts for 1 timetable\n"
            "a key is needed, from https://keys.example\n"
            "linewatch feed add a-2\n");
  const auto none = run({"find", "oldtown"});
  EXPECT_THAT(
      none.errors,
      AllOf(StartsWith("linewatch: oldtown: timetables (t-4), no alerts feed in the catalogue; paste"),
            HasSubstr("linewatch feed add oldtown --gtfs https://agency.example/ --alerts ADDRESS")));
  EXPECT_EQ(none.status, 1);
  const auto found = nlohmann::json::parse(run({"find", "--json", "switzerland", "htt"}).output);
  EXPECT_EQ(found["hits"].size(), 1U);
  EXPECT_EQ(found["hits"][0]["timetables"][0]["id"], "t-1");
  EXPECT_EQ(run({"find", "--json", "oldtown"}).status, 1);
  EXPECT_THAT(
      runProgram({"feed", "find", "x", "--catalogue", "/nowhere", "--state-dir", folder_ / "state"}).errors,
      HasSubstr("catalogue: /nowhere: No such file"));
}

TEST_F(FeedCatalogueTest, AddsTheOnlyHitWithTheCataloguesCopy) {
  const auto added = run({"add", "hilltown"});
  EXPECT_THAT(added.output, StartsWith("Added HTT: 1 line, "));
  EXPECT_THAT(added.errors, HasSubstr("the catalogue’s copy of the timetable is used"));
  EXPECT_EQ(added.status, 0);
  EXPECT_THAT(feeds(), AllOf(HasSubstr("HTT: 1 line"), HasSubstr("/t.zip")));
  const auto several = run({"add", "seaport"});
  EXPECT_EQ(several.output,
            "linewatch feed add a-2\n    Seaport Ferries, Seaport, Switzerland\n"
            "linewatch feed add a-3\n    Seaport Tram, Seaport, Switzerland\n");
  EXPECT_EQ(several.status, 2);
  EXPECT_THAT(run({"add", "a-2", "--name", "sea"}, "s3cret\n").output, StartsWith("Added sea: "));
  EXPECT_THAT(agency_.requests(), testing::Contains(HasSubstr("/alerts?token=s3cret")));
  EXPECT_EQ(run({"add", "oldtown"}).status, 2);
}

TEST_F(FeedCatalogueTest, AKeptCatalogueServesWhileTheServerIsUnreachable) {
  const std::string spreadsheet = textIn(folder_ / "feeds.csv");
  auto server = std::make_unique<LocalHttpServer>([&](LocalHttpServer::Connection& connection) {
    connection.write(httpAnswer("200 OK", "", spreadsheet));
  });
  const auto find = [&, address = server->url("/feeds.csv")](const char* state, const char* now) {
    return runProgram(
        {"--catalogue", address, "--now", now, "--state-dir", folder_ / state, "feed", "find", "ferries"});
  };
  EXPECT_THAT(find("kept", "2026-11-01T08:00:00Z").output, StartsWith("Seaport Ferries\n"));
  server.reset();
  const auto kept = find("kept", "2026-11-09T09:00:00Z");
  EXPECT_THAT(kept.output, StartsWith("Seaport Ferries\n"));
  EXPECT_THAT(kept.errors,
              StartsWith("linewatch: the catalogue was fetched 8 days ago, and cannot be renewed"));
  EXPECT_EQ(kept.status, 0);
  const auto none = find("none", "2026-11-09T09:00:00Z");
  EXPECT_THAT(none.errors,
              AllOf(StartsWith("linewatch: catalogue: http"), HasSubstr("Connection refused\n")));
  EXPECT_EQ(std::ranges::count(none.errors, '\n'), 1);
  EXPECT_EQ(none.status, 2);
}

TEST_F(FeedCatalogueTest, OnATerminalAsksWhichAndControlCCancelsAtOnce) {
  TerminalProgram program(words({"add", "seaport"}));
  ASSERT_TRUE(program.shows("1 to 2?")) << program.shown();
  program.type("2\n");
  ASSERT_TRUE(program.shows("\x1B[KAlerts")) << program.shown();
  program.type("\x03");
  EXPECT_EQ(program.end(), 130);
  EXPECT_THAT(program.shown(), HasSubstr("cancelled, so nothing has changed"));
  EXPECT_THAT(feeds(), StartsWith("No feeds yet"));

  TerminalProgram asking(words({"add", "ferries"}));
  ASSERT_TRUE(asking.shows("Key for Seaport Ferries: ")) << asking.shown();
  asking.type("s3cret\x03");
  EXPECT_EQ(asking.end(), 130);
}

TEST(ProgressTextTest, FitsTheColumns) {
  EXPECT_EQ(progressText("Timetable", 0, {}, 80), "Timetable");
  EXPECT_EQ(progressText("Timetable", 2'500'000, {}, 80), "Timetable 2500 kB");
  EXPECT_EQ(progressText("Timetable", 30'000'000, 40'000'000, 32), "Timetable [########...] 30/40 MB");
  EXPECT_EQ(progressText("Timetable", 30'000'000, 40'000'000, 20), "Timetable 30/40 MB");
  EXPECT_THAT(progressText("Timetable", 9, 4, 80), Not(HasSubstr(".")));
}

}  // namespace
}  // namespace linewatch::app
