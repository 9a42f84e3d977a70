#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <unistd.h>

#include "app/catalogue_texts.h"
#include "app/feed_catalogue.h"
#include "app/feed_sources.h"
#include "app/feed_texts.h"
#include "app/interruption.h"
#include "app/progress_line.h"
#include "feeds/catalogue/feed_adding.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

/// Hits beyond this are not worth listing: more words find less.
constexpr std::size_t kMostChoices = 20;
constexpr Seconds kPollInterval{0.05};

bool isOnTerminal() { return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1; }

Report refusedOrInterrupted(const RiderTexts& texts, const Error& error) {
  if (failureCodeOf(error) != FailureCode::cancelled) return refused(error);
  return {.output = {}, .complaint = texts("AddingCancelled"), .status = kInterruptedStatus};
}

void showProgress(const RiderTexts& texts, const AddingProgress& progress, ProgressLine& line) {
  using Step = AddingProgress::Step;
  if (progress.lineCount) return line.show(texts("Lines", {*progress.lineCount}), 0, {});
  switch (progress.step) {
    case Step::fetchingAlerts:
      return line.show(texts("ProgressAlerts"), progress.bytes, progress.totalBytes);
    case Step::fetchingTimetable:
      return line.show(texts("ProgressTimetable"), progress.bytes, progress.totalBytes);
    case Step::readingTimetable:
    case Step::saving:
      return line.show(texts("ProgressReading"), 0, {});
  }
}

/// Adds the feed. Shows the progress on a terminal; Control-C cancels.
Outcome<FeedFindings> addWithProgress(Session& session, FeedProposal proposal) {
  const Interruption interruption;
  FeedAdding adding(std::move(proposal), *session.platform().addingEnvironment());
  ProgressLine line;
  while (!adding.waitFor(kPollInterval)) {
    showProgress(session.texts(), adding.progress(), line);
    if (Interruption::isRequested()) adding.cancel();
  }
  return *adding.progress().result;
}

Report added(Session& session, FeedProposal proposal) {
  const RiderTexts& texts = session.texts();
  const auto findings = addWithProgress(session, std::move(proposal));
  if (!findings) return refusedOrInterrupted(texts, findings.error());
  Report report = Report::of(findingsText(texts, texts("Added", {findings->feed.name}), *findings,
                                          session.platform().mainLoop().now()));
  if (findings->agencyFailure)
    report.complaint = texts("AddedWithCopy", {sentenceOf(*findings->agencyFailure)});
  return report;
}

Report addGiven(Session& session, const FeedCommand& command) {
  if (const auto error = feedNameError(command.name)) return refused(*error);
  const auto known = session.platform().saved()->feeds().list();
  if (!known) return refused(known.error());
  // Before a key is asked for.
  if (std::ranges::find(*known, command.name, &StoredFeed::name) != known->end())
    return refused(feedNameInUse(command.name));
  auto feed = feedFrom(command.options, command.name);
  if (!feed) return refusedOrInterrupted(session.texts(), feed.error());
  auto proposal = proposalOf(*std::move(feed));
  return proposal ? added(session, *std::move(proposal)) : refused(proposal.error());
}

/// The hits to choose from: those that are kept up, else all.
std::vector<CatalogueHit> choicesIn(const CatalogueMatches& matches) {
  std::vector<CatalogueHit> choices;
  std::ranges::copy_if(matches.hits, std::back_inserter(choices), &CatalogueHit::isActive);
  return choices.empty() ? matches.hits : choices;
}

/// The hits with a number or a command each.
std::string choiceText(Session& session, const std::vector<CatalogueHit>& hits, bool isNumbered) {
  std::string text;
  for (std::size_t i = 0; i < std::min(hits.size(), kMostChoices); ++i) {
    const CatalogueHit& hit = hits[i];
    std::vector<std::string> words = {hit.provider()};
    for (std::string& part : std::vector{hit.place(session.locale().language()), hit.coverage()}) {
      if (!part.empty()) words.push_back(std::move(part));
    }
    const std::string line = terminalLine(session.texts().list(words));
    text +=
        isNumbered ? std::to_string(i + 1) + "  " + line + "\n" : addingCommand(hit) + "\n    " + line + "\n";
  }
  if (hits.size() > kMostChoices) text += session.texts()("FindMore", {hits.size() - kMostChoices}) + "\n";
  return text;
}

