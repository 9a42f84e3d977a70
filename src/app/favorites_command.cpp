#include "app/commands.h"
#include "app/favorite_lines.h"
#include "app/line_table.h"
#include "feeds/gtfs/line_lookup.h"
#include "machine/terminal_line.h"

namespace linewatch::app {

namespace {

Outcome<std::vector<FoundLine>> linesNamed(Session& session, const std::vector<std::string>& names) {
  const FeedLines all = session.platform().feeds().lines();
  std::vector<FoundLine> found;
  for (const std::string& name : names) {
    auto line = findLine(all.indexes, name);
    // The line may be in a feed that cannot be read.
    if (!line) return all.error ? *all.error : line.error();
    found.push_back(std::move(*line));
  }
  return found;
}

/// Favourites can be removed by their id even if their feed or line no longer exists.
std::optional<StoredFavorite> storedAs(const std::vector<StoredFavorite>& stored, const std::string& name) {
  for (const StoredFavorite& favorite : stored) {
    if (favorite.subject == name || favorite.feed + ":" + favorite.subject == name) return favorite;
  }
  return std::nullopt;
}

Report list(Session& session, const TerminalStyle& style) {
  const auto favorites = favoriteLines(session);
  if (!favorites) return refused(favorites.error());
  if (favorites->empty()) return Report::of("No favourites yet. Add one: linewatch favorites add LINE\n");
  std::vector<FoundLine> known;
  std::string unknown;
  for (const auto& [favorite, line] : *favorites) {
    if (line) known.push_back(*line);
    if (!line) unknown += "unknown line  " + terminalLine(favorite.feed + ":" + favorite.subject) + "\n";
  }
  return Report::of(lineTable(known, style) + unknown);
}

Report add(Session& session, const std::vector<std::string>& names) {
  // All lines are looked up before any is added, so that one mistake adds none.
  const auto found = linesNamed(session, names);
  if (!found) return refused(found.error());
  std::vector<StoredFavorite> chosen;
  for (const FoundLine& line : *found) chosen.push_back(favoriteOf(line));
  const auto added = session.platform().favorites().change(chosen, true);
  if (!added) return refused(added.error());
  Report report;
  for (std::size_t i = 0; i < found->size(); ++i) {
    report.output +=
        ((*added)[i] ? "Added " : "Already a favourite: ") + terminalLine((*found)[i].name()) + "\n";
  }
  return report;
}

Report remove(Session& session, const std::vector<std::string>& names) {
  const auto stored = session.platform().favorites().lines();
  if (!stored) return refused(stored.error());
  std::vector<StoredFavorite> chosen;
  std::vector<std::string> chosenNames;
  for (const std::string& name : names) {
    if (const auto favorite = storedAs(*stored, name)) {
      chosen.push_back(*favorite);
      chosenNames.push_back(name);
      continue;
    }
    const auto found = linesNamed(session, {name});
    if (!found) return refused(found.error());
    chosen.push_back(favoriteOf(found->front()));
    chosenNames.push_back(found->front().name());
  }
  const auto removed = session.platform().favorites().change(chosen, false);
  if (!removed) return refused(removed.error());
  Report report;
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    report.output += ((*removed)[i] ? "Removed " : "Not a favourite: ") + terminalLine(chosenNames[i]) + "\n";
  }
  return report;
}

}  // namespace

Report favorites(Session& session, const FavoritesCommand& command, const TerminalStyle& style) {
  switch (command.action) {
    case FavoritesCommand::Action::add:
      return add(session, command.lines);
    case FavoritesCommand::Action::remove:
      return remove(session, command.lines);
    case FavoritesCommand::Action::list:
      break;
  }
  return list(session, style);
}

}  // namespace linewatch::app
