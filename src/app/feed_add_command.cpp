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

#include "app/adding_progress.h"
#include "app/catalogue_texts.h"
#include "app/feed_catalogue.h"
#include "app/feed_sources.h"
#include "app/feed_texts.h"
#include "app/text_table.h"
#include "feeds/catalogue/feed_adding.h"
#include "feeds/transit_feeds.h"
#include "feeds/user_favorites.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

/// Hits beyond this are not worth listing: more words find less.
constexpr std::size_t kMostChoices = 20;

/// Columns.
constexpr std::size_t kChoiceIndent = 4;

/// Prints a message on standard error.
void tell(const std::string& message) {
  std::fputs(paragraph(terminalLine(message), kMessageIndent, TerminalStyle::ofStandardError()).c_str(),
             stderr);
}

bool isOnTerminal() { return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1; }

/// A text for each line of the feed that is a favourite since an earlier feed of the same name. The lines may
/// be others now, so the rider sees which they are.
std::string favoritesAgain(Session& session, const std::string& feed, const TerminalStyle& style) {
  TransitFeeds& feeds = session.platform().feeds();
  const auto favorites = session.platform().favorites().lines();
  if (!favorites || feeds.follow()) return {};
  const auto lines = feeds.linesOf(feed);
  std::string text;
  for (const StoredFavorite& favorite : *favorites) {
    const auto route =
        favorite.feed == feed && lines ? (*lines)->routeWithId(favorite.subject) : std::nullopt;
    if (!route) continue;
    text +=
        paragraph(session.texts()("AlreadyFavorite", {(*lines)->nameOfRoute(*route)}), kMessageIndent, style);
  }
  return text;
}

Report added(Session& session, FeedProposal proposal, const TerminalStyle& style) {
  const RiderTexts& texts = session.texts();
  const std::string name = proposal.feed.name;
  const auto findings = addWithProgress(session, std::move(proposal));
  if (!findings && failureCodeOf(findings.error()) == FailureCode::alreadyExists)
    return refusedWith(texts("FeedNameInUse", {name}));
  if (!findings) return refusedOrInterrupted(texts, findings.error());
  Report report =
      Report::of(findingsText(texts, texts("Added", {findings->feed.name}), *findings,
                              session.platform().mainLoop().now(), style) +
                 favoritesAgain(session, findings->feed.name, style) +
                 paragraph(texts("FindItsLines", {"linewatch lines"}), kMessageIndent, style) +
                 paragraph(texts("ThenAddOne", {"linewatch favorites add LINE"}), kMessageIndent, style));
  if (findings->agencyFailure)
    report.complaint =
        texts("AddedWithCopy", {RiderTexts::Phrase{texts.failure(failureCodeOf(*findings->agencyFailure),
                                                                 sentenceOf(*findings->agencyFailure))}});
  return report;
}

Report addGiven(Session& session, const FeedCommand& command, const TerminalStyle& style) {
  const RiderTexts& texts = session.texts();
  if (feedNameError(command.name)) return refusedWith(texts("FeedNameInvalid", {command.name}));
  const auto known = session.platform().saved()->feeds().list();
  if (!known) return refused(known.error());
  // Before a key is asked for.
  if (std::ranges::find(*known, command.name, &StoredFeed::name) != known->end())
    return refusedWith(texts("FeedNameInUse", {command.name}));
  auto feed = feedFrom(texts, command.options, command.name);
  if (!feed) return refusedOrInterrupted(texts, feed.error());
  auto proposal = proposalOf(*std::move(feed));
  return proposal ? added(session, *std::move(proposal), style) : refused(proposal.error());
}

/// The hits to choose from: those that are kept up, else all.
std::vector<CatalogueHit> choicesIn(const CatalogueMatches& matches) {
  std::vector<CatalogueHit> choices;
  std::ranges::copy_if(matches.hits, std::back_inserter(choices), &CatalogueHit::isActive);
  return choices.empty() ? matches.hits : choices;
}

/// The provider, the place and what the hit covers, in one line.
std::string hitLine(Session& session, const CatalogueHit& hit) {
  std::vector<std::string> words = {hit.provider()};
  for (std::string& part : std::vector{hit.place(session.locale().language()), hit.coverage()}) {
    if (!part.empty()) words.push_back(std::move(part));
  }
  return terminalLine(session.texts().list(words));
}

