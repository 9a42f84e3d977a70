#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/encoded_alerts.h"
#include "app/program.h"
#include "app/terminal_width.h"
#include "feeds/catalogue/spreadsheet_sketch.h"
#include "feeds/http/local_http_server.h"
#include "feeds/timetable_zip.h"
#include "localization/string_tables.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

constexpr std::size_t kColumns = 32;

using Words = std::vector<std::string>;

/// The commands of a rider, from a search to the removal of the feed. Each leaves what the next one needs.
const Words kCommands[] = {
    {"favorites"},
    {"feed"},
    {"feed", "find", "tokyo"},
    {"feed", "find", "oldtown"},
    {"feed", "add", "switzerland"},
    {"feed", "add", "lonely"},
    {"feed", "add", "hilltown"},
    {"feed", "add", "HTT", "--gtfs", "/nowhere", "--alerts", "/nowhere"},
    {"feed"},
    {"lines"},
    {"lines", "unbekannt"},
    {"favorites", "add", "M1"},
    {"favorites", "add", "M2"},
    {"favorites", "add", "M1", "--stops", "s9"},
    {"favorites"},
    {"show", "--expanded"},
    {"settings"},
    {"settings", "refresh", "1h"},
    {"settings", "on-top", "on"},
    {"analytics"},
    {"feed", "remove", "HTT"},
};

class NarrowTerminalTest : public testing::Test {
 protected:
  void SetUp() override {
    ::setenv("COLUMNS", std::to_string(kColumns).c_str(), 1);
    const std::string alerts = agency_.url("/alerts"), timetable = agency_.url("/t.zip");
    catalogue_ = folder_.write(
        "feeds.csv",
        spreadsheetOf({{.id = "t-1", .country = "CH", .city = "Hilltown", .url = timetable},
                       {.id = "a-1",
                        .entities = "sa",
                        .timetables = "t-1",
                        .country = "CH",
                        .city = "Hilltown",
                        .provider = "Verkehrsverbund Hilltown (HTT)",
                        .url = alerts},
                       {.id = "a-2",
                        .entities = "sa",
                        .timetables = "t-1",
                        .country = "CH",
                        .city = "Tokyo",
                        .provider = "東京都交通局および東京地下鉄の路線情報",
                        .url = alerts,
                        .key = "1,https://keys.example/a/long/path/to/a/key,token"},
                       {.id = "a-3", .entities = "sa", .city = "Lonely", .provider = "Lonely", .url = alerts},
                       {.id = "t-4", .city = "Oldtown", .url = timetable}}));
  }
  void TearDown() override { ::unsetenv("COLUMNS"); }

  /// What the command prints on both streams.
  std::string printed(const Words& command, const std::string& language) const {
    Words words = {"linewatch",        "--locale",    language,  "--state-dir",
                   folder_ / language, "--catalogue", catalogue_};
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    run(static_cast<int>(words.size()), arguments.data());
    return testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
  }

  static void answer(LocalHttpServer::Connection& connection) {
    const bool isTimetable = connection.request().find("/t.zip") != std::string::npos;
    connection.write(
        httpAnswer("200 OK", "",
                   isTimetable ? std::string(kTimetableZip)
                               : alertsFeed(alertEntity("a", "M1", "都営大江戸線は運転を見合わせています"))));
  }

  TemporaryFolder folder_;
  LocalHttpServer agency_{answer};
  std::string catalogue_;
};

TEST_F(NarrowTerminalTest, NothingIsWiderThanTheTerminalInAnyLanguage) {
  for (const EmbeddedLanguage& language : embeddedLanguages()) {
    for (const Words& command : kCommands) {
      const std::string text = printed(command, std::string(language.language));
      EXPECT_FALSE(text.empty()) << testing::PrintToString(command);
      std::istringstream lines(text);
      for (std::string line; std::getline(lines, line);)
        EXPECT_LE(terminalWidth(line), kColumns)
            << language.language << " " << testing::PrintToString(command) << ": " << line;
    }
  }
}

}  // namespace
}  // namespace linewatch::app
