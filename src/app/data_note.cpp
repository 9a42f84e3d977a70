#include <array>
#include <ctime>

#include "app/commands.h"

namespace linewatch::app {

namespace {

std::string localTime(Date date) {
  const auto seconds = static_cast<std::time_t>(date.time_since_epoch().count());
  std::tm parts{};
  std::array<char, 32> text{};
  if (!localtime_r(&seconds, &parts)) return {};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts)};
}

}  // namespace

std::string dataNote(Session& session, const TerminalStyle& style) {
  if (session.platform().showsSampleCity()) {
    return terminalFaint("This is a made-up city. Yours: linewatch feed add NAME --gtfs G --alerts A",
                         style) +
           "\n";
  }
  std::string note;
  for (const auto& state : session.platform().feeds().alertsStates()) {
    const std::string name = session.platform().feeds().feeds().size() > 1 ? state.feed + ": " : "";
    note += terminalFaint(
                name + (state.written ? "Alerts of " + localTime(*state.written) : "Alerts of unknown age"),
                style) +
            "\n";
  }
  return note;
}

}  // namespace linewatch::app
