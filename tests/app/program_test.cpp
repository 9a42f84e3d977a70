#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include "app/encoded_alerts.h"
#include "app/program_run.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* kRoutes =
    "route_id,route_short_name,route_long_name,route_type,route_color\n"
    "r1,1,Harbour – Hills,3,0055AA\nr2,2,Zoo – Central,0,AA0000\n";

class ProgramTest : public testing::Test {
 protected:
  std::vector<std::string> given(const std::vector<std::string>& more) const {
    std::vector<std::string> words{"--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  std::vector<std::string> saved(const std::vector<std::string>& more) const {
    std::vector<std::string> words{"--state-dir", folder_ / "state"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  void SetUp() override {
    folder_.write("gtfs/routes.txt", kRoutes);
    folder_.write("alerts.pb", alertsFeed(alertEntity("a", "r1", "Strike")));
  }

  TemporaryFolder folder_;
};

TEST_F(ProgramTest, ShowsTheSampleCityWithoutConfigurationAndWritesNothing) {
  const auto run = runProgram(saved({"show", "--expanded"}));
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_THAT(run.output, AllOf(HasSubstr("[M1]"), HasSubstr("Good Service"), HasSubstr("made-up city")));
  EXPECT_THAT(run.errors, IsEmpty());
  EXPECT_FALSE(std::filesystem::exists(folder_ / "state"));
}

TEST_F(ProgramTest, ShowsAGivenFeed) {
  const auto run = runProgram(given({"--favorite", "r2", "--favorite", "r1", "show", "--expanded"}));
  EXPECT_EQ(run.output,
            "[1]  Strike\n✓    Good Service\n     No advisories for 1 other line\nAlerts received less than "
            "a minute ago; the feed states no time\n")
      << run.errors;
  const auto json = runProgram(given({"--favorite", "r1", "show", "--json"}));
  EXPECT_THAT(json.output, AllOf(StartsWith("{\""), HasSubstr("\"primaryText\": \"Strike\""),
                                 HasSubstr("\"age\": 0,"), EndsWith("}\n")));
  const auto german = runProgram(given({"--locale", "de-CH", "--favorite", "r2", "show"}));
  EXPECT_THAT(german.output, Not(HasSubstr("Good")));
}

TEST_F(ProgramTest, UsesTheGivenTimeForTheWholeList) {
  constexpr std::size_t kEightOClock = 1'795'507'200;
  folder_.write("alerts.pb", alertsFeed(alertEntity("a", "r1", "Strike", activeUntil(kEightOClock)) +
                                        alertEntity("b", "r1", "Fog", activeUntil(kEightOClock - 1))));
  const auto run = runProgram(given({"--favorite", "r1", "--now", "2026-11-24T08:00:00Z", "show"}));
  EXPECT_THAT(run.output, AllOf(HasSubstr("Strike"), Not(HasSubstr("Fog")))) << run.errors;
}

TEST_F(ProgramTest, PrintsUpcomingIncidents) {
  constexpr std::size_t kDay = 86400, kNow = 1'795'507'200;
  const auto between = [](std::size_t start, std::size_t end) {
    return field(1, "\x08" + varint(start) + "\x10" + varint(end));
  };
  folder_.write("alerts.pb",
                alertsFeed(alertEntity("a", "r1", "Works", between(kNow + kDay, kNow + 2 * kDay)) +
                           alertEntity("b", "r1", "Far", between(kNow + 8 * kDay, 0))));
  const std::vector<std::string> show{"--favorite",           "r1",   "--now",
                                      "2026-11-24T08:00:00Z", "show", "--upcoming"};
  EXPECT_EQ(runProgram(given(show)).output,
            "[1]  Works\n     11/25/26 8:00 AM – 11/26/26 8:00 AM\nAlerts received less than a minute ago; "
            "the feed states no time\n");
  folder_.write("alerts.pb", alertsFeed(""));
  EXPECT_THAT(runProgram(given(show)).output, StartsWith("Nothing begins within 7 days.\n"));
}

TEST_F(ProgramTest, DrawsAWidgetWithoutFavourites) {
  const auto run = runProgram(given({"render", "-o", folder_ / "none.svg"}));
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_TRUE(std::filesystem::exists(folder_ / "none.svg"));
}

TEST_F(ProgramTest, ReportsAFailedLoadAndShowsTheErrorRow) {
  struct Row {
    const char *name, *file, *contents, *words;
  };
  for (const Row& row :
       {Row{"cut short", "alerts.pb", "\x0a\x05", "alerts.pb"}, Row{"empty", "alerts.pb", "", "alerts.pb"},
        Row{"no routes", "gtfs/routes.txt", "", "routes.txt"}}) {
    SCOPED_TRACE(row.name);
    SetUp();
    folder_.write(row.file, row.contents);
    const auto run = runProgram(given({"--favorite", "r1", "show"}));
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, HasSubstr("Can’t Load"));
    EXPECT_THAT(run.errors, AllOf(StartsWith("linewatch: feed given: "), HasSubstr(row.words)));
    EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1);
  }
}

TEST_F(ProgramTest, ReportsAMissingFileEvenWithoutFavourites) {
  for (const auto& [gtfs, alertsFile] :
       {std::pair{folder_ / "none", folder_ / "alerts.pb"}, {folder_ / "gtfs", folder_ / "none"}}) {
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"show"}, {"show", "--json"}, {"render", "-o", folder_ / "none.svg"}}) {
      std::vector<std::string> words{"--gtfs", gtfs, "--alerts", alertsFile};
      words.insert(words.end(), command.begin(), command.end());
      const auto run = runProgram(words);
      EXPECT_EQ(run.status, 1);
      EXPECT_THAT(run.errors, AllOf(StartsWith("linewatch: feed given: "), HasSubstr("none: ")));
      EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
      EXPECT_EQ(run.output.find("No Favorite Lines") == std::string::npos, command.front() == "render");
    }
  }
  EXPECT_TRUE(std::filesystem::exists(folder_ / "none.svg"));
  EXPECT_EQ(runProgram(given({"show"})).status, 0);
}

