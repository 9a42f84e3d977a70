#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/adding_progress.h"
#include "app/commands.h"
#include "app/feed_catalogue.h"
#include "app/feed_sources.h"
#include "app/feed_texts.h"
#include "app/interruption.h"
#include "app/list_documents.h"
#include "app/rider_texts.h"
#include "app/terminal_text.h"
#include "app/terminal_width.h"
#include "app/text_table.h"
#include "feeds/catalogue/feed_findings.h"
#include "feeds/http/redacted.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"
#include "shared/nearest_name.h"
#include "shared/shell_words.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

using Phrase = RiderTexts::Phrase;

Phrase counted(const RiderTexts& texts, const SharedLineIndex& lines) {
  return {texts("Lines", {lines->routes().size()})};
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
  SourceLines(const RiderTexts& texts, const TerminalStyle& style) : texts_(texts), style_(style) {
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
    return textTable({{{.text = label + std::string(column_ - terminalWidth(label), ' ')}, {.text = text}}},
                     style_);
  }

  const RiderTexts& texts_;
  const TerminalStyle& style_;
  std::size_t column_ = 0;
};

Outcome<std::vector<ListedFeed>> listedFeeds(const std::vector<StoredFeed>& feeds, TransitFeeds& shown,
                                             Date now) {
  const auto states = shown.check(now);
  if (!states) return states.error();
  std::vector<ListedFeed> listed;
  for (const StoredFeed& feed : feeds) {
    const auto state = std::ranges::find(*states, feed.name, &FeedState::feed);
    const auto lines = shown.linesOf(feed.name);
    listed.push_back({.feed = feed,
                      .state = state == states->end() ? std::nullopt : std::optional(*state),
                      .lines = lines ? *lines : nullptr});
  }
  return listed;
}

std::string feedsText(const RiderTexts& texts, const std::vector<ListedFeed>& feeds, Date now,
                      const TerminalStyle& style) {
  const SourceLines sources(texts, style);
  std::string text;
  for (const auto& [feed, state, lines] : feeds) {
    const Phrase words{state ? stateInWords(texts, *state, now) : texts("StateNotRead")};
    text += paragraph(lines ? texts("FeedLines", {feed.name, counted(texts, lines), words})
                            : texts("OfFeed", {feed.name, words}),
                      2, style) +
            sources.of("Timetable", feed.gtfs) + sources.of("AlertsDocument", feed.alerts);
  }
  return text;
}

Report listFeeds(Session& session, const SavedState& saved, bool isJson, const TerminalStyle& style) {
  const auto feeds = saved.feeds().list();
  if (!feeds) return refused(feeds.error());
  TransitFeeds& shown = session.platform().feeds();
  const Date now = session.platform().mainLoop().now();
  if (feeds->empty()) {
    if (const auto lost = shown.follow()) return refused(*lost);
    if (isJson) return Report::of(jsonText(feedsDocument({}, now)) + "\n");
    const bool showsSampleCity = session.platform().showsSampleCity();
    const std::string hint = showsSampleCity ? session.texts()("NoFeeds", {"linewatch feed add CITY"})
                                             : noFeedLeft(session.texts());
    return Report::of(paragraph(hint, 0, style));
  }
  const auto listed = listedFeeds(*feeds, shown, now);
  if (!listed) return refused(listed.error());
  return Report::of(isJson ? jsonText(feedsDocument(*listed, now)) + "\n"
                           : feedsText(session.texts(), *listed, now, style));
}

Report refusedUnknownName(const RiderTexts& texts, const SavedState& saved, const std::string& name) {
  std::vector<std::string_view> names;
  const auto known = saved.feeds().list();
  if (known) std::ranges::transform(*known, std::back_inserter(names), &StoredFeed::name);
  const auto nearest = nearestName(name, names);
  const std::string refusal = texts("NoSuchFeed", {name});
  return refusedWith(nearest ? texts("DidYouMean", {Phrase{refusal}, std::string(*nearest)}) : refusal);
}

/// The feed with the keys that the command says or asks for.
Outcome<StoredFeed> withChangedKeys(const RiderTexts& texts, StoredFeed feed, const FeedCommand& command) {
  if (!command.removesKeys) return withNewKeys(texts, std::move(feed), command.options);
  feed.gtfs.keys = {};
  feed.alerts.keys = {};
  return feed;
}

