#include "app/status_formats.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/status_reading.h"
#include "machine/terminal_line.h"
#include "status/status_document.h"
#include "wire/json_text.h"

namespace linewatch::app {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using enum StatusFormat;
using State = TransitStatus::State;

const Date kNow{Seconds(1'000'000)};

std::string printed(StatusFormat format, const TransitStatus& status) {
  IcuLocalization texts(*UserLocale::parse("en"));
  return statusText(format, status, kNow, texts);
}

TransitStatus clearStatus() {
  return {.state = State::allClear, .lines = {{.muid = 1, .name = "U1"}}, .received = kNow};
}

TransitStatus unknownStatus() {
  return {.state = State::unknown,
          .lines = {{.muid = 1, .name = "U1"}},
          .unknownCount = 1,
          .unknownLines = {"S2"},
          .received = kNow - Seconds(3600)};
}

/// One line with an incident of this title.
TransitStatus incidentStatus(std::string title) {
  return {.state = State::incidents,
          .lines = {{.muid = 1, .name = "U1"}, {.muid = 2, .name = "U6", .incidents = {0}}},
          .incidents = {{.muid = 11, .title = std::move(title), .severity = StatusSeverity::severe}}};
}

TEST(StatusFormats, AreWhatEachBarReads) {
  const struct {
    StatusFormat format;
    const char *clear, *unknown, *incident;
  } rows[] = {
      {plain, "Good Service\n", "No news of 1 line\n", "U6: Strike\n"},
      {waybar,
       R"({"alt": "allClear", "class": ["allClear"], "text": "Good Service", "tooltip": "Good Service"})"
       "\n",
       R"({"alt": "unknown", "class": ["unknown"], "text": "No news of 1 line", )"
       R"("tooltip": "No news of 1 line\nNo news of line S2.\nUpdated an hour ago"})"
       "\n",
       R"({"alt": "incidents", "class": ["incidents", "severe"], "text": "U6: Strike", )"
       R"("tooltip": "1 line with advisories\nU6: Strike"})"
       "\n"},
      {i3blocks,
       R"({"full_text": "Good Service", "markup": "none", "short_text": "Good Service", "urgent": "false"})"
       "\n",
       R"({"color": "#9a9996", "full_text": "No news of 1 line", "markup": "none", )"
       R"("short_text": "No news of 1 line", "urgent": "false"})"
       "\n",
       R"({"color": "#ff6b60", "full_text": "U6: Strike", "markup": "none", )"
       R"("short_text": "1 line with advisories", "urgent": "true"})"
       "\n"},
      {polybar, "Good Service\n", "%{F#9a9996}No news of 1 line %{F-}\n", "%{F#ff6b60}U6: Strike %{F-}\n"},
      {genmon, "<txt>Good Service</txt><txtclick>linewatch</txtclick><tool>Good Service</tool>\n",
       "<txt><span foreground=\"#9a9996\">No news of 1 line</span></txt><txtclick>linewatch</txtclick>"
       "<tool>No news of 1 line&#10;No news of line S2.&#10;Updated an hour ago</tool>\n",
       "<txt><span foreground=\"#ff6b60\">U6: Strike</span></txt><txtclick>linewatch</txtclick>"
       "<tool>1 line with advisories&#10;U6: Strike</tool>\n"},
  };
  for (const auto& [format, clear, unknown, incident] : rows) {
    EXPECT_EQ(printed(format, clearStatus()), clear);
    EXPECT_EQ(printed(format, unknownStatus()), unknown);
    EXPECT_EQ(printed(format, incidentStatus("Strike")), incident);
  }
  const std::string plainly = " | useMarkup=false emojize=false unescape=false ansi=false";
  EXPECT_EQ(printed(argos, incidentStatus("Strike")),
            "U6: Strike" + plainly + " color=#ff6b60\n---\n1 line with advisories" + plainly +
                "\nU6: Strike" + plainly + "\n---\nOpen" + plainly +
                " bash=linewatch terminal=false\nUpdate Now" + plainly + " refresh=true\n");
}

TEST(StatusFormats, NeverTakeTextsOfFeedsForMarkup) {
  const TransitStatus status = incidentStatus("<b>&\"' | color=red\n--%{A1:x:}</tool>%{F-}");
  const std::string escaped = "&lt;b&gt;&amp;&quot;&#39; | color=red --%{A1:x:}&lt;/tool&gt;%{F-}";
  EXPECT_EQ(printed(plain, status), "U6: <b>&\"' | color=red --%{A1:x:}</tool>%{F-}\n");
  EXPECT_THAT(
      printed(waybar, status),
      HasSubstr("\"text\": \"U6: &lt;b&gt;&amp;&quot;&#39; | color=red --%{A1:x:}&lt;/tool&gt;%{F-}\""));
  EXPECT_THAT(printed(i3blocks, status),
              AllOf(HasSubstr("\"markup\": \"none\""), HasSubstr("<b>&”' | color"), Not(HasSubstr("\\"))));
  EXPECT_EQ(printed(polybar, status), "%{F#ff6b60}U6: <b>&\"' | color=red --% {A1:x:}</tool>% {F-} %{F-}\n");
  EXPECT_THAT(printed(genmon, status), HasSubstr(">U6: " + escaped + "</span></txt>"));
  EXPECT_THAT(printed(genmon, status), HasSubstr("&#10;U6: " + escaped + "</tool>\n"));
  TransitStatus dashes = status;
  dashes.lines.back().name = "--";
  EXPECT_THAT(printed(argos, dashes),
              AllOf(HasSubstr("\n‐-: <b>&\"' ¦ color=red --%{A1:x:}</tool>%{F-} | useMarkup=false"),
                    Not(HasSubstr("\n--:"))));
  const std::string longTitle(500, 'x');
  EXPECT_THAT(printed(polybar, incidentStatus(longTitle)), AllOf(Not(HasSubstr(longTitle)), HasSubstr("…")));
  EXPECT_THAT(printed(plain, incidentStatus(longTitle)), HasSubstr(longTitle));
}

/// The text without these parts.
std::string without(std::string text, std::initializer_list<const char*> parts) {
  for (const std::string part : parts) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at))
      text.erase(at, part.size());
  }
  return text;
}