TEST_F(ProgramTest, RefusesWrongUsageInOneLine) {
  for (const auto& [arguments, words] : std::vector<std::pair<std::vector<std::string>, const char*>>{
           {given({"--favorite", "nope", "show"}), "nope"},
           {{"--gtfs", "g", "show"}, "--alerts"},
           {{"--locale", "???", "show"}, "???"},
           {saved({"favorites", "add", "nope"}), "nope"},
           {saved({"feed", "add", "x", "--gtfs", "/nowhere", "--alerts", "/nowhere"}),
            "feed x: /nowhere: No such"},
           {saved({"feed", "remove", "x"}), "there is no feed “x”"},
           {saved({"feed", "add",
                   "a\x7f"
                   "b",
                   "--gtfs", "g", "--alerts", "a"}),
            "a name is one line"},
           {saved({"open", "/no\nwhere"}), "/no where: No such"},
           {saved({"feed", "add", "sample", "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"}),
            "cannot be called “sample”"},
           {given({"feed"}), "feed: a run without saved state"},
           {{"--state-dir", folder_ / "alerts.pb", "show"}, "alerts.pb: it is not a folder"},
           {{"--state-dir", folder_ / "alerts.pb/x", "analytics", "off"}, "Not a directory"},
           {{"--state-dir", folder_ / "alerts.pb/x", "favorites", "add", "M1"}, "Not a directory"},
           {{"--state-dir", folder_ / "alerts.pb/x", "feed", "add", "x", "--gtfs", folder_ / "gtfs",
             "--alerts", folder_ / "alerts.pb"},
            "state database: "},
           {saved({"open", "/nowhere"}), "/nowhere"},
           {saved({"open", folder_ / "gtfs"}), "gtfs: Is a directory"},
           {{"simulate", folder_ / "gtfs"}, "gtfs: Is a directory"},
           {{"simulate", "/dev/zero"}, "/dev/zero: it is larger than 64 MiB"}}) {
    const auto run = runProgram(arguments);
    EXPECT_EQ(run.status, 2) << words;
    EXPECT_THAT(run.errors, AllOf(StartsWith("linewatch: "), HasSubstr(words)));
    EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
  }
}

