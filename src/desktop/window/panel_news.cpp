#include "desktop/window/panel_news.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

/// Longer lists of names would fill the header.
constexpr std::size_t kMostNamed = 6;

/// The keys of the texts for one state: with and without an age.
struct FeedSentence {
  FeedState::Kind kind;
  std::string_view dated, undated;
};

/// In the order of importance: feeds with unknown lines first.
constexpr std::array kSentences = {
    FeedSentence{FeedState::Kind::unreachable, "FeedUnreachable", "FeedNeverLoaded"},
    FeedSentence{FeedState::Kind::notMatching, "FeedNotMatching", "FeedNotMatching"},
    FeedSentence{FeedState::Kind::outdated, "FeedOutdated", "FeedOfUnknownAge"},
    FeedSentence{FeedState::Kind::incomplete, "FeedIncomplete", "FeedIncomplete"},
    FeedSentence{FeedState::Kind::kept, "FeedKept", "FeedNeverLoaded"},
    FeedSentence{FeedState::Kind::stale, "FeedStale", "FeedOfUnknownAge"},
};

auto rankOf(const FeedState& state) { return std::ranges::find(kSentences, state.kind, &FeedSentence::kind); }

/// The feeds that are not up to date, the most important first.
std::vector<FeedState> feedsToReport(std::vector<FeedState> states) {
  std::erase_if(states, [](const FeedState& state) { return rankOf(state) == kSentences.end(); });
  std::ranges::stable_sort(states, {}, rankOf);
  return states;
}

QString feedSentence(const FeedState& state, const WindowTexts& texts, Date now) {
  const FeedSentence& sentence = *rankOf(state);
  if (!state.since) return texts(sentence.undated, {state.feed});
  if (state.kind == FeedState::Kind::kept && hasOldHeader(state, now))
    return texts("FeedKeptStale", {state.feed, agoInWords(*state.since, texts, now).toStdString(),
                                   agoInWords(*state.written, texts, now).toStdString()});
  return texts(sentence.dated, {state.feed, agoInWords(*state.since, texts, now).toStdString()});
}

QString withReason(const QString& sentence, const std::optional<Error>& error, const WindowTexts& texts) {
  if (!error) return sentence;
  return texts("BecauseOf", {sentence.toStdString(), texts.reason(*error)});
}

/// For example "5, 7 and 12", or "1, 2, 3, 4, 5 and 35 more".
std::string listOf(const std::vector<std::string>& all, const WindowTexts& texts) {
  const std::size_t named = all.size() > kMostNamed ? kMostNamed - 1 : all.size();
  std::vector<std::string_view> names(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(named));
  std::string last = std::string(names.back());
  if (named < all.size()) {
    last = texts("MoreNames", {std::uint64_t{all.size() - named}}).toStdString();
  } else {
    names.pop_back();
  }
  if (names.empty()) return last;
  return texts("ListEnd", {texts.joined(names), last}).toStdString();
}

/// The names of the unknown lines. Leaves out lines of removed feeds: their names are not known.
std::vector<std::string> namesOfUnknownLines(const FeedNews& news) {
  std::vector<std::string> names;
  for (const UnknownLine& line : news.unknownLines) {
    if (std::ranges::find(news.removedFeeds, line.feed) == news.removedFeeds.end())
      names.push_back(line.name);
  }
  return names;
}

QString countedList(std::string_view name, const std::vector<std::string>& names, const WindowTexts& texts) {
  return texts(name, {std::uint64_t{names.size()}, listOf(names, texts)});
}

}  // namespace

QString agoInWords(Date date, const WindowTexts& texts, Date now) {
  constexpr double kMinute = 60, kHour = 3600, kDay = 86400;
  const double age = (now - date).count();
  const auto count = [&](std::string_view name, double unit) {
    return texts(name, {static_cast<std::uint64_t>(age / unit)});
  };
  if (age >= 2 * kDay) return count("DaysAgo", kDay);
  if (age >= 2 * kHour) return count("HoursAgo", kHour);
  return age >= kMinute ? count("MinutesAgo", kMinute) : texts("JustNow");
}

QString feedStateInWords(const FeedState& state, const WindowTexts& texts, Date now) {
  if (state.kind != FeedState::Kind::fresh)
    return withReason(feedSentence(state, texts, now), state.error, texts);
  const std::optional<Date>& dated = state.written ? state.written : state.received;
  if (!dated) return texts("AlertsOfUnknownAge");
  const std::string ago = agoInWords(*dated, texts, now).toStdString();
  return texts(state.written ? "FeedFresh" : "FeedFreshUndated", {ago});
}

PanelNews panelNews(const FeedNews& news, const WindowTexts& texts, Date now) {
  PanelNews result;
  QStringList sentences, details;
  const std::vector<FeedState> feeds = feedsToReport(news.states);
  for (const FeedState& feed : feeds) {
    details << withReason(feedSentence(feed, texts, now), feed.error, texts);
    result.hasAge |= feed.since.has_value();
  }
  if (!feeds.empty()) sentences << feedSentence(feeds.front(), texts, now);
  if (feeds.size() > 1) sentences << texts("MoreFeeds", {std::uint64_t{feeds.size() - 1}});
  const std::vector<std::string> unknown = namesOfUnknownLines(news);
  result.needsCity = !news.removedFeeds.empty() && feeds.empty() && unknown.empty();
  if (!news.removedFeeds.empty()) {
    sentences << countedList("FeedsRemoved", news.removedFeeds, texts);
    details << sentences.back();
  } else if (feeds.empty() && news.error) {
    sentences << texts("ListNotLoaded");
    details << withReason(sentences.back(), news.error, texts);
  }
  if (!unknown.empty()) {
    sentences << countedList("NoNewsOfLines", unknown, texts);
    details << sentences.back();
  }
  result.text = sentences.join(QLatin1Char(' '));
  result.details = details.join(QLatin1Char(' '));
  return result;
}

}  // namespace linewatch::desktop
