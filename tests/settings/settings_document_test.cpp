#include "settings/settings_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shared/failure.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Setting& setting(std::string_view key) { return *settingWithKey(key); }

std::string with(const std::string& text, std::string_view key, const std::string& value) {
  const auto changed = SettingsDocument(text).with(setting(key), value);
  return changed ? *changed : sentenceOf(changed.error());
}

std::string without(const std::string& text, std::string_view key) {
  const auto changed = SettingsDocument(text).without(setting(key));
  return changed ? *changed : sentenceOf(changed.error());
}

TEST(SettingTable, DefaultsAreAllowedAndAreTheDefaultsOfTheRecord) {
  Settings settings{.refresh = Seconds(1), .staysOnTop = true, .companion = {"x"}, .catalogue = "x"};
  for (const Setting& row : settingTable()) {
    EXPECT_TRUE(row.take(std::string(row.defaultText), settings)) << row.key;
    EXPECT_EQ(settingWithKey(row.key), &row);
    for (const std::string_view choice : row.choices) EXPECT_TRUE(row.isAllowed(std::string(choice)));
  }
  EXPECT_EQ(settings, Settings());
  EXPECT_EQ(kLanguageSetting.key, "language");
  EXPECT_EQ(kTextSizeSetting.key, "text-size");
  EXPECT_EQ(kRefreshSetting.key, "refresh");
  EXPECT_EQ(kAnalyticsSetting.key, "analytics");
}

TEST(SettingTable, TakesTheAllowedValuesOnly) {
  for (const char* text : {"30", "30s", "1m", "1800", "30m"}) EXPECT_TRUE(kRefreshSetting.isAllowed(text));
  for (const char* text : {"29", "31m", "-60", "", "s", "m", "2 m", "1e3", "99999999999999"})
    EXPECT_FALSE(kRefreshSetting.isAllowed(text)) << text;
  EXPECT_FALSE(kLanguageSetting.isAllowed("klingonisch"));
  EXPECT_FALSE(setting("companion").isAllowed("viewer 'x"));
  EXPECT_FALSE(kAnalyticsSetting.isAllowed("yes"));
  EXPECT_EQ(usualText(kAnalyticsSetting, "off"), "false");
}

TEST(SettingsDocument, ReadsValuesAndNamesMistakesWithTheirPlaces) {
  const SettingsDocument document(
      "\xEF\xBB\xBFlangauge = \"de\"\r\n"
      "# a comment\r\n"
      "  \"text-size\" = \"HUGE\" # é\r\n"
      "refresh = 90\r\n"
      "on-top = \"true\"\r\n"
      "companion = 'sh -c \"x\"'\r\n"
      "analytics = 0\r\n"
      "[frameless]\r\n"
      "x = 1\r\n");
  EXPECT_TRUE(document.isWellFormed());
  EXPECT_EQ(document.valueOf(setting("refresh")), "90");
  EXPECT_EQ(document.valueOf(setting("companion")), "sh -c \"x\"");
  EXPECT_FALSE(document.valueOf(setting("on-top")));
  std::vector<std::string> faults;
  for (const SettingsFault& fault : document.faults())
    faults.push_back(std::to_string(fault.place.line) + ":" + std::to_string(fault.place.column) + " " +
                     fault.reason);
  EXPECT_THAT(faults, ElementsAre(HasSubstr("1:1 there is no setting \"langauge\"; did you mean language?"),
                                  HasSubstr("3:17 text-size = \"HUGE\" is not allowed; write one of XS"),
                                  HasSubstr("5:10 on-top = \"true\" is not allowed; write true or false"),
                                  HasSubstr("7:13 analytics = 0 is not allowed"),
                                  HasSubstr("8:1 frameless = [frameless] is not allowed")));
  EXPECT_TRUE(document.hasWrongValue(kAnalyticsSetting));
}