TEST_F(ProgramTest, FailsWhenItsOutputCannotBeWritten) {
  std::string steps = R"({"do": "load"})";
  for (const std::size_t pages : {0, 50}) {
    for (std::size_t i = 0; i < pages; ++i) steps += R"(, {"do": "snapshot"})";
    const std::string scenario = folder_.write("scenario.json", R"({"steps": [)" + steps + "]}");
    const int status =
        std::system((std::string(LINEWATCH_PROGRAM) + " simulate " + scenario + " >/dev/full 2>&1").c_str());
    EXPECT_EQ(WEXITSTATUS(status), 2) << pages;
  }
}

TEST_F(ProgramTest, NamesFavouritesThatAreGone) {
  const auto addFeed = [this](const std::string& name) {
    std::filesystem::copy(folder_ / "gtfs", folder_ / name);
    runProgram(saved({"feed", "add", name, "--gtfs", folder_ / name, "--alerts", folder_ / "alerts.pb"}));
  };
  folder_.write("alerts.pb", alertsFeed(""));
  addFeed("town");
  addFeed("port");
  runProgram(saved({"favorites", "add", "town:r1", "town:r2", "port:r1"}));
  runProgram(saved({"feed", "remove", "port"}));
  folder_.write("town/routes.txt", "route_id,route_short_name\nr2,2\n");
  const auto partial = runProgram(saved({"show"}));
  EXPECT_EQ(partial.status, 0);
  EXPECT_THAT(partial.output, AllOf(HasSubstr("Good Service"), EndsWith("\nUnknown lines: r1, r1\n")));
  EXPECT_THAT(partial.errors, IsEmpty()) << "they are named once";
  EXPECT_THAT(runProgram(saved({"show", "--json"})).output,
              AllOf(HasSubstr("\"status\": \"good\""), HasSubstr("\"status\": \"unknown\"")));

  folder_.write("town/routes.txt", "route_id,route_short_name\nr3,3\n");
  const auto none = runProgram(saved({"show"}));
  EXPECT_EQ(none.status, 1);
  EXPECT_THAT(none.output, AllOf(HasSubstr("Can’t Load"), Not(HasSubstr("No Favorite Lines"))));
  EXPECT_EQ(none.errors, "linewatch: feed town: its timetable no longer has the line r1\n");
}

