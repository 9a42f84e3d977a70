#include "storage/stored_analytics.h"

#include <memory>
#include <utility>

namespace linewatch {

namespace {

template <class T>
SqliteParameter integerOrNothing(const std::optional<T>& value) {
  return value ? SqliteParameter(static_cast<std::int64_t>(*value)) : SqliteParameter();
}

std::optional<std::int64_t> optionalInteger(const SqliteRow& row, int column) {
  return row.isNull(column) ? std::nullopt : std::optional(row.integer(column));
}

std::optional<bool> optionalBool(const SqliteRow& row, int column) {
  return row.isNull(column) ? std::nullopt : std::optional(row.integer(column) != 0);
}

std::optional<Error> insertSession(SqliteDatabase& database, const WidgetInteractionEvent& event,
                                   const WidgetAnalyticsRecord& record, const UserSessionSnapshot& session) {
  return database.run(
      "INSERT INTO widget_session (user_session, interaction_type, end_state, was_locked, start, duration, "
      "initially_expanded, ever_expanded, transit_message_type, tapped_item_index) "
      "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
      {session.sessionIdentifier, event.interactionType, event.endState, std::int64_t{event.wasLocked},
       secondsOf(event.startDate), event.duration.count(), integerOrNothing(record.initiallyExpanded),
       integerOrNothing(record.everExpanded), integerOrNothing(record.transitMessageType),
       integerOrNothing(record.tappedItemIndex)});
}

std::optional<Error> insertIncidents(SqliteDatabase& database, const WidgetAnalyticsRecord& record,
                                     std::int64_t session) {
  std::int64_t position = 0;
  for (const IncidentAnalyticsItem& item : record.transitIncidents) {
    auto error = database.run(
        "INSERT INTO shown_incident (widget_session, position, line_muid, title) VALUES (?, ?, ?, ?)",
        {session, position++, item.transitLineMuid, parameterOf(item.transitIncidentTitle)});
    if (error) return error;
  }
  return std::nullopt;
}

std::optional<Error> dropOldSessions(SqliteDatabase& database, std::int64_t newest) {
  const std::int64_t last = newest - kKeptAnalyticsCount;
  auto error = database.run("DELETE FROM shown_incident WHERE widget_session <= ?", {last});
  return error ? error : database.run("DELETE FROM widget_session WHERE id <= ?", {last});
}

std::optional<Error> insertEvent(SqliteDatabase& database, const WidgetInteractionEvent& event,
                                 const UserSessionSnapshot& session) {
  const WidgetAnalyticsRecord record = event.record ? *event.record : WidgetAnalyticsRecord{};
  auto error = insertSession(database, event, record, session);
  const std::int64_t id = database.lastRowId();
  if (!error) error = insertIncidents(database, record, id);
  return error ? error : dropOldSessions(database, id);
}

std::shared_ptr<WidgetAnalyticsRecord> recordIn(const SqliteRow& row) {
  auto record = std::make_shared<WidgetAnalyticsRecord>();
  record->initiallyExpanded = optionalBool(row, 7);
  record->everExpanded = optionalBool(row, 8);
  record->transitMessageType = optionalInteger(row, 9);
  record->tappedItemIndex = optionalInteger(row, 10);
  return record;
}

StoredWidgetSession sessionIn(const SqliteRow& row, std::shared_ptr<const WidgetAnalyticsRecord> record) {
  return {{row.text(1)},
          {row.integer(2), row.integer(3), std::move(record), row.integer(4) != 0, Date(Seconds(row.real(5))),
           Seconds(row.real(6))}};
}

}  // namespace

void StoredAnalyticsLogger::captureEvent(const WidgetInteractionEvent& event,
                                         const UserSessionSnapshot& session) {
  if (!isOn_()) return;
  database_->save(
      [event, session](SqliteDatabase& database) { return insertEvent(database, event, session); });
}

void StoredUsageRecorder::captureUserAction(std::string_view action, std::int64_t target,
                                            const std::optional<std::string>& eventValue) {
  if (!isOn_()) return;
  database_->save([time = secondsOf(now_()), action = std::string(action), target,
                   eventValue](SqliteDatabase& database) {
    auto failed = database.run("INSERT INTO user_action (time, action, target, value) VALUES (?, ?, ?, ?)",
                               {time, action, target, parameterOf(eventValue)});
    if (failed) return failed;
    return database.run("DELETE FROM user_action WHERE id <= ?",
                        {database.lastRowId() - kKeptAnalyticsCount});
  });
}

Outcome<std::vector<StoredWidgetSession>> storedWidgetSessions(StoredDatabase& database) {
  std::vector<StoredWidgetSession> sessions;
  std::int64_t last = 0;
  std::shared_ptr<WidgetAnalyticsRecord> record;
  const auto add = [&](const SqliteRow& row) {
    if (sessions.empty() || row.integer(0) != last) {
      last = row.integer(0);
      record = recordIn(row);
      sessions.push_back(sessionIn(row, record));
    }
    if (!row.isNull(11)) record->transitIncidents.push_back({row.text(11), row.optionalText(12)});
  };
  // One statement, so that a session recorded meanwhile by another program is read whole or not at all.
  const auto error = database.read([&](SqliteDatabase& open) {
    return open.run(
        "SELECT id, user_session, interaction_type, end_state, was_locked, start, duration, "
        "initially_expanded, ever_expanded, transit_message_type, tapped_item_index, line_muid, title "
        "FROM widget_session LEFT JOIN shown_incident ON widget_session = id ORDER BY id, position",
        {}, add);
  });
  return error ? Outcome<std::vector<StoredWidgetSession>>(*error) : std::move(sessions);
}

Outcome<std::vector<StoredUserAction>> storedUserActions(StoredDatabase& database) {
  std::vector<StoredUserAction> actions;
  const auto error = database.read([&](SqliteDatabase& open) {
    return open.run(
        "SELECT time, action, target, value FROM user_action ORDER BY id", {}, [&](const SqliteRow& row) {
          actions.push_back({Date(Seconds(row.real(0))), row.text(1), row.integer(2), row.optionalText(3)});
        });
  });
  return error ? Outcome<std::vector<StoredUserAction>>(*error) : std::move(actions);
}

std::optional<Error> clearAnalytics(StoredDatabase& database) {
  return database.write([](SqliteDatabase& open) {
    return open.runScript("DELETE FROM shown_incident; DELETE FROM widget_session; DELETE FROM user_action");
  });
}

}  // namespace linewatch
