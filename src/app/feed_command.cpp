#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/commands.h"
#include "app/feed_sources.h"
#include "app/rider_texts.h"
#include "app/terminal_text.h"
#include "feeds/alerts/alert_period.h"
#include "feeds/alerts/distinct_incidents.h"
#include "feeds/http/redacted.h"
#include "feeds/text/utf8.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"
#include "shared/shell_words.h"

namespace linewatch::app {

namespace {

/// Bytes.
constexpr std::size_t kLongestName = 100;

/// The location as an absolute path or URL, because the feed is later read from other working directories.
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

using Phrase = RiderTexts::Phrase;

Phrase counted(const RiderTexts& texts, const SharedLineIndex& lines) {
  return {texts("Lines", {lines->routes().size()})};
}

/// A feed's state in one line.
std::string stateInWords(const RiderTexts& texts, const FeedState& state, Date now) {
  using Kind = FeedState::Kind;
  const std::string since = state.since ? texts.ago(now - *state.since) : "";
  switch (state.kind) {
    case Kind::fresh:
      return texts("StateFresh");
    case Kind::stale:
      return texts("StateStale", {since});
    case Kind::kept:
      return hasOldHeader(state, now)
                 ? texts("StateKeptOld", {since, texts.ago(now - *state.written), reasonOf(state, texts)})
                 : texts("StateKept", {since, reasonOf(state, texts)});
    case Kind::unreachable:
      if (!since.empty()) return texts("StateUnknownSince", {since, reasonOf(state, texts)});
      break;
    case Kind::outdated:
    case Kind::notMatching:
    case Kind::incomplete:
      break;
  }
  return texts("StateUnknown", {reasonOf(state, texts)});
}

/// How the key is sent and where it comes from, without the key.
std::string keysInWords(const RiderTexts& texts, const FeedKeys& keys) {
  std::vector<std::string> words;
  for (const FeedKeys::Field& field : keys.headers) words.push_back(texts("KeyHeader", {field.name}));
  for (const FeedKeys::Field& field : keys.query) words.push_back(texts("KeyParameter", {field.name}));
  const auto command = shellWords(keys.command);
  if (command && !command->empty()) words.push_back(texts("KeyCommand", {command->front()}));
  return texts.list(words);
}

/// Lines below a feed: the name of a document, then its locations and key.
class SourceLines {
 public:
  explicit SourceLines(const RiderTexts& texts) : texts_(texts) {
    for (const char* name : {"Timetable", "AlertsDocument"})
      column_ = std::max(column_, terminalWidth(indented(kIndent, name)));
    column_ = std::max(column_, terminalWidth(indented(kKeyIndent, "Key")));
  }

  std::string of(const char* document, const FeedSource& source) const {
    std::string lines;
    for (const std::string& location : source.locations)
      lines += line(indented(kIndent, document), terminalLine(redacted(location)));
    if (source.keys.isEmpty()) return lines;
    return lines + line(indented(kKeyIndent, "Key"), keysInWords(texts_, source.keys));
  }

 private:
  static constexpr std::size_t kIndent = 2, kKeyIndent = 4;

  std::string indented(std::size_t indent, const char* name) const {
    return std::string(indent, ' ') + texts_(name);
  }
  std::string line(const std::string& label, const std::string& text) const {
    return label + std::string(column_ + 2 - terminalWidth(label), ' ') + text + "\n";
  }