TEST_F(ProgramTest, SavesFeedsAndFavourites) {
  const auto added = runProgram(
      saved({"feed", "add", "town", "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"}));
  EXPECT_EQ(added.output,
            "Added town: 2 lines, 1 alert now\nIts state: fresh\n"
            "Find its lines: linewatch lines\nThen add one: linewatch favorites add LINE\n")
      << added.errors;
  EXPECT_THAT(runProgram(saved({"feed"})).output,
              AllOf(HasSubstr(folder_ / "alerts.pb"), HasSubstr("town: 2 lines; fresh\n")));
  EXPECT_THAT(runProgram(saved({"lines", "central"})).output,
              AllOf(HasSubstr("Zoo – Central"), Not(HasSubstr("Hills"))));
  EXPECT_EQ(runProgram(saved({"feed", "update"})).output,
            "Updated town: 2 lines, 1 alert now\nIts state: fresh\n");
  EXPECT_EQ(runProgram(saved({"favorites", "add", "2", "town:r1"})).output, "Added 2\nAdded 1\n");
  EXPECT_EQ(runProgram(saved({"favorites", "add", "2"})).output, "Already a favourite: 2\n");
  EXPECT_THAT(runProgram(saved({"show"})).output, HasSubstr("Strike"));
  EXPECT_EQ(runProgram(saved({"favorites", "add", "2", "--stops", "none", "--direction", "1"})).output,
            "Changed 2\n");
  EXPECT_EQ(runProgram(saved({"favorites", "add", "2", "--direction", "both"})).output, "Changed 2\n");
  EXPECT_THAT(runProgram(saved({"favorites"})).output,
              AllOf(HasSubstr("  --stops none\n"), Not(HasSubstr("--direction"))));
  EXPECT_THAT(runProgram(saved({"favorites", "add", "2", "--stops", "nowhere"})).errors,
              HasSubstr("town has no stop “nowhere”"));
  EXPECT_EQ(runProgram(saved({"favorites", "move", "2", "1"})).output, "Moved 2 to place 1\n");
  EXPECT_THAT(runProgram(saved({"favorites"})).output, StartsWith("[2]"));
  EXPECT_EQ(runProgram(saved({"favorites", "move", "2", "9"})).output, "Moved 2 to place 2\n");
  EXPECT_THAT(runProgram(saved({"favorites"})).output, StartsWith("[1]"));
  EXPECT_THAT(runProgram(saved({"favorites", "move", "nowhere", "1"})).errors, HasSubstr("nowhere"));
  EXPECT_EQ(runProgram(saved({"favorites", "remove", "r1"})).output, "Removed r1\n");
  EXPECT_THAT(runProgram(saved({"show"})).output, HasSubstr("Good Service"));

  std::filesystem::copy(folder_ / "gtfs", folder_ / "lost");
  runProgram(saved({"feed", "add", "lost", "--gtfs", folder_ / "lost", "--alerts", folder_ / "alerts.pb"}));
  runProgram(saved({"favorites", "add", "lost:r1"}));
  std::filesystem::remove_all(folder_ / "lost");
  const auto partial = runProgram(saved({"show"}));
  EXPECT_EQ(partial.status, 0);
  EXPECT_THAT(
      partial.output,
      AllOf(
          HasSubstr("Good Service"),
          HasSubstr("town: Alerts received less than a minute ago; the feed states no time\nlost: No alerts"),
          HasSubstr("no such file or folder\nUnknown lines: r1\n")));
  const auto found = runProgram(saved({"lines", "central"}));
  EXPECT_EQ(found.status, 2);
  EXPECT_THAT(found.output, HasSubstr("Zoo – Central"));
  EXPECT_THAT(found.errors, HasSubstr("feed lost"));
  EXPECT_THAT(runProgram(saved({"favorites", "add", "9"})).errors, HasSubstr("feed lost"));

  EXPECT_THAT(runProgram(saved({"feed"})).output,
              HasSubstr("lost: its lines are unknown: " + (folder_ / "lost")));
  const auto updated = runProgram(saved({"feed", "update"}));
  EXPECT_EQ(updated.status, 1);
  EXPECT_THAT(updated.output, AllOf(HasSubstr("Updated town"), Not(HasSubstr("lost"))));
  EXPECT_THAT(updated.errors, HasSubstr("feed lost"));
  EXPECT_THAT(runProgram(saved({"feed", "update", "tow"})).errors, HasSubstr("did you mean town?"));
}

