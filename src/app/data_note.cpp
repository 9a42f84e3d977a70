#include "app/commands.h"
#include "app/local_time.h"
#include "machine/terminal_line.h"

namespace linewatch::app {

std::string dataNote(Session& session, const TerminalStyle& style) {
  if (session.platform().showsSampleCity()) {
    return terminalFaint("This is a made-up city. Yours: linewatch feed add NAME --gtfs G --alerts A",
                         style) +
           "\n";
  }
  std::string note;
  for (const auto& state : session.platform().feeds().states()) {
    const std::string name =
        session.platform().feeds().feeds().size() > 1 ? terminalLine(state.feed) + ": " : "";
    note += terminalFaint(
                name + (state.written ? "Alerts of " + localTime(*state.written) : "Alerts of unknown age"),
                style) +
            "\n";
  }
  return note;
}

}  // namespace linewatch::app
