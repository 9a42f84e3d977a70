#include "notices/notice_update.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch::notices {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Kind = Notice::Kind;

IncidentNews incident(std::uint64_t muid, std::string title, Severity severity = Severity::warning) {
  return {.muid = muid, .title = std::move(title), .summary = {}, .severity = severity};
}

/// The notices as one text each, e.g. "new A: Fire, Delays".
std::vector<std::string> inWords(const std::vector<Notice>& notices) {
  constexpr const char* kKinds[] = {"new", "changed", "running", "summary"};
  std::vector<std::string> words;
  for (const Notice& notice : notices) {
    std::string text = kKinds[static_cast<std::size_t>(notice.kind)];
    for (const Notice::Entry& entry : notice.entries) {
      text += " " + entry.name;
      for (const IncidentNews& news : entry.incidents) text += ":" + news.title;
    }
    words.push_back(std::move(text));
  }
  return words;
}

/// Two subscribed lines, A and B, whose answers come from noon of a Monday on.
class NoticeUpdateTest : public testing::Test {
 protected:
  NoticeUpdateTest() {
    for (const char* const name : {"A", "B"}) {
      rules_.subscriptions.push_back({.line = {"city", name}, .hours = {}});
      news_.push_back({.line = {"city", name}, .name = name, .isKnown = true, .incidents = {}});
    }
  }

  LineNews& lineA() { return news_[0]; }
  LineNews& lineB() { return news_[1]; }
  static Date monday(double hours) { return Date(Seconds(4.0 * 86400 + hours * 3600)); }

  std::vector<std::string> answerAt(double hours) {
    NoticeUpdate result = update(state_, rules_, news_, {.date = monday(hours)});
    state_ = std::move(result.state);
    withdrawn_ = std::move(result.withdrawn);
    return inWords(result.notices);
  }

  NoticeRules rules_;
  NoticeState state_;
  std::vector<LineNews> news_;
  std::vector<std::string> withdrawn_;
};

TEST_F(NoticeUpdateTest, TellsEachPieceOfNewsOnce) {
  lineA().incidents = {incident(1, "Known at the start")};
  EXPECT_THAT(answerAt(12), IsEmpty());
  lineA().incidents.push_back(incident(2, "Fire"));
  EXPECT_THAT(answerAt(12.1), ElementsAre("new A:Fire:Known at the start"));
  lineA().incidents = {incident(3, " fire.")};
  EXPECT_THAT(answerAt(12.2), IsEmpty()) << "only the id and the spelling have changed";
  lineA().incidents = {incident(3, "Fire, no trains")};
  EXPECT_THAT(answerAt(12.3), ElementsAre("changed A:Fire, no trains"));
  lineA().incidents = {incident(3, "Fire")};
  EXPECT_THAT(answerAt(12.4), IsEmpty()) << "this text was told before";
  lineA().incidents.clear();
  EXPECT_THAT(answerAt(12.5), IsEmpty()) << "feeds drop alerts for a moment";
  EXPECT_THAT(answerAt(12.6), ElementsAre("running A"));
  EXPECT_THAT(answerAt(12.7), IsEmpty());
  lineA().incidents = {incident(4, "Fire")};
  EXPECT_THAT(answerAt(13), ElementsAre("new A:Fire")) << "the line was told to run again";
}

TEST_F(NoticeUpdateTest, NeverSaysThatAnUnknownLineRunsAgain) {
  answerAt(12);
  lineA().incidents = {incident(1, "Fire")};
  answerAt(12.1);
  lineA().incidents.clear();
  lineA().isKnown = false;
  EXPECT_THAT(answerAt(12.2), IsEmpty());
  EXPECT_THAT(answerAt(12.9), IsEmpty());
  news_.erase(news_.begin());
  EXPECT_THAT(answerAt(13), IsEmpty()) << "an answer without the line says nothing about it";
  news_.insert(news_.begin(), {.line = {"city", "A"}, .name = "A", .isKnown = true, .incidents = {}});
  answerAt(13.1);
  EXPECT_THAT(answerAt(13.2), ElementsAre("running A"));
}