TEST(SettingsDocument, AMistakeOfTheFormatIsNamedWithItsPlace) {
  for (const auto& [text, line, column] : {std::tuple{"on-top = true\nrefresh = \n", 2U, 11U},
                                           {"refresh = 30\nrefresh = 31\n", 2U, 11U},
                                           {"x = \"\xFF\"", 1U, 5U},
                                           {"# é\nx = 'é'\né = 1\n", 3U, 1U},
                                           {"x = \"\"\"é\\\"\"\"\"\"\" é\n", 1U, 17U},
                                           {"x = \"\"\"\\ \n é\"\"\"\n", 2U, 2U},
                                           {"x = -'é'\n", 1U, 6U},
                                           {"[@", 1U, 2U}}) {
    const SettingsDocument document(text);
    EXPECT_FALSE(document.isWellFormed());
    ASSERT_EQ(document.faults().size(), 1U);
    EXPECT_EQ(document.faults().front().place, (TextPlace{line, column})) << text;
    EXPECT_FALSE(document.valueOf(setting("on-top")));
    EXPECT_FALSE(document.with(setting("on-top"), "false")) << "nothing is written to such a file";
  }
  EXPECT_FALSE(SettingsDocument("a" + std::string(100'000, '.')).isWellFormed());
  std::string deep = "a";
  for (int i = 0; i < 10'000; ++i) deep += ".a";
  EXPECT_FALSE(SettingsDocument(deep + " = 1").isWellFormed());
}

TEST(SettingsDocument, ChangesOneValueAndNothingElse) {
  struct Row {
    const char *before, *key, *value, *after;
  };
  for (const Row& row : {
           Row{"", "on-top", "true", "on-top = true\n"},
           Row{"# só\n", "refresh", "1m", "# só\nrefresh = \"1m\"\n"},
           Row{"refresh=\"1m\"#x", "refresh", "2m", "refresh=\"2m\"#x"},
           Row{"x = 1\n\n[t]\ny = 2\n", "on-top", "true", "x = 1\non-top = true\n\n[t]\ny = 2\n"},
           Row{"[t]\non-top = 2\n", "on-top", "true", "on-top = true\n\n[t]\non-top = 2\n"},
           Row{"x = 1\r\ny = 2", "on-top", "true", "x = 1\r\ny = 2\r\non-top = true\r\n"},
           Row{"x = [1,\n2] # z\n", "on-top", "true", "x = [1,\n2] # z\non-top = true\n"},
           Row{"a.b = \"\"\"\n\n\"\"\"\n[t]\n", "on-top", "true",
               "a.b = \"\"\"\n\n\"\"\"\non-top = true\n[t]\n"},
           Row{"  'on-top'  =  false  # why\n", "on-top", "true", "  'on-top'  =  true  # why\n"},
           Row{"catalogue = '''\nx'''\n", "catalogue", "a \"b\\\n", "catalogue = \"a \\\"b\\\\\\u000A\"\n"},
           Row{"\xEF\xBB\xBFlanguage = \"pt\" # ü\n", "language", "de",
               "\xEF\xBB\xBFlanguage = \"de\" # ü\n"},
       }) {
    EXPECT_EQ(with(row.before, row.key, row.value), row.after);
  }
  for (const char* text : {"[on-top]\nx = 1\n", "on-top.x = 1\n"})
    EXPECT_THAT(with(text, "on-top", "true"), HasSubstr("only you can change"));
  EXPECT_THAT(with("", "catalogue", "\xFF"), HasSubstr("only you can change"));
}

TEST(SettingsDocument, RemovesAValueAndNothingElse) {
  for (const auto& [before, after] : {std::pair{"x = 1\non-top = true\ny = 2\n", "x = 1\ny = 2\n"},
                                      {"on-top = true", ""},
                                      {"on-top = true  # why\n", "# why\n"},
                                      {"x = 1\n", "x = 1\n"},
                                      {"on-top = [1,\n2] \r\n#\r\n", "#\r\n"}}) {
    EXPECT_EQ(without(before, "on-top"), after);
  }
  EXPECT_THAT(without("on-top.x = 1\n", "on-top"), HasSubstr("only you can change"));
}

}  // namespace
}  // namespace linewatch