/// Whether Pango takes it for plain text: no tags, and no "&" but that of an entity.
bool isPlainMarkup(const std::string& text) {
  return without(text, {"&amp;", "&lt;", "&gt;", "&quot;", "&#39;", "&#10;"}).find_first_of("<>&") ==
         std::string::npos;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// What the reader of the format relies on; `text` has an incident that is severe.
bool isWellFormed(StatusFormat format, const std::string& text) {
  if (format == argos) {
    return std::ranges::all_of(linesOf(text), [](const std::string& line) {
      return line == "---" || (std::ranges::count(line, '|') == 1 && !line.starts_with("-"));
    });
  }
  if (linesOf(text).size() != 1) return false;
  if (format == polybar) return without(text, {"%{F#ff6b60}", "%{F-}\n"}).find("%{") == std::string::npos;
  if (format == genmon)
    return isPlainMarkup(without(text, {"<txt><span foreground=\"#ff6b60\">", "</span></txt>", "<txtclick>",
                                        "</txtclick>", "<tool>", "</tool>"}));
  if (format == plain) return true;
  const auto object = nlohmann::json::parse(text);
  if (format == waybar) return isPlainMarkup(object.at("text")) && isPlainMarkup(object.at("tooltip"));
  return format == json || (text.find('\\') == std::string::npos && object.size() == 5);
}

TEST(StatusFormats, StayWellFormedWhateverAFeedSays) {
  const std::string hostile[] = {"",
                                 "a\nb\r\n---\nc",
                                 "\x1b[2J\a\t\x7f",
                                 "\xe2\x80\xae \xe2\x80\xa8 \xc2\x85",
                                 "\xff\xc3",
                                 "\"\\\"}, {\"text\": \"",
                                 "<b>&amp;</b>&",
                                 "</txt><txt>\"'</tool>",
                                 "%{F-}%%{A1:reboot:}%{",
                                 "%",
                                 "---",
                                 "| bash=reboot refresh=true",
                                 "||",
                                 "-- x",
                                 "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d \xe2\x81\xa7x\xe2\x81\xa9",
                                 "${x} {} {0} %s %n",
                                 std::string(600, '%') + "{",
                                 std::string(600, '&')};
  for (std::size_t i = 0; i < kStatusFormatNames.size(); ++i) {
    for (const std::string& text : hostile) {
      TransitStatus status = incidentStatus(text);
      status.lines.back().name = text;
      status.incidents.front().summary = text;
      for (const std::size_t unknown : {0U, 1U}) {
        status.unknownCount = unknown;
        status.unknownLines.assign(unknown, text);
        status.error = text;
        const auto format = static_cast<StatusFormat>(i);
        const std::string output = printed(format, status);
        EXPECT_TRUE(isWellFormed(format, output)) << output;
        // Scripts read the texts of feeds unchanged.
        if (format == json) continue;
        for (const std::string& line : linesOf(output)) EXPECT_EQ(terminalLine(line), line);
      }
    }
  }
}

TEST(StatusFormats, EveryTextMarksTheMadeUpCity) {
  TransitStatus status = incidentStatus("Strike");
  status.isSampleCity = true;
  EXPECT_EQ(printed(plain, status), "A made-up city: U6: Strike\n");
  for (const char* key : {"\"full_text\"", "\"short_text\""})
    EXPECT_THAT(printed(i3blocks, status), HasSubstr(key + std::string(": \"A made-up city: ")));
  EXPECT_THAT(printed(json, status), HasSubstr("\"summary\": \"A made-up city: 1 line with advisories\""));
  EXPECT_THAT(printed(waybar, status), AllOf(HasSubstr("\"text\": \"A made-up city: U6"),
                                             HasSubstr("\"tooltip\": \"A made-up city: 1 line")));
}

TEST(StatusFormats, DocumentIsReadBackWhole) {
  TransitStatus status = incidentStatus("Strike");
  status.lines.front().agency = "Metro";
  status.incidents.push_back({.muid = ~0ULL, .title = "", .summary = "Fog", .isBlocking = true});
  status.lines.front().incidents = {1, 0};
  for (const TransitStatus& each :
       {status, clearStatus(), unknownStatus(),
        TransitStatus{.state = State::unknown, .error = "disk full", .isSampleCity = true}})
    EXPECT_EQ(parseStatus(printed(json, each)), each);
  const std::string document = printed(json, status);
  const auto with = [&document](const std::string& part, const std::string& other) {
    std::string changed = document;
    return changed.replace(changed.find(part), part.size(), other);
  };
  // A status that is not understood must not become good service.
  for (const std::string& wrong :
       {std::string(), std::string("{}"), std::string("[1]"), with("\"version\": 1", "\"version\": 2"),
        with("\"state\": \"incidents\"", "\"state\": \"delayed\""), with("\"unknownCount\": 0, ", ""),
        with("\"incidents\": [\"1", "\"incidents\": [\"9")})
    EXPECT_EQ(parseStatus(wrong), std::nullopt) << wrong;
}

}  // namespace
}  // namespace linewatch::app
