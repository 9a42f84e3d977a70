#include "app/commands.h"
#include "app/favorite_lines.h"
#include "app/line_table.h"
#include "feeds/gtfs/line_lookup.h"
#include "machine/stderr_log.h"

namespace linewatch::app {

namespace {

Outcome<std::vector<FoundLine>> linesNamed(Session& session, const std::vector<std::string>& names) {
  const FeedLines all = session.platform().feeds().lines();
  std::vector<FoundLine> found;
  for (const std::string& name : names) {
    auto line = findLine(all.indexes, name);
    // A feed that cannot be read may have the line.
    if (!line) return all.error ? *all.error : line.error();
    found.push_back(std::move(*line));
  }
  return found;
}

/// A favourite whose line its feed does not have, or whose feed is gone, can still be named for removal.
std::optional<StoredFavorite> storedAs(const std::vector<StoredFavorite>& stored, const std::string& name) {
  for (const StoredFavorite& favorite : stored) {
    if (favorite.subject == name || favorite.feed + ":" + favorite.subject == name) return favorite;
  }
  return std::nullopt;
}

Report list(Session& session, const TerminalStyle& style) {
  const auto favorites = favoriteLines(session);
  if (!favorites) return refused(favorites.error());
  if (favorites->empty()) return Report::of("No favourites yet: linewatch favorites add LINE\n");
  std::vector<FoundLine> known;
  std::string unknown;
  for (const auto& [favorite, line] : *favorites) {
    if (line) known.push_back(*line);
    if (!line) unknown += "unknown line  " + plainLine(favorite.feed + ":" + favorite.subject) + "\n";
  }
  return Report::of(lineTable(known, style) + unknown);
}

Report add(Session& session, const std::vector<std::string>& names) {
  // All are looked up first: a mistake in one adds none.
  const auto found = linesNamed(session, names);
  if (!found) return refused(found.error());
  Report report;
  for (const FoundLine& line : *found) {
    const auto added = session.platform().favorites().change(favoriteOf(line), true);
    if (!added) return refused(added.error());
    report.output += (*added ? "Added " : "Already a favourite: ") + line.name() + "\n";
  }
  return report;
}

Report remove(Session& session, const std::vector<std::string>& names) {
  const auto stored = session.platform().favorites().lines();
  if (!stored) return refused(stored.error());
  Report report;
  std::vector<std::pair<StoredFavorite, std::string>> chosen;
  for (const std::string& name : names) {
    if (const auto favorite = storedAs(*stored, name)) {
      chosen.emplace_back(*favorite, name);
      continue;
    }
    const auto found = linesNamed(session, {name});
    if (!found) return refused(found.error());
    chosen.emplace_back(favoriteOf(found->front()), found->front().name());
  }
  for (const auto& [favorite, name] : chosen) {
    const auto removed = session.platform().favorites().change(favorite, false);
    if (!removed) return refused(removed.error());
    report.output += (*removed ? "Removed " : "Not a favourite: ") + name + "\n";
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