/// Reads the feed with its new keys. Prints the error if they do not fit, but they stay saved.
Report triedKeys(Session& session, const StoredFeed& feed, const std::string& done,
                 const TerminalStyle& style) {
  const auto findings = addWithProgress(session, {.feed = feed, .timetableCopies = {}, .isSaved = true});
  const Date now = session.platform().mainLoop().now();
  if (findings) return Report::of(findingsText(session.texts(), done, *findings, now, style));
  Report report = notLoaded(findings.error());
  report.output = paragraph(done, kMessageIndent, style);
  if (report.failure == FailureCode::cancelled) report.status = kInterruptedStatus;
  return report;
}

Report changeKeys(Session& session, const SavedState& saved, const FeedCommand& command,
                  const TerminalStyle& style) {
  const RiderTexts& texts = session.texts();
  const auto known = saved.feeds().list();
  if (!known) return refused(known.error());
  const auto before = std::ranges::find(*known, command.name, &StoredFeed::name);
  if (before == known->end()) return refusedUnknownName(texts, saved, command.name);
  const auto feed = withChangedKeys(texts, *before, command);
  if (!feed) return refusedOrInterrupted(texts, feed.error());
  const auto changed = saved.feeds().change(*feed);
  if (!changed) return refused(changed.error());
  if (!*changed) return refusedUnknownName(texts, saved, feed->name);
  // Cached documents came with the old keys, so the new ones are tried now, and again at the next look-up if
  // the server refuses them.
  saved.feedCache()->expire(feed->name);
  return triedKeys(session, *feed, texts(command.removesKeys ? "KeysRemoved" : "KeysChanged", {feed->name}),
                   style);
}

/// Adds the result for one feed to the report, which keeps the first error.
void update(Session& session, const SavedState& saved, const StoredFeed& feed, const TerminalStyle& style,
            Report& report) {
  const RiderTexts& texts = session.texts();
  saved.feedCache()->expire(feed.name);
  const auto findings = addWithProgress(session, {.feed = feed, .timetableCopies = {}, .isSaved = true});
  if (findings) {
    report.output += findingsText(texts, texts("FeedUpdated", {feed.name}), *findings,
                                  session.platform().mainLoop().now(), style);
    return;
  }
  if (!report.complaint.empty()) return;
  Report failed = notLoaded(findings.error());
  failed.output = std::move(report.output);
  if (failed.failure == FailureCode::cancelled) failed.status = kInterruptedStatus;
  report = std::move(failed);
}

/// Fetches the feed of that name, or every feed if there is none. Unlike other commands it waits for a
/// timetable as long as bytes come.
Report updateFeeds(Session& session, const SavedState& saved, const std::string& name,
                   const TerminalStyle& style) {
  const auto known = saved.feeds().list();
  if (!known) return refused(known.error());
  const bool isKnown = std::ranges::find(*known, name, &StoredFeed::name) != known->end();
  if (!name.empty() && !isKnown) return refusedUnknownName(session.texts(), saved, name);
  if (known->empty()) return listFeeds(session, saved, false, style);
  Report report;
  for (const StoredFeed& feed : *known) {
    if (!name.empty() && feed.name != name) continue;
    update(session, saved, feed, style, report);
    if (report.status == kInterruptedStatus) break;
  }
  return report;
}

Report removeFeed(const RiderTexts& texts, const SavedState& saved, const std::string& name,
                  const TerminalStyle& style) {
  const auto removed = saved.feeds().remove(name);
  if (!removed) return refused(removed.error());
  if (!*removed) return refusedUnknownName(texts, saved, name);
  saved.feedCache()->remove(name);
  return Report::of(paragraph(texts("FeedRemoved", {name}), kMessageIndent, style));
}

}  // namespace

Report feed(Session& session, const FeedCommand& command, const TerminalStyle& style) {
  if (command.action == FeedCommand::Action::find) return findFeeds(session, command, style);
  const SavedState* const saved = session.platform().saved();
  if (!saved) return refused(failure("feed", "", "a run without saved state has no feeds to list or change"));
  switch (command.action) {
    case FeedCommand::Action::add:
      return addFeed(session, command, style);
    case FeedCommand::Action::key:
      return changeKeys(session, *saved, command, style);
    case FeedCommand::Action::update:
      return updateFeeds(session, *saved, command.name, style);
    case FeedCommand::Action::remove:
      return removeFeed(session.texts(), *saved, command.name, style);
    case FeedCommand::Action::find:
    case FeedCommand::Action::list:
      break;
  }
  return listFeeds(session, *saved, command.json, style);
}

}  // namespace linewatch::app