TEST_F(NoticeUpdateTest, KeepsToSeveritiesMutesAndTheHoursOfTheLine) {
  rules_.subscriptions[0].from = Severity::warning;
  rules_.subscriptions[1].hours = *WeeklyHours::parse("weekdays 17 to 19");
  answerAt(12);
  lineA().incidents = {incident(1, "Lift", Severity::info)};
  lineB().incidents = {incident(2, "Fire")};
  EXPECT_THAT(answerAt(12.1), IsEmpty());
  rules_.mutes = {{.subject = MutedIncident{.muid = 4, .content = 0, .title = {}}, .until = monday(14)}};
  lineA().incidents.push_back(incident(4, "Works"));
  EXPECT_THAT(answerAt(13), IsEmpty());
  lineA().incidents.push_back(incident(5, "Unclear", Severity::unknown));
  EXPECT_THAT(answerAt(13.1), ElementsAre("new A:Unclear"));
  EXPECT_THAT(answerAt(14), ElementsAre("new A:Works:Unclear"));
  rules_.mutes = {{.subject = LineKey{"city", "B"}, .until = monday(18)}};
  EXPECT_THAT(answerAt(17), IsEmpty());
  EXPECT_THAT(answerAt(18), ElementsAre("new B:Fire"));
  lineB().incidents.clear();
  answerAt(18.99);
  EXPECT_THAT(answerAt(19.1), IsEmpty());
  EXPECT_THAT(withdrawn_, ElementsAre("city:B"));
  EXPECT_THAT(answerAt(24 + 17), IsEmpty()) << "that is no news a day later";
}

TEST_F(NoticeUpdateTest, QuietHoursEndWithOneSummary) {
  rules_.quietHours = *WeeklyHours::parse("13 to 15");
  answerAt(12);
  lineB().incidents = {incident(1, "Fire")};
  EXPECT_THAT(answerAt(12.1), ElementsAre("new B:Fire"));
  lineA().incidents = {incident(2, "Strike")};
  lineB().incidents.clear();
  EXPECT_THAT(answerAt(13), IsEmpty());
  EXPECT_THAT(answerAt(14), IsEmpty());
  EXPECT_THAT(answerAt(15), ElementsAre("summary A:Strike B"));
  EXPECT_THAT(withdrawn_, UnorderedElementsAre("city:A", "city:B"));
  EXPECT_THAT(answerAt(15.1), IsEmpty());
}

TEST_F(NoticeUpdateTest, OneNoticeIsForAllLinesOfAnIncident) {
  answerAt(12);
  lineA().incidents = lineB().incidents = {incident(1, "Strike", Severity::severe)};
  const NoticeUpdate result = update(state_, rules_, news_, {.date = monday(13)});
  EXPECT_THAT(inWords(result.notices), ElementsAre("new A:Strike B:Strike"));
  EXPECT_EQ(severityOf(result.notices.front()), Severity::severe);
}

// ---- Random histories against a model that remembers everything ----

/// Random answers of a few lines, and a model that looks through all of them each time.
class RandomHistory {
 public:
  explicit RandomHistory(std::uint32_t seed) : random_(seed) {
    rules_.quietHours = *WeeklyHours::parse("22 to 6");
    const char* const kHours[] = {"always", "weekdays 5 to 9, 17 to 23", "weekends"};
    for (std::uint64_t line = 0; line < 3; ++line) {
      rules_.subscriptions.push_back({.line = {"city", std::to_string(line)},
                                      .hours = *WeeklyHours::parse(kHours[line]),
                                      .from = line == 0 ? Severity::warning : Severity::info});
      lines_.push_back({.line = {"city", std::to_string(line)}, .name = std::to_string(line)});
    }
  }

  void run() {
    for (int answer = 0; answer < 200; ++answer) {
      now_.date += Seconds(60 + static_cast<double>(drawn(7200)));
      change();
      check(update(state_, rules_, lines_, now_));
    }
  }

 private:
  std::uint64_t drawn(std::uint64_t count) { return random_() % count; }

  void change() {
    for (LineNews& line : lines_) {
      line.isKnown = drawn(5) > 0;
      if (drawn(4) == 0) line.incidents.clear();
      if (drawn(3) == 0)
        line.incidents.push_back({.muid = drawn(1000),
                                  .title = "Title " + std::to_string(drawn(4)),
                                  .summary = {},
                                  .severity = static_cast<Severity>(drawn(4))});
      for (IncidentNews& news : line.incidents) news.muid = drawn(4) == 0 ? drawn(1000) : news.muid;
    }
  }