TEST_F(ProgramTest, KeepsTheFavouritesOfTheOnlyFeedAfterItsRemoval) {
  runProgram(saved({"feed", "add", "town", "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"}));
  runProgram(saved({"favorites", "add", "r1", "r2"}));
  EXPECT_EQ(runProgram(saved({"feed", "remove", "town"})).status, 0);

  const std::string hint = "No feeds. Add one: linewatch feed add CITY\n";
  const std::string reason = "feed town: it has been removed, so nothing is known of its line r1\n";
  const auto shown = runProgram(saved({"show"}));
  EXPECT_EQ(shown.status, 1);
  EXPECT_THAT(shown.output, AllOf(HasSubstr("Can’t Load"), HasSubstr("The feed town was removed"),
                                  HasSubstr(hint), HasSubstr("Unknown lines: r1, r2")));
  EXPECT_EQ(shown.errors, "linewatch: " + reason);
  EXPECT_EQ(runProgram(saved({"favorites"})).output, "Unknown line: town:r1\nUnknown line: town:r2\n" + hint);
  EXPECT_EQ(runProgram(saved({"feed"})).output, hint);
  EXPECT_EQ(runProgram(saved({"lines"})).errors, "linewatch: " + hint);
  for (const char* format : {"text", "json", "waybar", "i3blocks", "polybar", "genmon", "argos"}) {
    const auto run = runProgram(saved({"status", "--format", format}));
    EXPECT_THAT(run.output + run.errors, AllOf(Not(HasSubstr("made-up")), Not(HasSubstr("Good Service")),
                                               Not(HasSubstr("\"sampleCity\": true"))))
        << format;
  }
  EXPECT_EQ(runProgram(saved({"status"})).errors, "linewatch: " + reason);

  runProgram(saved({"favorites", "remove", "r1", "town:r2"}));
  EXPECT_THAT(runProgram(saved({"show"})).output, HasSubstr("made-up city"));

  // Lines of the same ids may be others, so the rider is told which are watched again.
  const std::vector<std::string> add =
      saved({"feed", "add", "town", "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"});
  EXPECT_THAT(runProgram(add).output, Not(HasSubstr("favourite: ")));
  runProgram(saved({"favorites", "add", "r2"}));
  runProgram(saved({"feed", "remove", "town"}));
  EXPECT_THAT(runProgram(add).output, HasSubstr("Already a favourite: 2\n"));
}

TEST_F(ProgramTest, RemovesControlCharactersFromTextsOfAFeed) {
  const std::string id = "\x1B\x07\xC2\x9B";
  folder_.write("gtfs/routes.txt", "route_id,route_type\nr1,3\n" + id + ",3\n");
  folder_.write("alerts.pb", alertsFeed(alertEntity("a", id, "Str\x1B[2Jike")));
  const auto isSafe = [](const std::string& text) {
    return std::ranges::all_of(text, [](char byte) { return byte == '\n' || (byte & 0xE0) != 0; }) &&
           text.find("\xC2\x9B") == std::string::npos;
  };
  const std::string favorite = "town:" + id;
  for (const std::vector<std::string>& words :
       {saved({"feed", "add", "town", "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"}),
        saved({"lines"}), saved({"favorites", "add", favorite}), saved({"favorites"}),
        saved({"show", "--expanded"}), saved({"favorites", "add", favorite}),
        saved({"favorites", "remove", favorite}), saved({"favorites", "remove", id})}) {
    const auto run = runProgram(words);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_FALSE(run.output.empty());
    EXPECT_TRUE(isSafe(run.output + run.errors)) << words.at(2) << ": " << run.output << run.errors;
  }
}

TEST_F(ProgramTest, RemovesAFavouriteOfTheSampleCity) {
  EXPECT_EQ(runProgram(saved({"favorites", "remove", "M1"})).output, "Removed M1\n");
  const auto list = runProgram(saved({"favorites"}));
  EXPECT_THAT(list.output, AllOf(HasSubstr("[7]"), Not(HasSubstr("[M1]")))) << list.errors;
}

TEST_F(ProgramTest, DoesNotShowTheSampleCityAfterALostDatabase) {
  folder_.write("state/linewatch.sqlite", std::string(5000, 'x'));
  EXPECT_THAT(runProgram(saved({"show"})).errors, HasSubstr("is set aside as "));
  const auto again = runProgram(saved({"show"}));
  EXPECT_EQ(again.status, 2);
  EXPECT_THAT(again.output, IsEmpty());
  EXPECT_THAT(again.errors, HasSubstr("set aside as linewatch.sqlite.damaged: add your feeds"));
  EXPECT_EQ(runProgram(
                saved({"feed", "add", "town", "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"}))
                .status,
            0);
  EXPECT_EQ(runProgram(saved({"show"})).status, 0);
}