  const RiderTexts& texts_;
  std::size_t column_ = 0;
};

Report listFeeds(const RiderTexts& texts, const SavedState& saved, TransitFeeds& shown, Date now) {
  const auto feeds = saved.feeds().list();
  if (!feeds) return refused(feeds.error());
  if (feeds->empty()) {
    if (const auto lost = shown.follow()) return refused(*lost);
    return Report::of(texts("NoFeeds", {"linewatch feed add NAME --gtfs G --alerts A"}) + "\n");
  }
  const auto states = shown.check(now);
  if (!states) return refused(states.error());
  const SourceLines sources(texts);
  Report report;
  for (const StoredFeed& feed : *feeds) {
    const auto state = std::ranges::find(*states, feed.name, &FeedState::feed);
    const auto lines = shown.linesOf(feed.name);
    const Phrase words{state == states->end() ? texts("StateNotRead") : stateInWords(texts, *state, now)};
    report.output += (lines ? texts("FeedLines", {feed.name, counted(texts, *lines), words})
                            : texts("OfFeed", {feed.name, words})) +
                     "\n" + sources.of("Timetable", feed.gtfs) + sources.of("AlertsDocument", feed.alerts);
  }
  return report;
}

Report refusedNameInUse(const std::string& name) {
  return refused(failure("feed " + name, "", "a feed of that name exists; remove it first"));
}

Report refusedUnknownName(const std::string& name) {
  return refused(failure("feed \"" + name + "\"", "", "there is no feed of that name"));
}

/// The number of different alerts in force at that time.
std::size_t shownAlertCount(const AlertsMessage& message, Date now) {
  const auto incidents = distinctIncidents(message);
  const auto count = std::ranges::count_if(incidents, [&](const DistinctIncident& incident) {
    const ShownPeriod period = periodToShow(message.periods(message.entities()[incident.entity]), now);
    return (!period.start || *period.start <= now) && (!period.end || now < *period.end);
  });
  return static_cast<std::size_t>(count);
}

/// What was done with the feed, with the numbers of its lines and alerts; then its state.
std::string findings(const RiderTexts& texts, const std::string& done, const StoredFeed& feed,
                     const SharedLineIndex& lines, const FeedAlerts& alerts, Date now) {
  const Phrase count{texts("AlertsNow", {shownAlertCount(*alerts.message, now)})};
  const Phrase state{stateInWords(texts, stateOfFeed(feed, lines, alerts, now), now)};
  return texts("FeedFound", {Phrase{done}, counted(texts, lines), count}) + "\n" +
         texts("FeedState", {state}) + "\n";
}

Report addFeed(const RiderTexts& texts, FeedDocuments& documents, const SavedState& saved,
               const FeedCommand& command) {
  if (const auto fault = nameError(command.name)) return refused(*fault);
  const auto known = saved.feeds().list();
  if (!known) return refused(known.error());
  if (std::ranges::find(*known, command.name, &StoredFeed::name) != known->end())
    return refusedNameInUse(command.name);
  auto feed = feedFrom(command.options, command.name);
  if (!feed) return refused(feed.error());
  for (FeedSource* source : {&feed->gtfs, &feed->alerts})
    std::ranges::transform(source->locations, source->locations.begin(), absoluteLocation);
  // A feed that cannot be read is not added. The user can correct the mistake and try again.
  saved.feedCache()->holdBack();
  saved.feedCache()->remove(feed->name);
  const auto lines = documents.lineIndexOf(*feed);
  if (!lines) return refused(lines.error());
  const auto alerts = documents.alertsOf(*feed, {});
  if (alerts.failure) return refused(*alerts.failure);
  const auto added = saved.feeds().add(*feed);
  if (!added) return refused(added.error());
  if (!*added) return refusedNameInUse(feed->name);
  saved.feedCache()->writeHeldBack();
  return Report::of(findings(texts, texts("Added", {feed->name}), *feed, *lines, alerts, documents.now()));
}

/// Saves the keys even if the feed cannot be read with them, and prints the error.
Report changeKeys(const RiderTexts& texts, FeedDocuments& documents, const SavedState& saved,
                  const FeedCommand& command) {
  const auto known = saved.feeds().list();
  if (!known) return refused(known.error());
  const auto before = std::ranges::find(*known, command.name, &StoredFeed::name);
  if (before == known->end()) return refusedUnknownName(command.name);
  StoredFeed feed = *before;
  if (command.removesKeys) {
    feed.gtfs.keys = {};
    feed.alerts.keys = {};
  } else {
    auto changed = withNewKeys(feed, command.options);
    if (!changed) return refused(changed.error());
    feed = *std::move(changed);
  }
  const auto changed = saved.feeds().change(feed);
  if (!changed) return refused(changed.error());
  if (!*changed) return refusedUnknownName(feed.name);
  const std::string done = texts(command.removesKeys ? "KeysRemoved" : "KeysChanged", {feed.name});
  // Cached documents came with the old keys, so the new ones are tried now, and again at the next look-up if
  // the server refuses them.
  saved.feedCache()->expire(feed.name);
  saved.feedCache()->holdBack();
  const auto lines = documents.lineIndexOf(feed);
  const auto alerts = documents.alertsOf(feed, {});
  saved.feedCache()->writeHeldBack();
  const std::optional<Error> error = lines ? alerts.failure : lines.error();
  if (error) return {.output = done + "\n", .complaint = sentenceOf(*error), .status = 1};
  return Report::of(findings(texts, done, feed, *lines, alerts, documents.now()));
}

Report removeFeed(const RiderTexts& texts, const SavedState& saved, const std::string& name) {
  const auto removed = saved.feeds().remove(name);
  if (!removed) return refused(removed.error());
  if (!*removed) return refusedUnknownName(name);
  saved.feedCache()->remove(name);
  return Report::of(texts("FeedRemoved", {name}) + "\n");
}

}  // namespace

Report feed(Session& session, const FeedCommand& command) {
  const SavedState* const saved = session.platform().saved();
  if (!saved) return refused(failure("feed", "", "a run without saved state has no feeds to list or change"));
  switch (command.action) {
    case FeedCommand::Action::add:
      return addFeed(session.texts(), session.platform().documents(), *saved, command);
    case FeedCommand::Action::key:
      return changeKeys(session.texts(), session.platform().documents(), *saved, command);
    case FeedCommand::Action::remove:
      return removeFeed(session.texts(), *saved, command.name);
    case FeedCommand::Action::list:
      break;
  }
  return listFeeds(session.texts(), *saved, session.platform().feeds(), session.platform().mainLoop().now());
}

}  // namespace linewatch::app