  void check(NoticeUpdate result) {
    std::map<LineKey, const Notice::Entry*> told;
    for (const Notice& notice : result.notices) {
      for (const Notice::Entry& entry : notice.entries)
        EXPECT_TRUE(told.emplace(entry.line, &entry).second) << "told twice in one answer";
    }
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      LineNews answer = lines_[i];
      if (!answer.isKnown) answer.incidents.clear();
      const auto entry = told.find(answer.line);
      check(answer, rules_.subscriptions[i], entry == told.end() ? nullptr : entry->second);
    }
    state_ = std::move(result.state);
  }

  /// `told` is null when the line is not told of.
  void check(const LineNews& line, const Subscription& subscription, const Notice::Entry* told) {
    Knowledge& known = knowledge_[line.line];
    if (!line.isKnown) {
      EXPECT_FALSE(told) << "nothing is known of line " << line.name;
      return;
    }
    const bool isFirst = known.answers.empty();
    known.answers.push_back({now_.date, line.incidents});
    forget(known);
    bool hasNews = false;
    for (const IncidentNews& news : line.incidents)
      hasNews = hasNews || (news.severity >= subscription.from && !known.contents.contains(contentOf(news)));
    if (hasNews) known.ended.reset();
    const bool mayTell = subscription.hours.contains(now_) && !rules_.quietHours->contains(now_);
    const bool mustTell = !isFirst && mayTell && (hasNews || known.ended);
    EXPECT_EQ(told != nullptr, mustTell) << "line " << line.name << " at " << secondsOf(now_.date);
    if (told) {
      EXPECT_EQ(told->incidents.empty(), !hasNews);
    }
    if (!isFirst && !mustTell) return;
    known.ended.reset();
    for (const IncidentNews& news : line.incidents) {
      if (news.severity >= subscription.from) known.contents.emplace(contentOf(news), news.muid);
    }
  }

  struct Answer {
    Date date;
    std::vector<IncidentNews> incidents;
  };

  /// What the user knows of a line, and all its answers.
  struct Knowledge {
    std::vector<Answer> answers;
    std::map<std::uint64_t, std::uint64_t> contents;  // with the id
    std::optional<Date> ended;
  };

  /// The date of the first of the last answers that `isLacking` something; absent if the last one is not.
  template <class Predicate>
  static std::optional<Date> since(const Knowledge& known, Predicate isLacking) {
    std::optional<Date> date;
    for (auto answer = known.answers.rbegin(); answer != known.answers.rend() && isLacking(*answer); ++answer)
      date = answer->date;
    return date;
  }

  void forget(Knowledge& known) {
    const bool isClear = known.answers.back().incidents.empty();
    for (auto& [content, muid] : known.contents) {
      const auto& incidents = known.answers.back().incidents;
      const auto same = std::ranges::find(incidents, content, contentOf);
      if (std::ranges::find(incidents, muid, &IncidentNews::muid) == incidents.end() &&
          same != incidents.end())
        muid = same->muid;
    }
    std::erase_if(known.contents, [&](const auto& content) {
      const auto gone = since(known, [&](const Answer& answer) {
        return std::ranges::none_of(answer.incidents, [&](const IncidentNews& news) {
          return news.muid == content.second || contentOf(news) == content.first;
        });
      });
      return !isClear && gone && now_.date - *gone > kSameNews;
    });
    const auto clear = since(known, [](const Answer& answer) { return answer.incidents.empty(); });
    if (clear && now_.date - *clear >= kSettled && !known.contents.empty()) {
      known.contents.clear();
      known.ended = clear;
    }
    if (known.ended && now_.date - *known.ended > kEndIsNews) known.ended.reset();
  }

  std::mt19937 random_;
  Moment now_{.date = Date(Seconds(1e9))};
  NoticeRules rules_;
  NoticeState state_;
  std::vector<LineNews> lines_;
  std::map<LineKey, Knowledge> knowledge_;
};

TEST(NoticeUpdateRandomTest, TellsEverythingOnceAndOnlyWithinTheHours) {
  const char* const given = std::getenv("LINEWATCH_SEED");
  const std::uint32_t seed = given ? static_cast<std::uint32_t>(std::stoul(given)) : std::random_device()();
  for (std::uint32_t history = 0; history < 60 && !testing::Test::HasFailure(); ++history) {
    SCOPED_TRACE("LINEWATCH_SEED=" + std::to_string(seed + history));
    RandomHistory(seed + history).run();
  }
}

}  // namespace
}  // namespace linewatch::notices