TEST_F(ProgramTest, LogsADamagedCacheOnlyWhenVerbose) {
  ASSERT_EQ(runProgram(
                saved({"feed", "add", "town", "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"}))
                .status,
            0);
  for (const bool isVerbose : {false, true}) {
    folder_.write("state/cache/feeds.sqlite", std::string(5000, 'x'));
    const auto run = runProgram(
        saved(isVerbose ? std::vector<std::string>{"-v", "feed"} : std::vector<std::string>{"feed"}));
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, HasSubstr("town: 2 lines; fresh\n"));
    EXPECT_EQ(run.errors.find("is set aside as feeds.sqlite.damaged") != std::string::npos, isVerbose);
    EXPECT_EQ(run.errors.empty(), !isVerbose) << run.errors;
  }
}

TEST_F(ProgramTest, ShowCachesNoLocalFeed) {
  ASSERT_EQ(runProgram(
                saved({"feed", "add", "town", "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"}))
                .status,
            0);
  ASSERT_EQ(runProgram(saved({"favorites", "add", "r1"})).status, 0);
  const std::string cache = textIn(folder_ / "state/cache/feeds.sqlite");
  const auto routes = std::filesystem::path(folder_ / "gtfs/routes.txt");
  std::filesystem::last_write_time(routes,
                                   std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
  EXPECT_EQ(runProgram(saved({"show"})).status, 0);
  EXPECT_EQ(textIn(folder_ / "state/cache/feeds.sqlite"), cache);
}

TEST_F(ProgramTest, ReportsTheFileSizeLimitAsAnError) {
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit tight{4096, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
  const auto run = runProgram(saved({"favorites", "remove", "M1"}));
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.errors, EndsWith("state/linewatch.sqlite: it cannot be made: File too large\n"));
  EXPECT_EQ(runProgram(saved({"favorites", "remove", "M1"})).output, "Removed M1\n");
}

TEST_F(ProgramTest, ReportsAlertsThatDoNotMatchTheTimetable) {
  folder_.write("alerts.pb", alertsFeed(alertEntity("a", "of another city", "Strike")));
  const auto added = runProgram(
      saved({"feed", "add", "town", "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb"}));
  EXPECT_EQ(added.output,
            "Added town: 2 lines, 1 alert now\nIts state: its lines are unknown: alerts: 1 of 1 selector "
            "resolved to nothing: the alerts do not match the timetable\nFind its lines: linewatch "
            "lines\nThen add one: linewatch favorites add LINE\n");
  const auto shown = runProgram(given({"--favorite", "r1", "show"}));
  EXPECT_EQ(shown.status, 1);
  EXPECT_THAT(shown.output, Not(HasSubstr("Good Service")));
  EXPECT_THAT(shown.errors, HasSubstr("the alerts do not match the timetable"));
}

TEST_F(ProgramTest, APreferenceTurnsOnFakeIncidents) {
  folder_.write("alerts.pb", alertsFeed(""));
  const auto shown = [&](const std::string& value) {
    const auto run = runProgram(given({"--favorite", "r1", "--preference",
                                       "Rova.LineWatch.internal.injectFakeIncidents=" + value, "show"}));
    EXPECT_EQ(run.status, 0) << run.errors;
    return run.output;
  };
  EXPECT_THAT(shown("false"), HasSubstr("Good Service"));
  // A line gets a fake incident by chance; that none does in 64 attempts is practically impossible.
  bool isFaked = false;
  for (int attempt = 0; attempt < 64 && !isFaked; ++attempt) isFaked = shown("true").starts_with("[1]");
  EXPECT_TRUE(isFaked);
}

}  // namespace
}  // namespace linewatch::app
