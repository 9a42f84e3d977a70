#include <algorithm>
#include <sstream>

#include "app/commands.h"
#include "app/favorite_lines.h"
#include "app/line_table.h"
#include "app/list_documents.h"
#include "app/rider_texts.h"
#include "app/text_table.h"
#include "feeds/gtfs/line_lookup.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

/// The error in the rider's language: no line has the name, or several have it.
Error unknownLine(const RiderTexts& texts, const std::string& name, const Error& error) {
  const std::string likely = likelyLinesOf(error);
  const bool areSeveral = failureCodeOf(error) == FailureCode::invalid;
  std::string sentence = areSeveral ? texts("SeveralLines", {name, likely}) : texts("NoSuchLine", {name});
  if (!areSeveral && !likely.empty()) sentence = texts("DidYouMean", {RiderTexts::Phrase{sentence}, likely});
  return failure(FailureCode::invalid, "", "", sentence);
}

Outcome<std::vector<FoundLine>> linesNamed(Session& session, const std::vector<std::string>& names) {
  const FeedLines all = session.platform().feeds().lines();
  std::vector<FoundLine> found;
  for (const std::string& name : names) {
    auto line = findLine(all.indexes, name);
    // The line may belong to a feed that cannot be read.
    if (!line) return all.error ? *all.error : unknownLine(session.texts(), name, line.error());
    found.push_back(std::move(*line));
  }
  return found;
}

/// A favourite can be removed by its id even if its feed or line no longer exists.
std::optional<StoredFavorite> storedAs(const std::vector<StoredFavorite>& stored, const std::string& name) {
  for (const StoredFavorite& favorite : stored) {
    if (favorite.subject == name || favorite.feed + ":" + favorite.subject == name) return favorite;
  }
  return std::nullopt;
}

/// The choice as options of `favorites add`; empty for the default.
std::string inWords(const LineChoice& choice) {
  std::string words;
  if (choice.stops != LineChoice::Stops::all) {
    std::string ids;
    for (const std::string& id : choice.stopIds) ids.append(ids.empty() ? "" : ",").append(id);
    words += "--stops " + (choice.stops == LineChoice::Stops::none ? "none" : terminalLine(ids));
  }
  if (choice.direction)
    words += (words.empty() ? "" : "  ") + ("--direction " + std::to_string(*choice.direction));
  return words;
}

Report list(Session& session, bool isJson, const TerminalStyle& style) {
  const auto favorites = favoriteLines(session);
  if (!favorites) return refused(favorites.error());
  if (isJson) return Report::of(jsonText(favoritesDocument(*favorites)) + "\n");
  const RiderTexts& texts = session.texts();
  if (favorites->empty())
    return Report::of(paragraph(texts("NoFavorites", {"linewatch favorites add LINE"}), 0, style));
  std::vector<FoundLine> known;
  std::vector<std::string> choices;
  std::vector<std::vector<TableCell>> unknown;
  for (const auto& [favorite, line] : *favorites) {
    if (line) {
      known.push_back(*line);
      choices.push_back(inWords(favorite.choice));
    } else {
      unknown.push_back({{.text = texts("UnknownLine", {favorite.feed + ":" + favorite.subject})},
                         {.text = inWords(favorite.choice)}});
    }
  }
  const bool isNoFeedLeft = session.platform().feeds().feeds().empty();
  return Report::of(lineTable(known, style, choices) + textTable(unknown, style) +
                    (isNoFeedLeft ? paragraph(noFeedLeft(texts), 0, style) : sampleCityNote(session, style)));
}

std::vector<std::string> idsIn(const std::string& list) {
  std::istringstream parts(list);
  std::vector<std::string> ids;
  for (std::string id; std::getline(parts, id, ',');) {
    if (!id.empty()) ids.push_back(id);
  }
  return ids;
}

/// The choice after the options have changed it.
LineChoice changed(LineChoice choice, const FavoritesCommand& command) {
  using Stops = LineChoice::Stops;
  if (command.stops) {
    choice.stops = *command.stops == "all"    ? Stops::all
                   : *command.stops == "none" ? Stops::none
                                              : Stops::chosen;
    choice.stopIds = choice.stops == Stops::chosen ? idsIn(*command.stops) : std::vector<std::string>();
  }
  if (command.direction) {
    choice.direction = *command.direction == "both"
                           ? std::nullopt
                           : std::optional(static_cast<std::uint8_t>(*command.direction == "1" ? 1 : 0));
  }
  return choice;
}

/// An error if the line's feed does not have a chosen stop.
std::optional<Error> unknownStop(Session& session, const StoredFavorite& favorite) {
  if (favorite.choice.stopIds.empty()) return std::nullopt;
  const auto stops = session.platform().feeds().stopsOf(favorite.feed);
  if (!stops) return stops.error();
  for (const std::string& id : favorite.choice.stopIds) {
    if (!(*stops)->find(id))
      return failure(FailureCode::invalid, "", "", session.texts()("NoSuchStop", {favorite.feed, id}));
  }
  return std::nullopt;
}

