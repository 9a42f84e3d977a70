#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/commands.h"
#include "app/rider_texts.h"
#include "app/terminal_width.h"
#include "platform/localization.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

using Phrase = RiderTexts::Phrase;

std::string faintLines(const std::string& text, const TerminalStyle& style) {
  std::string lines;
  for (const std::string& part : wrapped(text, style.columns)) lines += terminalFaint(part, style) + "\n";
  return lines;
}

/// When the alerts were written, or else received.
std::string alertsAge(const RiderTexts& texts, const FeedState& state, Date now) {
  if (state.written)
    return texts("Alerts", {texts.dateAndTime(*state.written, now), texts.ago(now - *state.written)});
  const auto age = ageOf(state, now);
  return age ? texts("AlertsReceived", {texts.ago(*age)}) : texts("AlertsOfUnknownAge");
}

/// The state of a feed without its name, e.g. "No alerts so far: connection refused".
std::string stateNote(const RiderTexts& texts, const FeedState& state, Date now) {
  using Kind = FeedState::Kind;
  const std::string since = state.since ? texts.ago(now - *state.since) : "";
  const Phrase alerts{alertsAge(texts, state, now)};
  switch (state.kind) {
    case Kind::fresh:
      return alerts.text;
    case Kind::stale:
      return texts("NotRenewed", {alerts});
    case Kind::kept:
      return hasOldHeader(state, now) ? texts("KeptOld", {alerts, since, reasonOf(state, texts)})
                                      : texts("Kept", {since, reasonOf(state, texts)});
    case Kind::unreachable:
      return since.empty() ? texts("NoAlertsYet", {reasonOf(state, texts)})
                           : texts("NoAlertsSince", {since, reasonOf(state, texts)});
    case Kind::outdated:
      return texts("TooOld", {alerts});
    case Kind::notMatching:
    case Kind::incomplete:
      break;
  }
  return texts("AlertsNotShown", {reasonOf(state, texts)});
}

std::string unknownLines(Session& session) {
  const std::vector<UnknownLine> lines = session.platform().feeds().unknownLines();
  std::vector<std::string_view> names;
  for (const UnknownLine& line : lines) names.emplace_back(line.name);
  return session.platform().localization().joinCommaDelimited(names);
}

/// Says which feeds of favourites were removed and, if none is left, how to add one.
std::vector<std::string> removedFeedNotes(Session& session) {
  TransitFeeds& feeds = session.platform().feeds();
  const auto removed = removedFeedsOf(feeds.unknownLines(), feeds.feeds());
  if (removed.empty()) return {};
  const RiderTexts& texts = session.texts();
  std::vector<std::string> notes{
      texts.ofWindows("FeedsRemoved", {std::uint64_t{removed.size()}, texts.list(removed)})};
  if (feeds.feeds().empty()) notes.push_back(noFeedLeft(texts));
  return notes;
}

}  // namespace

std::string noFeedLeft(const RiderTexts& texts) { return texts("NoFeedLeft", {"linewatch feed add CITY"}); }

std::string reasonOf(const FeedState& state, const RiderTexts& texts) {
  if (!state.error) return {};
  const std::string sentence = sentenceOf(*state.error);
  const std::string name = "feed " + state.feed + ": ";
  const std::string reason = sentence.starts_with(name) ? sentence.substr(name.size()) : sentence;
  return texts.failure(failureCodeOf(*state.error), reason);
}

std::string sampleCityNote(Session& session, const TerminalStyle& style) {
  if (!session.platform().showsSampleCity()) return {};
  return faintLines(session.texts()("SampleCity", {"linewatch feed add CITY"}), style);
}

std::string dataNote(Session& session, const TerminalStyle& style) {
  const RiderTexts& texts = session.texts();
  const auto line = [&style](const std::string& text) { return faintLines(text, style); };
  const Date now = session.platform().mainLoop().now();
  const bool isOnlyFeed = session.platform().feeds().feeds().size() == 1;
  std::string note = sampleCityNote(session, style);
  if (note.empty()) {
    for (const FeedState& state : session.platform().feeds().states()) {
      const std::string text = stateNote(texts, state, now);
      note += line(isOnlyFeed ? text : texts("OfFeed", {state.feed, Phrase{text}}));
    }
  }
  for (const std::string& text : removedFeedNotes(session)) note += line(text);
  const std::string unknown = unknownLines(session);
  return unknown.empty() ? note : note + line(texts("UnknownLines", {unknown}));
}

}  // namespace linewatch::app