/// The number that the user types, from 1; absent for anything else.
std::optional<std::size_t> typedNumber(std::size_t most) {
  std::string line;
  std::getline(std::cin, line);
  std::size_t number = 0;
  const auto [end, trouble] = std::from_chars(line.data(), line.data() + line.size(), number);
  const bool isNumber = trouble == std::errc() && end == line.data() + line.size();
  return isNumber && number >= 1 && number <= most ? std::optional(number) : std::nullopt;
}

/// The only hit, or the one that the user chooses on a terminal; else the report to end with.
std::variant<CatalogueHit, Report> chosenHit(Session& session, const FeedCommand& command) {
  const auto reading = readCatalogueWithProgress(session);
  if (!reading) return refused(reading.error());
  const RiderTexts& texts = session.texts();
  if (const auto note = keptNote(texts, *reading, session.platform().mainLoop().now()); !note.empty())
    std::fputs((terminalLine(note) + "\n").c_str(), stderr);
  if (auto hit = reading->catalogue->hitOf(command.name)) return *std::move(hit);
  const CatalogueMatches matches = reading->catalogue->search(command.name);
  std::vector<CatalogueHit> hits = choicesIn(matches);
  if (hits.empty()) return noHits(session, command.name, matches, 2);
  if (hits.size() == 1) return hits.front();
  if (!isOnTerminal())
    return Report{.output = choiceText(session, hits, false), .complaint = texts("FindSeveral"), .status = 2};
  const std::size_t most = std::min(hits.size(), kMostChoices);
  std::fputs((choiceText(session, hits, true) + texts("FindWhich", {most}) + " ").c_str(), stderr);
  const auto number = typedNumber(most);
  if (!number) return Report{.output = {}, .complaint = texts("FindNoneChosen"), .status = 2};
  return hits[*number - 1];
}

Error noWayToAdd(const CatalogueHit& hit, const std::string& why) { return failure(hit.provider(), "", why); }

std::optional<Error> whyNotAddable(const RiderTexts& texts, const CatalogueHit& hit) {
  if (hit.timetables.empty()) return noWayToAdd(hit, texts("FindNoTimetable"));
  if (hit.key().kind != CatalogueKey::Kind::other) return std::nullopt;
  return noWayToAdd(hit, texts("FindOtherKey", {hit.key().page}));
}

Report addHit(Session& session, const FeedCommand& command, const CatalogueHit& hit) {
  const RiderTexts& texts = session.texts();
  if (const auto error = whyNotAddable(texts, hit)) return refused(*error);
  const auto known = session.platform().saved()->feeds().list();
  if (!known) return refused(known.error());
  FeedProposal proposal = proposalOf(hit, {}, *known);
  if (!command.newName.empty()) proposal.feed.name = command.newName;
  if (hit.needsKey() && !hit.key().page.empty())
    std::fputs((terminalLine(texts("FindKeyFrom", {hit.key().page})) + "\n").c_str(), stderr);
  auto feed = withGivenKeys(std::move(proposal.feed), command.options);
  if (!feed) return refusedOrInterrupted(texts, feed.error());
  proposal.feed = *std::move(feed);
  return added(session, std::move(proposal));
}

}  // namespace

Report addFeed(Session& session, const FeedCommand& command) {
  if (!command.options.gtfs.empty()) return addGiven(session, command);
  const auto hit = chosenHit(session, command);
  if (const auto* const report = std::get_if<Report>(&hit)) return *report;
  return addHit(session, command, std::get<CatalogueHit>(hit));
}

}  // namespace linewatch::app
