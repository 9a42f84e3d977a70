#include "app/commands.h"
#include "app/local_time.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

/// Why the lines of some feeds are not in the list, and the names of these lines.
std::string unknownNote(const TransitFeeds& feeds, const TerminalStyle& style) {
  std::string note, names;
  for (const FeedState& state : feeds.states()) {
    if (!state.knowsLines()) note += terminalFaint(terminalLine(sentenceOf(*state.error)), style) + "\n";
  }
  for (const UnknownLine& line : feeds.unknownLines()) names += (names.empty() ? "" : ", ") + line.name;
  if (!names.empty()) note += terminalFaint("Unknown lines: " + terminalLine(names), style) + "\n";
  return note;
}

}  // namespace

std::string dataNote(Session& session, const TerminalStyle& style) {
  if (session.platform().showsSampleCity()) {
    return terminalFaint("This is a made-up city. Yours: linewatch feed add NAME --gtfs G --alerts A",
                         style) +
           "\n";
  }
  std::string note;
  for (const auto& state : session.platform().feeds().states()) {
    if (!state.knowsLines()) continue;
    const std::string name =
        session.platform().feeds().feeds().size() > 1 ? terminalLine(state.feed) + ": " : "";
    note += terminalFaint(
                name + (state.written ? "Alerts of " + localTime(*state.written) : "Alerts of unknown age"),
                style) +
            "\n";
  }
  return note + unknownNote(session.platform().feeds(), style);
}

}  // namespace linewatch::app
