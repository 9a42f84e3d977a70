#include <algorithm>
#include <filesystem>
#include <string_view>

#include "app/commands.h"
#include "app/local_time.h"
#include "feeds/text/utf8.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

/// Bytes.
constexpr std::size_t kLongestName = 100;

// The location as an absolute path or URL, since the feed is later read from other working directories.
std::string absoluteLocation(const std::string& location) {
  if (location.find("://") != std::string::npos) return location;
  std::error_code error;
  const auto path = std::filesystem::absolute(location, error);
  return error ? location : path.lexically_normal().string();
}

std::optional<Error> nameError(const std::string& name) {
  const std::string feed = "feed \"" + name.substr(0, kLongestName) + "\"";
  const bool isPlain = terminalLine(name) == name && isValidUtf8(name);
  if (name.empty() || name.size() > kLongestName || !isPlain || name.find(':') != std::string::npos)
    return failure(feed, "", "a name is one line of text without a colon, of 1 to 100 bytes");
  if (name == kSampleFeedName || name == kGivenFeedName)
    return failure(feed, "", "the program uses this name itself; choose another one");
  return std::nullopt;
}

std::string lineCount(std::size_t count) { return std::to_string(count) + (count == 1 ? " line" : " lines"); }

/// A feed's state in one line.
std::string stateInWords(const FeedState& state) {
  using Kind = FeedState::Kind;
  const std::string since = state.since ? localTime(*state.since) : "";
  const std::string why = state.error ? terminalLine(sentenceOf(*state.error)) : "";
  switch (state.kind) {
    case Kind::fresh:
      return "fresh";
    case Kind::stale:
      return "stale: its alerts are of " + since;
    case Kind::kept:
      return "kept: the alerts of " + since + " serve for now; " + why;
    case Kind::unreachable:
    case Kind::outdated:
    case Kind::notMatching:
    case Kind::incomplete:
      break;
  }
  return "its lines are unknown: " + why;
}

Report listFeeds(const SavedState& saved, TransitFeeds& shown, Date now) {
  const auto feeds = saved.feeds().list();
  if (!feeds) return refused(feeds.error());
  if (feeds->empty()) {
    if (const auto lost = shown.follow()) return refused(*lost);
    return Report::of(
        "No feeds yet, so the sample city is shown. Add one: linewatch feed add NAME --gtfs G --alerts A\n");
  }
  const auto states = shown.check(now);
  if (!states) return refused(states.error());
  Report report;
  for (const StoredFeed& feed : *feeds) {
    const auto state = std::ranges::find(*states, feed.name, &FeedState::feed);
    report.output += feed.name + "\n  timetable  " + terminalLine(feed.gtfs) + "\n  alerts     " +
                     terminalLine(feed.alerts) + "\n";
    if (state != states->end()) report.output += "  state      " + stateInWords(*state) + "\n";
  }
  return report;
}

Report refusedNameInUse(const std::string& name) {
  return refused(failure("feed " + name, "", "a feed of that name exists; remove it first"));
}

Report addFeed(FeedDocuments& documents, const SavedState& saved, const FeedCommand& command) {
  if (const auto fault = nameError(command.name)) return refused(*fault);
  const StoredFeed feed{command.name, absoluteLocation(command.gtfs), absoluteLocation(command.alerts)};
  const auto known = saved.feeds().list();
  if (!known) return refused(known.error());
  if (std::ranges::find(*known, feed.name, &StoredFeed::name) != known->end())
    return refusedNameInUse(feed.name);
  // A feed that cannot be read is not added: the user is here to correct the mistake.
  saved.feedCache()->holdBack();
  const auto lines = documents.lineIndexOf(feed);
  if (!lines) return refused(lines.error());
  const auto alerts = documents.alertsOf(feed, {});
  if (alerts.failure) return refused(*alerts.failure);
  const auto added = saved.feeds().add(feed);
  if (!added) return refused(added.error());
  if (!*added) return refusedNameInUse(feed.name);
  saved.feedCache()->writeHeldBack();
  const FeedState state = stateOfFeed(feed, *lines, alerts, documents.now());
  return Report::of("Added " + feed.name + " with " + lineCount((*lines)->routes().size()) + "\n" +
                    (state.kind == FeedState::Kind::fresh ? "" : "Its state: " + stateInWords(state) + "\n"));
}

Report removeFeed(const SavedState& saved, const std::string& name) {
  const auto removed = saved.feeds().remove(name);
  if (!removed) return refused(removed.error());
  if (!*removed) return refused(failure("feed \"" + name + "\"", "", "there is no feed of that name"));
  saved.feedCache()->remove(name);
  return Report::of("Removed " + name + "; its favourites are kept in case it comes back\n");
}

}  // namespace

Report feed(Session& session, const FeedCommand& command) {
  const SavedState* const saved = session.platform().saved();
  if (!saved) return refused(failure("feed", "", "a run without saved state has no feeds to list or change"));
  switch (command.action) {
    case FeedCommand::Action::add:
      return addFeed(session.platform().documents(), *saved, command);
    case FeedCommand::Action::remove:
      return removeFeed(*saved, command.name);
    case FeedCommand::Action::list:
      break;
  }
  return listFeeds(*saved, session.platform().feeds(), session.platform().mainLoop().now());
}

}  // namespace linewatch::app