/// The favourites with their present choices, changed by the options.
Outcome<std::vector<StoredFavorite>> withChoice(Session& session, std::vector<StoredFavorite> favorites,
                                                const FavoritesCommand& command) {
  const auto stored = session.platform().favorites().lines();
  if (!stored) return stored.error();
  for (StoredFavorite& favorite : favorites) {
    const auto known =
        std::ranges::find_if(*stored, [&](const StoredFavorite& other) { return other.isSameAs(favorite); });
    favorite.choice = changed(known == stored->end() ? LineChoice() : known->choice, command);
    if (auto error = unknownStop(session, favorite)) return *std::move(error);
  }
  return favorites;
}

Report add(Session& session, const FavoritesCommand& command, const TerminalStyle& style) {
  // All lines are looked up before any is added, so that a mistake adds none.
  const auto found = linesNamed(session, command.lines);
  if (!found) return refused(found.error());
  std::vector<StoredFavorite> chosen;
  for (const FoundLine& line : *found) chosen.push_back(favoriteOf(line));
  const bool hasChoice = command.stops || command.direction;
  if (hasChoice && command.stops && *command.stops != "none" && idsIn(*command.stops).empty())
    return refused(failure(FailureCode::invalid, "--stops", "", "it names no stop; say all, none or ids"));
  const auto before = session.platform().favorites().lines();
  if (!before) return refused(before.error());
  if (hasChoice) {
    auto withOptions = withChoice(session, std::move(chosen), command);
    if (!withOptions) return refused(withOptions.error());
    chosen = *std::move(withOptions);
  }
  const UserFavorites& favorites = session.platform().favorites();
  const auto added = hasChoice ? favorites.addWithChoice(chosen) : favorites.change(chosen, true);
  if (!added) return refused(added.error());
  Report report;
  for (std::size_t i = 0; i < found->size(); ++i) {
    const bool wasThere =
        std::ranges::any_of(*before, [&](const StoredFavorite& other) { return other.isSameAs(chosen[i]); });
    const char* const done = !(*added)[i] ? "AlreadyFavorite" : wasThere ? "Changed" : "Added";
    report.output += paragraph(session.texts()(done, {(*found)[i].name()}), kMessageIndent, style);
  }
  return report;
}

struct NamedFavorite {
  StoredFavorite favorite;
  /// The line's name, or what the user called it.
  std::string name;
};

Outcome<NamedFavorite> favoriteNamed(Session& session, const std::vector<StoredFavorite>& stored,
                                     const std::string& name) {
  if (const auto favorite = storedAs(stored, name)) return NamedFavorite{*favorite, name};
  const auto found = linesNamed(session, {name});
  if (!found) return found.error();
  return NamedFavorite{favoriteOf(found->front()), found->front().name()};
}

Report move(Session& session, const std::string& name, std::size_t place, const TerminalStyle& style) {
  auto stored = session.platform().favorites().lines();
  if (!stored) return refused(stored.error());
  const auto named = favoriteNamed(session, *stored, name);
  if (!named) return refused(named.error());
  const auto isNamed = [&](const StoredFavorite& other) { return other.isSameAs(named->favorite); };
  const auto from = std::ranges::find_if(*stored, isNamed);
  if (from == stored->end()) return refusedWith(session.texts()("NotFavorite", {named->name}));
  const auto to = stored->begin() + static_cast<std::ptrdiff_t>(std::min(place, stored->size()) - 1);
  if (from < to) {
    std::rotate(from, from + 1, to + 1);
  } else {
    std::rotate(to, from, from + 1);
  }
  const auto moved = session.platform().favorites().reorder(*stored);
  if (!moved) return refused(moved.error());
  const std::uint64_t reached = static_cast<std::uint64_t>(to - stored->begin()) + 1;
  return Report::of(
      paragraph(session.texts()("Moved", {named->name, std::to_string(reached)}), kMessageIndent, style));
}

Report remove(Session& session, const std::vector<std::string>& names, const TerminalStyle& style) {
  const auto stored = session.platform().favorites().lines();
  if (!stored) return refused(stored.error());
  std::vector<StoredFavorite> chosen;
  std::vector<std::string> chosenNames;
  for (const std::string& name : names) {
    auto named = favoriteNamed(session, *stored, name);
    if (!named) return refused(named.error());
    chosen.push_back(named->favorite);
    chosenNames.push_back(std::move(named->name));
  }
  const auto removed = session.platform().favorites().change(chosen, false);
  if (!removed) return refused(removed.error());
  Report report;
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    const char* const done = (*removed)[i] ? "Removed" : "NotFavorite";
    report.output += paragraph(session.texts()(done, {chosenNames[i]}), kMessageIndent, style);
  }
  return report;
}

}  // namespace

Report favorites(Session& session, const FavoritesCommand& command, const TerminalStyle& style) {
  switch (command.action) {
    case FavoritesCommand::Action::add:
      return add(session, command, style);
    case FavoritesCommand::Action::remove:
      return remove(session, command.lines, style);
    case FavoritesCommand::Action::move:
      return move(session, command.lines.front(), command.place, style);
    case FavoritesCommand::Action::list:
      break;
  }
  return list(session, command.json, style);
}

}  // namespace linewatch::app