/// The hits with a number or a command each.
std::string choiceText(Session& session, const std::vector<CatalogueHit>& hits, bool isNumbered,
                       const TerminalStyle& style) {
  std::string text;
  for (std::size_t i = 0; i < std::min(hits.size(), kMostChoices); ++i) {
    const std::string line = hitLine(session, hits[i]);
    text += isNumbered ? paragraph(std::to_string(i + 1) + "  " + line, kChoiceIndent, style)
                       : paragraph(addingCommand(hits[i]), kMessageIndent, style) +
                             paragraph(std::string(kChoiceIndent, ' ') + line, kChoiceIndent, style);
  }
  if (hits.size() > kMostChoices)
    text += paragraph(session.texts()("FindMore", {hits.size() - kMostChoices}), kMessageIndent, style);
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

/// Prints the numbered hits, and asks which one; absent if the rider chooses none.
std::optional<CatalogueHit> askedHit(Session& session, const std::vector<CatalogueHit>& hits) {
  const TerminalStyle style = TerminalStyle::ofStandardError();
  const std::size_t most = std::min(hits.size(), kMostChoices);
  std::string question = choiceText(session, hits, true, style) +
                         paragraph(session.texts()("FindWhich", {most}), kMessageIndent, style);
  question.back() = ' ';
  std::fputs(question.c_str(), stderr);
  const auto number = typedNumber(most);
  return number ? std::optional(hits[*number - 1]) : std::nullopt;
}

/// The only hit, or the one that the user chooses on a terminal; else the report to end with.
std::variant<CatalogueHit, Report> chosenHit(Session& session, const FeedCommand& command,
                                             const TerminalStyle& style) {
  const auto reading = readCatalogueWithProgress(session);
  if (!reading) return refused(reading.error());
  const RiderTexts& texts = session.texts();
  if (const auto note = keptNote(texts, *reading, session.platform().mainLoop().now()); !note.empty())
    tell(note);
  if (auto hit = reading->catalogue->hitOf(command.name)) return *std::move(hit);
  const CatalogueMatches matches = reading->catalogue->search(command.name);
  std::vector<CatalogueHit> hits = choicesIn(matches);
  if (hits.empty()) return noHits(session, command.name, matches, 2);
  if (hits.size() == 1) return hits.front();
  if (!isOnTerminal())
    return Report{
        .output = choiceText(session, hits, false, style), .complaint = texts("FindSeveral"), .status = 2};
  auto hit = askedHit(session, hits);
  if (!hit) return refusedWith(texts("FindNoneChosen"));
  return *std::move(hit);
}

/// Absent if the hit can be added.
std::optional<std::string> whyNotAddable(const RiderTexts& texts, const CatalogueHit& hit) {
  if (hit.timetables.empty()) return noTimetableText(texts, hit);
  if (hit.key().kind != CatalogueKey::Kind::other) return std::nullopt;
  return texts("OfFeed", {hit.provider(), RiderTexts::Phrase{texts("FindOtherKey", {hit.key().page})}});
}

Report addHit(Session& session, const FeedCommand& command, const CatalogueHit& hit,
              const TerminalStyle& style) {
  const RiderTexts& texts = session.texts();
  if (auto reason = whyNotAddable(texts, hit)) return refusedWith(*std::move(reason));
  const auto known = session.platform().saved()->feeds().list();
  if (!known) return refused(known.error());
  FeedProposal proposal = proposalOf(hit, {}, *known);
  if (!command.newName.empty()) proposal.feed.name = command.newName;
  if (hit.needsKey() && !hit.key().page.empty()) tell(texts("FindKeyFrom", {hit.key().page}));
  auto feed = withGivenKeys(texts, proposal.feed, command.options);
  if (!feed) return refusedOrInterrupted(texts, feed.error());
  // Another name or other keys make another feed.
  if (!command.newName.empty() || *feed != proposal.feed) proposal.isSaved = false;
  proposal.feed = *std::move(feed);
  return added(session, std::move(proposal), style);
}

}  // namespace

Report addFeed(Session& session, const FeedCommand& command, const TerminalStyle& style) {
  if (!command.options.gtfs.empty()) return addGiven(session, command, style);
  const auto hit = chosenHit(session, command, style);
  if (const auto* const report = std::get_if<Report>(&hit)) return *report;
  return addHit(session, command, std::get<CatalogueHit>(hit), style);
}

}  // namespace linewatch::app
