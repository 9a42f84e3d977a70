#include <charconv>
#include <cmath>
#include <cstddef>

#include <nlohmann/json.hpp>

#include "app/commands.h"
#include "app/local_time.h"
#include "app/rider_texts.h"
#include "app/text_table.h"
#include "machine/terminal_line.h"
#include "settings/user_settings.h"
#include "shared/failure.h"
#include "shared/outcome.h"
#include "storage/stored_analytics.h"

namespace linewatch::app {

namespace {

using nlohmann::ordered_json;

constexpr std::size_t kIncidentIndent = 4;

struct Records {
  std::vector<StoredWidgetSession> sessions;
  std::vector<StoredUserAction> actions;
};

std::string messageInWords(const std::optional<std::int64_t>& type) {
  switch (static_cast<TransitMessageType>(type.value_or(0))) {
    case TransitMessageType::noFavorites:
      return "no favourites";
    case TransitMessageType::noIncident:
      return "no incident";
    case TransitMessageType::oneIncident:
      return "one incident";
    case TransitMessageType::severalIncidents:
      return "several incidents";
  }
  return "an error, or closed before the first update";
}

/// The line's name in the feeds, or its number if no feed has it.
std::string nameOfLine(const std::string& muid, const std::vector<SharedLineIndex>& indexes) {
  std::uint64_t number = 0;
  std::from_chars(muid.data(), muid.data() + muid.size(), number);
  for (const SharedLineIndex& index : indexes) {
    if (const auto route = index->routeWithMuid(number)) return terminalLine(index->nameOfRoute(*route));
  }
  return muid;
}

std::string textOf(const StoredWidgetSession& session, const std::vector<SharedLineIndex>& indexes,
                   const TerminalStyle& style) {
  const WidgetInteractionEvent& event = session.event;
  const WidgetAnalyticsRecord& record = *event.record;
  std::string text = localTime(event.startDate) + "  shown for " +
                     std::to_string(std::llround(event.duration.count())) +
                     " s: " + messageInWords(record.transitMessageType);
  if (record.everExpanded.value_or(false)) text += ", expanded";
  if (event.endState == static_cast<std::int64_t>(WidgetSessionEnd::itemOpened))
    text += ", row " + std::to_string(record.tappedItemIndex.value_or(0)) + " opened";
  std::string lines = paragraph(text, kIncidentIndent, style);
  for (const IncidentAnalyticsItem& item : record.transitIncidents)
    lines +=
        paragraph(std::string(kIncidentIndent, ' ') + "line " + nameOfLine(item.transitLineMuid, indexes) +
                      ": " + terminalLine(item.transitIncidentTitle.value_or("(no title)")),
                  kIncidentIndent, style);
  return lines;
}

std::string textOf(const Records& recorded, const std::vector<SharedLineIndex>& indexes,
                   const TerminalStyle& style) {
  std::string text;
  for (const StoredWidgetSession& session : recorded.sessions) text += textOf(session, indexes, style);
  for (const StoredUserAction& action : recorded.actions)
    text += paragraph(localTime(action.time) + "  " + action.action +
                          (action.value ? " " + terminalLine(*action.value) : ""),
                      kIncidentIndent, style);
  return text;
}

template <class T>
ordered_json orNull(const std::optional<T>& value) {
  return value ? ordered_json(*value) : ordered_json(nullptr);
}

ordered_json jsonOf(const StoredWidgetSession& session) {
  const WidgetInteractionEvent& event = session.event;
  const WidgetAnalyticsRecord& record = *event.record;
  ordered_json incidents = ordered_json::array();
  for (const IncidentAnalyticsItem& item : record.transitIncidents)
    incidents.push_back({{"transitLineMuid", item.transitLineMuid},
                         {"transitIncidentTitle", orNull(item.transitIncidentTitle)}});
  return {{"userSession", session.userSession.sessionIdentifier},
          {"interactionType", event.interactionType},
          {"endState", event.endState},
          {"wasLocked", event.wasLocked},
          {"start", secondsOf(event.startDate)},
          {"duration", event.duration.count()},
          {"initiallyExpanded", orNull(record.initiallyExpanded)},
          {"everExpanded", orNull(record.everExpanded)},
          {"transitMessageType", orNull(record.transitMessageType)},
          {"tappedItemIndex", orNull(record.tappedItemIndex)},
          {"transitIncidents", std::move(incidents)}};
}

ordered_json jsonOf(const StoredUserAction& action) {
  return {{"time", secondsOf(action.time)},
          {"action", action.action},
          {"target", action.target},
          {"value", orNull(action.value)}};
}

std::string jsonTextOf(const Records& recorded) {
  ordered_json form{{"sessions", ordered_json::array()}, {"actions", ordered_json::array()}};
  for (const StoredWidgetSession& session : recorded.sessions) form["sessions"].push_back(jsonOf(session));
  for (const StoredUserAction& action : recorded.actions) form["actions"].push_back(jsonOf(action));
  return form.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

Outcome<Records> recordsIn(StoredDatabase& state) {
  auto sessions = storedWidgetSessions(state);
  if (!sessions) return sessions.error();
  auto actions = storedUserActions(state);
  if (!actions) return actions.error();
  return Records{std::move(*sessions), std::move(*actions)};
}

Report printAnalytics(const RiderTexts& texts, const SavedState& saved, TransitFeeds& feeds, bool isOn,
                      bool json, const TerminalStyle& style) {
  const auto recorded = recordsIn(*saved.database());
  if (!recorded) return refused(recorded.error());
  if (json) return Report::of(jsonTextOf(*recorded));
  // The feeds are needed only for the names of the lines.
  std::string text = textOf(
      *recorded, recorded->sessions.empty() ? std::vector<SharedLineIndex>() : feeds.lines().indexes, style);
  if (text.empty()) text = texts("NothingRecorded") + "\n";
  text += paragraph(isOn ? texts("RecordingOnHint", {"linewatch analytics off"}) : texts("RecordingOff"), 0,
                    style);
  return Report::of(std::move(text));
}

}  // namespace

Report analytics(Session& session, const AnalyticsCommand& command, const TerminalStyle& style) {
  using enum AnalyticsCommand::Action;
  SavedState* const saved = session.platform().saved();
  if (!saved) return refused(failure("analytics", "", "a run without saved state records nothing"));
  UserSettings& settings = session.platform().settings();
  if (command.action == list) {
    const bool isOn = settings.find(kAnalyticsSetting).text == "true";
    return printAnalytics(session.texts(), *saved, session.platform().feeds(), isOn, command.json, style);
  }
  if (command.action == clear) {
    const auto error = clearAnalytics(*saved->database());
    return error ? refused(*error) : Report::of(session.texts()("RecordsDeleted") + "\n");
  }
  const bool isOn = command.action == on;
  if (const auto error = settings.set(kAnalyticsSetting, isOn ? "true" : "false")) return refused(*error);
  return Report::of(session.texts()(isOn ? "RecordingOn" : "RecordingOff") + "\n");
}

}  // namespace linewatch::app
