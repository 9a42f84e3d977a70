#include "app/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "settings/setting_table.h"

namespace linewatch::app {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::variant<CommandLine, Report> parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "linewatch");
  return parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

template <class T>
T commandOf(std::vector<const char*> arguments) {
  return std::get<T>(std::get<CommandLine>(parse(std::move(arguments))).command);
}

TEST(CommandLineTest, AcceptsCommonOptionsBeforeAndAfterTheCommand) {
  for (const auto& arguments : {std::vector<const char*>{"--gtfs", "g", "--favorite", "1", "--favorite", "2",
                                                         "--catalogue", "c", "show", "--json"},
                                std::vector<const char*>{"show", "--favorite", "1", "--json", "--gtfs", "g",
                                                         "--catalogue", "c", "--favorite", "2"}}) {
    const auto line = std::get<CommandLine>(parse(arguments));
    EXPECT_THAT(line.common.feed.gtfs, ElementsAre("g"));
    EXPECT_THAT(line.common.favorites, ElementsAre("1", "2"));
    EXPECT_EQ(line.common.catalogue, "c");
    EXPECT_TRUE(std::get<ShowCommand>(line.command).json);
  }
}

TEST(CommandLineTest, ParsesEachCommand) {
  EXPECT_FALSE(commandOf<PanelCommand>({}).companion);
  EXPECT_FALSE(commandOf<PanelCommand>({}).refresh);
  EXPECT_EQ(commandOf<PanelCommand>({"panel", "--refresh", "30s"}).refresh, "30s");
  EXPECT_EQ(commandOf<PanelCommand>({"panel", "--refresh", "45"}).refresh, "45");
  EXPECT_EQ(commandOf<PanelCommand>({"panel", "--refresh", "30m"}).refresh, "30m");
  EXPECT_FALSE(commandOf<ShowCommand>({"show"}).expanded);
  EXPECT_EQ(commandOf<FavoritesCommand>({"favorites"}).action, FavoritesCommand::Action::list);
  const auto added = commandOf<FavoritesCommand>({"favorites", "add", "M1", "7"});
  EXPECT_EQ(added.action, FavoritesCommand::Action::add);
  EXPECT_THAT(added.lines, ElementsAre("M1", "7"));
  EXPECT_EQ(commandOf<FavoritesCommand>({"favorites", "remove", "M1"}).action,
            FavoritesCommand::Action::remove);
  EXPECT_THAT(commandOf<LinesCommand>({"lines", "central", "bus"}).query, ElementsAre("central", "bus"));
  const auto feed = commandOf<FeedCommand>({"feed", "add", "metro", "--gtfs", "g.zip", "--alerts", "a.pb"});
  EXPECT_EQ(feed.name, "metro");
  EXPECT_THAT(feed.options.gtfs, ElementsAre("g.zip"));
  EXPECT_EQ(commandOf<FeedCommand>({"feed"}).action, FeedCommand::Action::list);
  EXPECT_EQ(commandOf<OpenCommand>({"open", "file"}).file, "file");
}

TEST(CommandLineTest, AcceptsSeveralLocationsAndKeysForEachDocument) {
  using Field = FeedKeys::Field;
  const auto feed = commandOf<FeedCommand>({"feed",
                                            "add",
                                            "metro",
                                            "--gtfs",
                                            "a",
                                            "--alerts",
                                            "b",
                                            "--alerts",
                                            "c",
                                            "--gtfs",
                                            "d",
                                            "--header",
                                            "X-Key:  apikey KEY ",
                                            "--header",
                                            "X-User: a:b",
                                            "--query-key",
                                            "token",
                                            "--query-key",
                                            "id=KEY-1",
                                            "--gtfs-header",
                                            "X-Other:",
                                            "--alerts-key-command",
                                            "pass show 'a b'"});
  EXPECT_THAT(feed.options.gtfs, ElementsAre("a", "d"));
  EXPECT_THAT(feed.options.alerts, ElementsAre("b", "c"));
  EXPECT_THAT(feed.options.keys.headers, ElementsAre(Field{"X-Key", "apikey KEY"}, Field{"X-User", "a:b"}));
  EXPECT_THAT(feed.options.keys.query, ElementsAre(Field{"token", "KEY"}, Field{"id", "KEY-1"}));
  EXPECT_THAT(feed.options.gtfsKeys.headers, ElementsAre(Field{"X-Other", "KEY"}));
  EXPECT_EQ(feed.options.alertsKeys.command, "pass show 'a b'");
  EXPECT_TRUE(commandOf<FeedCommand>({"feed", "key", "metro", "--remove"}).removesKeys);
}

