#include "notices/notice_update.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <span>
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
  constexpr const char* kKinds[] = {"new", "changed", "over", "summary"};
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

  std::vector<std::string> answerAt(double hours, bool canTell = true) {
    NoticeUpdate result = update(state_, rules_, news_, {.date = monday(hours)}, canTell);
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
  EXPECT_THAT(answerAt(12.6), ElementsAre("over A"));
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
  EXPECT_THAT(answerAt(13.2), ElementsAre("over A"));
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

TEST_F(NoticeUpdateTest, TellsNeitherCountdownsNorFlippingTexts) {
  const struct {
    double minutes;
    const char* title;
    std::vector<std::string> told;
  } kAnswers[] = {{0, "10 minutes delay", {"new A:10 minutes delay"}},
                  {2, "9 minutes delay", {}},
                  {28, "60 minutes delay", {}},
                  {30, "60 minutes delay", {"changed A:60 minutes delay"}},
                  {32, "Resolved", {"changed A:Resolved"}},
                  {34, "60 minutes delay", {}},
                  {36, "Resolved", {}},
                  {38, "60 minutes delay", {}},
                  {66, "60 minutes delay", {}},
                  {68, "60 minutes delay", {"changed A:60 minutes delay"}},
                  {70, "Fire", {"changed A:Fire"}},
                  {98, "Fire", {}},
                  {99, "60 minutes delay", {}},
                  {100, "Fire", {}},
                  {135, "60 minutes delay", {"changed A:60 minutes delay"}}};
  answerAt(12);
  for (const auto& [minutes, title, told] : kAnswers) {
    lineA().incidents = {incident(1, title)};
    EXPECT_EQ(answerAt(13 + minutes / 60), told) << minutes;
    EXPECT_LE(state_.at(lineA().line).told.size(), 3U);
  }
  lineA().incidents.push_back(incident(2, "61 minutes delay"));
  EXPECT_THAT(answerAt(16), ElementsAre("new A:61 minutes delay:60 minutes delay")) << "of another incident";
}

TEST_F(NoticeUpdateTest, RecognizesCountdownsWhoseIdChangesWithTheNumber) {
  answerAt(12);
  for (std::uint64_t minute = 0; minute <= 70; minute += 2) {
    lineA().incidents = {incident(minute, std::to_string(100 - minute) + " minutes delay")};
    const auto told = answerAt(13 + static_cast<double>(minute) / 60);
    EXPECT_EQ(told.size(), minute % 30 == 0 ? 1U : 0U) << minute;
  }
}

TEST_F(NoticeUpdateTest, TellsTheEndOfSevereIncidentsWhenMilderOnesStay) {
  rules_.subscriptions[0].from = Severity::severe;
  answerAt(2);
  lineA().incidents = {incident(1, "Fire", Severity::severe), incident(2, "Lift")};
  EXPECT_THAT(answerAt(3), ElementsAre("new A:Fire"));
  lineA().incidents.erase(lineA().incidents.begin());
  EXPECT_THAT(answerAt(4), IsEmpty());
  const NoticeUpdate result = update(state_, rules_, news_, {.date = monday(5)});
  EXPECT_THAT(inWords(result.notices), ElementsAre("over A:Lift"));
  EXPECT_EQ(severityOf(result.notices.front()), Severity::info);
  EXPECT_THAT(answerAt(5), ElementsAre("over A:Lift"));
  lineA().incidents.clear();
  EXPECT_THAT(answerAt(6), IsEmpty());
  EXPECT_THAT(answerAt(7), IsEmpty());
}

TEST_F(NoticeUpdateTest, TellsLaterWhatCannotBeToldNow) {
  EXPECT_THAT(answerAt(12, false), IsEmpty());
  lineA().incidents = {incident(1, "Fire")};
  EXPECT_THAT(answerAt(13, false), IsEmpty());
  EXPECT_THAT(answerAt(14), ElementsAre("new A:Fire"));
  lineA().incidents.clear();
  answerAt(15, false);
  EXPECT_THAT(answerAt(16, false), IsEmpty());
  EXPECT_THAT(answerAt(17), ElementsAre("over A"));
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
  lineA().incidents = {incident(2, "Lift")};
  lineB().incidents.clear();
  EXPECT_THAT(answerAt(13), ElementsAre("new A:Lift"));
  lineA().incidents.push_back(incident(1, "Strike"));
  lineB().incidents.push_back(incident(1, "Strike"));
  EXPECT_THAT(answerAt(14), ElementsAre("new A:Strike B:Strike")) << "although line A has another one";
  EXPECT_THAT(withdrawn_, ElementsAre("city:B"));
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
      now_.date += Seconds(60 + static_cast<double>(drawn(drawn(2) == 0 ? 600 : 7200)));
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
                                  .title = kTitles[drawn(std::size(kTitles))],
                                  .summary = {},
                                  .severity = static_cast<Severity>(drawn(4))});
      for (IncidentNews& news : line.incidents) {
        if (drawn(4) == 0) news.muid = drawn(1000);
        if (drawn(4) == 0) news.title = kTitles[drawn(std::size(kTitles))];
      }
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
    forgetReplaced(known);
    known.answers.push_back({now_.date, line.incidents, !hasWanted(line.incidents, subscription)});
    forgetGone(known);
    std::vector<Known> added;
    std::set<std::uint64_t> contents;
    for (const IncidentNews& news : line.incidents) {
      const bool isFirstOfText = contents.insert(contentOf(news)).second;
      if (news.severity >= subscription.from && isFirstOfText && (isFirst || isNews(known, news)))
        added.push_back({contentOf(news), gistOf(news), news.muid, now_.date});
    }
    const bool hasNews = !added.empty();
    if (hasNews) known.ended.reset();
    const bool mayTell = subscription.hours.contains(now_) && !rules_.quietHours->contains(now_);
    const bool mustTell = !isFirst && mayTell && (hasNews || known.ended);
    EXPECT_EQ(told != nullptr, mustTell) << "line " << line.name << " at " << secondsOf(now_.date);
    if (told) {
      EXPECT_EQ(told->isOver, !hasNews);
    }
    if (!isFirst && !mustTell) return;
    known.ended.reset();
    for (const Known& one : added) {
      std::erase_if(known.contents, [&](const Known& other) { return other.content == one.content; });
      known.contents.push_back(one);
    }
  }

  struct Answer {
    Date date;
    std::vector<IncidentNews> incidents;
    bool isClear;

    bool hasId(std::uint64_t muid) const {
      return std::ranges::find(incidents, muid, &IncidentNews::muid) != incidents.end();
    }
    bool hasText(std::uint64_t content) const {
      return std::ranges::find(incidents, content, contentOf) != incidents.end();
    }
  };

  struct Known {
    std::uint64_t content;
    std::uint64_t gist;
    std::uint64_t muid;
    Date told;
    /// When the incident got this id together with other numbers, and since when it had another text then.
    Date renamed = {};
    std::optional<Date> replaced = {};
  };

  /// What the user knows of a line, and all its answers.
  struct Knowledge {
    std::vector<Answer> answers;
    std::vector<Known> contents;  // in the order in which they were told
    std::optional<Date> ended;
  };

  static bool hasWanted(const std::vector<IncidentNews>& incidents, const Subscription& subscription) {
    return std::ranges::any_of(incidents,
                               [&](const IncidentNews& news) { return news.severity >= subscription.from; });
  }

  /// The date of the first of the last answers that lack something; absent if the last one does not.
  template <class Predicate>
  static std::optional<Date> since(std::span<const Answer> answers, Predicate isLacking) {
    std::optional<Date> date;
    for (auto answer = answers.rbegin(); answer != answers.rend() && isLacking(*answer); ++answer)
      date = answer->date;
    return date;
  }
  static std::optional<Date> goneSince(std::span<const Answer> answers, const Known& one) {
    return since(answers, [&](const Answer& answer) {
      return !answer.hasId(one.muid) && !answer.hasText(one.content);
    });
  }
  /// Since when the incident of the text has had other texts.
  static std::optional<Date> replacedSince(std::span<const Answer> answers, const Known& one) {
    std::optional<Date> date;
    for (auto answer = answers.rbegin(); answer != answers.rend(); ++answer) {
      if (answer->hasText(one.content)) return date;
      if (answer->date < one.renamed) return one.replaced ? one.replaced : date;
      if (answer->hasId(one.muid)) date = answer->date;
    }
    return date;
  }
  bool isReplaced(const Knowledge& known, const Known& one) const {
    const auto date = replacedSince(known.answers, one);
    return date && now_.date - *date >= kSameText;
  }

  static const Known* lastOf(const std::vector<Known>& contents, std::uint64_t muid) {
    const Known* last = nullptr;
    for (const Known& one : contents) last = one.muid == muid ? &one : last;
    return last;
  }

  bool isNews(const Knowledge& known, const IncidentNews& news) const {
    const bool isSame =
        std::ranges::find(known.contents, contentOf(news), &Known::content) != known.contents.end();
    const Known* const last = lastOf(known.contents, news.muid);
    if (isSame) return last && last->content != contentOf(news) && isReplaced(known, *last);
    return !last || last->gist != gistOf(news) || now_.date - last->told >= kSameText;
  }

  /// Before an answer: forgets texts that later ones replaced.
  void forgetReplaced(Knowledge& known) const {
    const std::vector<Known> before = known.contents;
    std::erase_if(known.contents, [&](const Known& one) {
      return lastOf(before, one.muid)->content != one.content && isReplaced(known, one);
    });
  }

  /// Follows incidents whose id and numbers have changed together in the last answer.
  void rename(Knowledge& known, std::span<const Answer> before) const {
    const Answer& answer = known.answers.back();
    for (const Known& one : known.contents) {
      if (goneSince(before, one) || !goneSince(known.answers, one)) continue;
      const auto renamed = std::ranges::find_if(answer.incidents, [&](const IncidentNews& news) {
        return gistOf(news) == one.gist && !lastOf(known.contents, news.muid) &&
               std::ranges::find(known.contents, contentOf(news), &Known::content) == known.contents.end();
      });
      if (renamed == answer.incidents.end()) continue;
      const std::uint64_t id = one.muid;
      for (Known& text : known.contents) {
        if (text.muid != id) continue;
        text.replaced = replacedSince(before, text);
        text.renamed = now_.date;
        text.muid = renamed->muid;
      }
    }
  }

  void forgetGone(Knowledge& known) {
    const Answer& answer = known.answers.back();
    // Those that return after a long time.
    const std::span<const Answer> before(known.answers.data(), known.answers.size() - 1);
    std::erase_if(known.contents, [&](const Known& one) {
      const auto gone = goneSince(before, one);
      return gone && now_.date - *gone >= kSameNews && !goneSince(known.answers, one);
    });
    rename(known, before);
    for (Known& one : known.contents) {
      const auto same = std::ranges::find(answer.incidents, one.content, contentOf);
      if (!answer.hasId(one.muid) && same != answer.incidents.end()) one.muid = same->muid;
    }
    const bool isPresent =
        std::ranges::any_of(known.contents, [&](const Known& one) { return !goneSince(known.answers, one); });
    std::erase_if(known.contents, [&](const Known& one) {
      const auto gone = goneSince(known.answers, one);
      return isPresent && gone && now_.date - *gone >= kSameNews;
    });
    const auto clear = since(known.answers, [](const Answer& other) { return other.isClear; });
    if (clear && now_.date - *clear >= kSettled && !known.contents.empty()) {
      known.contents.clear();
      known.ended = clear;
    }
    if (known.ended && now_.date - *known.ended > kEndIsNews) known.ended.reset();
  }

  static constexpr const char* kTitles[] = {"Fire", "Strike", "Late by 5", "Late by 10", "Late by 20"};
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
  for (std::uint32_t history = 0; history < 40 && !testing::Test::HasFailure(); ++history) {
    SCOPED_TRACE("LINEWATCH_SEED=" + std::to_string(seed + history));
    RandomHistory(seed + history).run();
  }
}

}  // namespace
}  // namespace linewatch::notices
