#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/favorite_lines.h"
#include "machine/terminal_line.h"

namespace linewatch::app {

namespace {

std::string aboutLine(const FoundLine& line) {
  return line.longName() == line.name() ? line.agencyName() : line.longName();
}

/// The shortest name of each line that begins with what is typed: its number, its route id, or both with the
/// feed. A number that several lines have names none.
void addLines(const std::vector<FoundLine>& lines, const std::string& start,
              std::vector<CompletedWord>& words) {
  std::map<std::string, int> counts;
  for (const FoundLine& line : lines) {
    for (const std::string& name : {line.name(), line.entry().id}) ++counts[name];
  }
  for (const FoundLine& line : lines) {
    const std::string& id = line.entry().id;
    const bool isNamedAlone = counts[line.name()] == (line.name() == id ? 2 : 1);
    for (const std::string& name : {isNamedAlone ? line.name() : id, id, line.index->feedName() + ":" + id}) {
      if (!name.starts_with(start)) continue;
      words.push_back({name, aboutLine(line)});
      break;
    }
  }
}

Outcome<std::vector<CompletedWord>> namesFor(Session& session, const CompleteCommand& command) {
  std::vector<CompletedWord> words;
  switch (command.names) {
    case CompleteCommand::Names::none:
      break;
    case CompleteCommand::Names::lines:
      addLines(searchLines(session.platform().feeds().lines().indexes, ""), command.start, words);
      break;
    case CompleteCommand::Names::favorites: {
      const auto favorites = favoriteLines(session);
      if (!favorites) return favorites.error();
      for (const FavoriteLine& favorite : *favorites) {
        const std::string name = favorite.favorite.feed + ":" + favorite.favorite.subject;
        words.push_back({name, favorite.line ? favorite.line->name() : ""});
      }
      break;
    }
    case CompleteCommand::Names::feeds: {
      const SavedState* const saved = session.platform().saved();
      const auto feeds = saved ? saved->feeds().list() : std::vector<StoredFeed>();
      if (!feeds) return feeds.error();
      for (const auto& feed : *feeds) words.push_back({feed.name, ""});
      break;
    }
  }
  return words;
}

}  // namespace

/// Prints each word and, behind a tab, what it means. An error prints nothing, because a shell would put it
/// into the line that is typed.
Report complete(Session& session, const CompleteCommand& command) {
  std::vector<CompletedWord> words = command.words;
  if (const auto names = namesFor(session, command))
    std::ranges::copy_if(*names, std::back_inserter(words), [&command](const CompletedWord& word) {
      return word.word.starts_with(command.start);
    });
  std::string text;
  for (const CompletedWord& word : words) {
    text += terminalLine(word.word);
    if (!word.about.empty()) text += "\t" + terminalLine(word.about);
    text += "\n";
  }
  return Report::of(text);
}

}  // namespace linewatch::app