TEST(CommandLineTest, RefusesWrongUsage) {
  for (const auto& [arguments, words] : std::vector<std::pair<std::vector<const char*>, const char*>>{
           {{"shwo"}, "shwo"},
           {{"show", "--colour"}, "--colour"},
           {{"feed", "add", "metro", "--gtfs", "g"},
            "--alerts is required (linewatch feed add --help says more)"},
           {{"favorites", "add"}, "LINE"},
           {{"--gtfs", "", "show"}, "--gtfs: \"\" is neither a file nor"},
           {{"feed", "add", "metro", "--gtfs", "g", "--alerts", "ftp://x"},
            "--alerts: \"ftp://***\" is neither a file nor"},
           {{"--locale", "???", "show"}, "--locale: \"???\" is not a language such as en or de-CH"},
           {{"--now", "yesterday", "show"}, "--now: \"yesterday\" is not a time such as 2026"},
           {{"--preference", "=x", "show"}, "--preference: \"=x\" is not of the form KEY=VALUE"},
           {{"render", "-o", "x.png", "--text-size", "huge"}, "--text-size: \"huge\" is none of XS, S"},
           {{"panel", "--companion", "viewer 'x"}, "a quote is not closed"},
           {{"panel", "--refresh", "29"}, "\"29\" is not a time from 30s to 30m"},
           {{"panel", "--refresh", "31m"}, "\"31m\" is not a time from 30s to 30m"},
           {{"panel", "--refresh", "2 m"}, "\"2 m\" is not a time from 30s to 30m"},
           {{"panel", "--refresh", "-60"}, "--refresh"},
           {{"panel", "--refresh", "s"}, "\"s\" is not a time from 30s to 30m"},
           {{"panel", "--companion", "viewer \"x\\\""}, "a quote is not closed"},
           {{"panel", "--companion", "viewer \\"}, "nothing follows"}}) {
    const auto report = std::get<Report>(parse(arguments));
    EXPECT_EQ(report.status, 2);
    EXPECT_THAT(report.complaint, HasSubstr(words));
  }
  for (const char* number :
       {"", "many", "-1", "1.5", "1e3", "nan", "99999999999999999999999", " 3", "0x10"}) {
    EXPECT_THAT(std::get<Report>(parse({"--max-rows", number, "show"})).complaint,
                HasSubstr("--max-rows: \"" + std::string(number) + "\" is not a whole number from 0"));
  }
  for (const char* number : {"", "many", "-1", "0", "1e999", "nan", "inf", " 3", "3,5"}) {
    EXPECT_THAT(std::get<Report>(parse({"render", "-o", "x.png", "--scale", number})).complaint,
                HasSubstr("--scale: \"" + std::string(number) + "\" is not a number from 0.5 to 8"));
  }
}

TEST(CommandLineTest, PrintsHelp) {
  const auto help = std::get<Report>(parse({"--help"}));
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.output, AllOf(HasSubstr("favorites"), HasSubstr("Without a subcommand")));
  EXPECT_THAT(std::get<Report>(parse({"feed", "add", "--help"})).output, HasSubstr("linewatch --help"));
}

TEST(CommandLineTest, SplitsACommandIntoWordsAsAShellDoes) {
  for (const auto& [command, words] : std::vector<std::pair<const char*, std::vector<std::string>>>{
           {"", {}},
           {" viewer \t-x\n", {"viewer", "-x"}},
           {R"(viewer "two words" 'and "these"')", {"viewer", "two words", R"(and "these")"}},
           {R"(a'b c'd"e"f "" '')", {"ab cdef", "", ""}},
           {R"(one\ word \" \' \\ \n)", {"one word", "\"", "'", "\\", "n"}},
           {R"("\"\\\$\`\n" '\n\')", {R"("\$`\n)", R"(\n\)"}},
           {"a\\\nb \\\n c", {"ab", "c"}},
           {R"($HOME `id` $(id) ~ * a|b;c&d>e #f)",
            {"$HOME", "`id`", "$(id)", "~", "*", "a|b;c&d>e", "#f"}}}) {
    Settings settings;
    const auto text = commandOf<PanelCommand>({"panel", "--companion", command}).companion;
    ASSERT_TRUE(text && settingWithKey("companion")->take(*text, settings)) << command;
    EXPECT_EQ(settings.companion, words) << command;
  }
}

}  // namespace
}  // namespace linewatch::app
