#include <string_view>
#include <utility>
#include <vector>

#include "app/commands.h"
#include "app/local_time.h"
#include "machine/terminal_line.h"
#include "platform/localization.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

std::string alertsAge(const FeedState& state, Date now) {
  if (!state.written) {
    const auto age = ageOf(state, now);
    return age ? "received " + durationInWords(*age) + " ago; the feed states no time" : "of unknown age";
  }
  return "of " + localTime(*state.written) + " (" + durationInWords(now - *state.written) + " old)";
}

/// The state of a feed without its name, e.g. "no alerts for 20 minutes: alerts: connection refused".
std::string stateNote(const FeedState& state, Date now) {
  using Kind = FeedState::Kind;
  const std::string duration = state.since ? durationInWords(now - *state.since) : "";
  switch (state.kind) {
    case Kind::fresh:
      return "Alerts " + alertsAge(state, now);
    case Kind::stale:
      return "Alerts " + alertsAge(state, now) + "; the feed has not been renewed since";
    case Kind::kept:
      return "Alerts " + (hasOldHeader(state, now) ? alertsAge(state, now) + ", " : "") + "received " +
             duration + " ago, because the last update failed: " + reasonOf(state);
    case Kind::unreachable:
      return (duration.empty() ? "No alerts so far: " : "No alerts for " + duration + ": ") + reasonOf(state);
    case Kind::outdated:
      return "Alerts " + alertsAge(state, now) + ", too old to be shown";
    case Kind::notMatching:
    case Kind::incomplete:
      break;
  }
  return "Alerts not shown: " + reasonOf(state);
}

std::string unknownLines(Session& session) {
  const std::vector<UnknownLine> lines = session.platform().feeds().unknownLines();
  std::vector<std::string_view> names;
  for (const UnknownLine& line : lines) names.emplace_back(line.name);
  return session.platform().localization().joinCommaDelimited(names);
}

}  // namespace

std::string reasonOf(const FeedState& state) {
  if (!state.error) return {};
  std::string sentence = sentenceOf(*state.error);
  const std::string name = "feed " + state.feed + ": ";
  return sentence.starts_with(name) ? sentence.substr(name.size()) : sentence;
}

std::string dataNote(Session& session, const TerminalStyle& style) {
  const auto line = [&style](const std::string& text) {
    return terminalFaint(terminalLine(text), style) + "\n";
  };
  const Date now = session.platform().mainLoop().now();
  const bool isOnlyFeed = session.platform().feeds().feeds().size() == 1;
  std::string note;
  if (session.platform().showsSampleCity()) {
    note = line("This is a made-up city. Yours: linewatch feed add NAME --gtfs G --alerts A");
  } else {
    for (const FeedState& state : session.platform().feeds().states()) {
      const std::string name = isOnlyFeed ? "" : state.feed + ": ";
      note += line(name + stateNote(state, now));
    }
  }
  const std::string unknown = unknownLines(session);
  return unknown.empty() ? note : note + line("Unknown lines: " + unknown);
}

}  // namespace linewatch::app
