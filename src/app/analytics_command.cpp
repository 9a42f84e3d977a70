#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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

std::string messageInWords(const RiderTexts& texts, const std::optional<std::int64_t>& type) {
  switch (static_cast<TransitMessageType>(type.value_or(0))) {
    case TransitMessageType::noFavorites:
      return texts("SeenNoFavorites");
    case TransitMessageType::noIncident:
      return texts("SeenNoIncident");
    case TransitMessageType::oneIncident:
      return texts("SeenOneIncident");
    case TransitMessageType::severalIncidents:
      return texts("SeenSeveralIncidents");
  }
  return texts("SeenNothing");
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

/// Prints records as text, with the names that the feeds have for lines.
class RecordWriter {
 public:
  RecordWriter(const RiderTexts& texts, const std::vector<SharedLineIndex>& indexes,
               const TerminalStyle& style)
      : texts_(texts), indexes_(indexes), style_(style) {}

  std::string textOf(const Records& recorded) const {
    std::string text;
    for (const StoredWidgetSession& session : recorded.sessions) text += textOf(session);
    for (const StoredUserAction& action : recorded.actions)
      text += paragraph(localTime(action.time) + "  " + action.action +
                            (action.value ? " " + terminalLine(*action.value) : ""),
                        kIncidentIndent, style_);
    return text;
  }

 private:
  std::string textOf(const StoredWidgetSession& session) const {
    std::string lines = paragraph(localTime(session.event.startDate) + "  " + summaryOf(session.event),
                                  kIncidentIndent, style_);
    for (const IncidentAnalyticsItem& item : session.event.record->transitIncidents)
      lines += paragraph(std::string(kIncidentIndent, ' ') + incidentText(item), kIncidentIndent, style_);
    return lines;
  }
  std::string summaryOf(const WidgetInteractionEvent& event) const {
    const WidgetAnalyticsRecord& record = *event.record;
    const auto duration = static_cast<std::uint64_t>(std::max(0LL, std::llround(event.duration.count())));
    std::vector<std::string> parts = {messageInWords(texts_, record.transitMessageType)};
    if (record.everExpanded.value_or(false)) parts.push_back(texts_("SeenExpanded"));
    if (event.endState == static_cast<std::int64_t>(WidgetSessionEnd::itemOpened))
      parts.push_back(
          texts_("SeenRowOpened", {static_cast<std::uint64_t>(record.tappedItemIndex.value_or(0))}));
    const RiderTexts::Phrase shown{texts_("SeenFor", {duration})};
    return texts_("OfFeed", {shown, RiderTexts::Phrase{texts_.list(parts)}});
  }
  std::string incidentText(const IncidentAnalyticsItem& item) const {
    return texts_("SeenLine", {nameOfLine(item.transitLineMuid, indexes_),
                               item.transitIncidentTitle.value_or(texts_("SeenNoTitle"))});
  }

  const RiderTexts& texts_;
  const std::vector<SharedLineIndex>& indexes_;
  const TerminalStyle& style_;
};

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
  const std::vector<SharedLineIndex> indexes =
      recorded->sessions.empty() ? std::vector<SharedLineIndex>() : feeds.lines().indexes;
  std::string text = RecordWriter(texts, indexes, style).textOf(*recorded);
  if (text.empty()) text = paragraph(texts("NothingRecorded"), 0, style);
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
    return error ? refused(*error) : Report::of(paragraph(session.texts()("RecordsDeleted"), 0, style));
  }
  const bool isOn = command.action == on;
  // The log has named the mistake.
  if (!settings.isReadable()) return {.output = {}, .complaint = {}, .status = 2};
  if (const auto error = settings.set(kAnalyticsSetting, isOn ? "true" : "false")) return refused(*error);
  return Report::of(paragraph(session.texts()(isOn ? "RecordingOn" : "RecordingOff"), 0, style));
}

}  // namespace linewatch::app
