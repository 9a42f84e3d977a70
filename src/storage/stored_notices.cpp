#include "storage/stored_notices.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace linewatch {

namespace {

using notices::LineKey;
using notices::LineState;
using notices::MutedIncident;

/// The least severities that a subscription can have.
constexpr std::array<std::string_view, 3> kSeverities = {"info", "warning", "severe"};

notices::Severity severityNamed(std::string_view name) {
  const auto* const found = std::ranges::find(kSeverities, name);
  return found == kSeverities.end() ? notices::Severity::info
                                    : static_cast<notices::Severity>(found - kSeverities.begin());
}

std::string_view severityColumn(notices::Severity severity) {
  return kSeverities.at(static_cast<std::size_t>(severity));
}

/// Numbers of 64 bits without a sign, as SQLite has only numbers with one.
std::int64_t column(std::uint64_t number) { return static_cast<std::int64_t>(number); }
std::uint64_t numberIn(const SqliteRow& row, int index) {
  return static_cast<std::uint64_t>(row.integer(index));
}

SqliteParameter column(const std::optional<Date>& date) {
  return date ? SqliteParameter(secondsOf(*date)) : SqliteParameter();
}
std::optional<Date> dateIn(const SqliteRow& row, int index) {
  return row.isNull(index) ? std::nullopt : std::optional(Date(Seconds(row.real(index))));
}

std::optional<Error> readRules(SqliteDatabase& database, notices::NoticeRules& rules) {
  rules = {};
  auto error = database.run("SELECT feed, route, hours, severity FROM subscription ORDER BY feed, route", {},
                            [&rules](const SqliteRow& row) {
                              // Hours of a later version count as always, so that nothing is kept back.
                              auto hours = notices::WeeklyHours::parse(row.text(2));
                              rules.subscriptions.push_back({{row.text(0), row.text(1)},
                                                             hours ? *hours : notices::WeeklyHours(),
                                                             severityNamed(row.text(3))});
                            });
  if (error) return error;
  return database.run(
      "SELECT feed, route, muid, content, title, until FROM mute ORDER BY until, feed, route", {},
      [&rules](const SqliteRow& row) {
        notices::Mute mute{.subject = LineKey{row.text(0), row.text(1)}, .until = Date(Seconds(row.real(5)))};
        if (row.text(1).empty())
          mute.subject = MutedIncident{numberIn(row, 2), numberIn(row, 3), row.text(4)};
        rules.mutes.push_back(std::move(mute));
      });
}

std::optional<Error> readState(SqliteDatabase& database, notices::NoticeState& state) {
  state = {};
  auto error = database.run("SELECT feed, route, seen, clear, ended, withheld FROM told_line", {},
                            [&state](const SqliteRow& row) {
                              state[{row.text(0), row.text(1)}] = {.told = {},
                                                                   .seen = Date(Seconds(row.real(2))),
                                                                   .clear = dateIn(row, 3),
                                                                   .ended = dateIn(row, 4),
                                                                   .isWithheld = row.integer(5) != 0};
                            });
  if (error) return error;
  return database.run(
      "SELECT feed, route, content, gist, muid, title, told, gone, replaced FROM told_news ORDER BY feed, "
      "route, "
      "position",
      {}, [&state](const SqliteRow& row) {
        const auto line = state.find({row.text(0), row.text(1)});
        if (line == state.end()) return;
        line->second.told.push_back({.content = numberIn(row, 2),
                                     .gist = numberIn(row, 3),
                                     .muid = numberIn(row, 4),
                                     .title = row.text(5),
                                     .told = Date(Seconds(row.real(6))),
                                     .gone = dateIn(row, 7),
                                     .replaced = dateIn(row, 8)});
      });
}

std::optional<Error> forgetLine(SqliteDatabase& database, const LineKey& line) {
  auto error = database.run("DELETE FROM told_news WHERE feed = ? AND route = ?", {line.feed, line.route});
  if (error) return error;
  return database.run("DELETE FROM told_line WHERE feed = ? AND route = ?", {line.feed, line.route});
}

std::optional<Error> saveLine(SqliteDatabase& database, const LineKey& line, const LineState& state) {
  if (auto error = forgetLine(database, line)) return error;
  auto error = database.run(
      "INSERT INTO told_line (feed, route, seen, clear, ended, withheld) VALUES (?, ?, ?, ?, ?, ?)",
      {line.feed, line.route, secondsOf(state.seen), column(state.clear), column(state.ended),
       std::int64_t{state.isWithheld}});
  std::int64_t position = 0;
  for (const notices::ToldNews& told : state.told) {
    if (error) return error;
    error = database.run(
        "INSERT INTO told_news (feed, route, position, content, gist, muid, title, told, gone, replaced) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        {line.feed, line.route, position++, column(told.content), column(told.gist), column(told.muid),
         told.title, secondsOf(told.told), column(told.gone), column(told.replaced)});
  }
  return error;
}

/// Writes the lines whose state has changed.
std::optional<Error> saveState(SqliteDatabase& database, const notices::NoticeState& before,
                               const notices::NoticeState& now) {
  for (const auto& [line, state] : before) {
    if (now.contains(line)) continue;
    if (auto error = forgetLine(database, line)) return error;
  }
  for (const auto& [line, state] : now) {
    const auto known = before.find(line);
    if (known != before.end() && known->second == state) continue;
    if (auto error = saveLine(database, line, state)) return error;
  }
  return std::nullopt;
}

/// How long the notices of another notification server are kept: it may be the one of another session that
/// still runs.
constexpr Seconds kOtherServersKept{7.0 * 86400};

/// One row of shown_news. `incident` is null when the line runs again.
std::optional<Error> saveShownRow(SqliteDatabase& database, std::string_view server,
                                  const notices::ShownNotice& shown, const notices::Notice::Entry& entry,
                                  const notices::IncidentNews* incident, std::int64_t position, Date now) {
  const notices::IncidentNews none;
  const notices::IncidentNews& news = incident ? *incident : none;
  return database.run(
      "INSERT INTO shown_news (server, tag, position, id, kind, saved, feed, route, name, over, muid, title, "
      "summary, severity, blocking) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
      {server, shown.notice.tag, position, std::int64_t{shown.id.value_or(0)},
       static_cast<std::int64_t>(shown.notice.kind), secondsOf(now), entry.line.feed, entry.line.route,
       entry.name, std::int64_t{entry.isOver},
       incident ? SqliteParameter(column(news.muid)) : SqliteParameter(), news.title, news.summary,
       static_cast<std::int64_t>(news.severity), std::int64_t{news.isBlocking}});
}

std::optional<Error> saveShownNotice(SqliteDatabase& database, std::string_view server,
                                     const notices::ShownNotice& shown, Date now) {
  std::int64_t position = 0;
  std::optional<Error> error;
  for (const notices::Notice::Entry& entry : shown.notice.entries) {
    if (!error && entry.incidents.empty())
      error = saveShownRow(database, server, shown, entry, nullptr, position++, now);
    for (const notices::IncidentNews& incident : entry.incidents) {
      if (!error) error = saveShownRow(database, server, shown, entry, &incident, position++, now);
    }
  }
  return error;
}

/// Adds a row of shown_news to the last notice, or to a new one.
void addShownRow(const SqliteRow& row, std::vector<notices::ShownNotice>& all) {
  const std::string tag = row.text(0);
  if (all.empty() || all.back().notice.tag != tag)
    all.push_back({.notice = {.kind = static_cast<notices::Notice::Kind>(row.integer(2)), .tag = tag},
                   .id = static_cast<std::uint32_t>(row.integer(1))});
  auto& entries = all.back().notice.entries;
  LineKey line{row.text(3), row.text(4)};
  if (entries.empty() || entries.back().line != line)
    entries.push_back({.line = std::move(line), .name = row.text(5), .isOver = row.integer(6) != 0});
  if (row.isNull(7)) return;
  entries.back().incidents.push_back({.muid = numberIn(row, 7),
                                      .title = row.text(8),
                                      .summary = row.text(9),
                                      .severity = static_cast<notices::Severity>(row.integer(10)),
                                      .isBlocking = row.integer(11) != 0});
}

/// The key columns of a mute: feed and route of a line, or the id of an incident.
struct MuteKey {
  std::string_view feed;
  std::string_view route;
  std::int64_t muid = 0;
};

MuteKey keyOf(const notices::Mute& mute) {
  if (const auto* const line = std::get_if<LineKey>(&mute.subject)) return {line->feed, line->route, 0};
  return {"", "", column(std::get<MutedIncident>(mute.subject).muid)};
}

}  // namespace

Outcome<notices::NoticeRules> StoredNotices::rules() const {
  notices::NoticeRules rules;
  const auto error = database_->read([&](SqliteDatabase& database) { return readRules(database, rules); });
  return error ? Outcome<notices::NoticeRules>(*error) : std::move(rules);
}

Outcome<notices::NoticeState> StoredNotices::state() const {
  notices::NoticeState state;
  const auto error = database_->read([&](SqliteDatabase& database) { return readState(database, state); });
  return error ? Outcome<notices::NoticeState>(*error) : std::move(state);
}

Outcome<bool> StoredNotices::subscribe(const notices::Subscription& subscription) {
  const LineKey& line = subscription.line;
  const std::string hours = subscription.hours.text();
  bool isChanged = false;
  const auto error = database_->write([&](SqliteDatabase& database) -> std::optional<Error> {
    auto failed = database.run(
        "INSERT INTO subscription (feed, route, hours, severity) VALUES (?, ?, ?, ?) ON CONFLICT DO UPDATE "
        "SET "
        "hours = excluded.hours, severity = excluded.severity WHERE hours <> excluded.hours OR severity <> "
        "excluded.severity",
        {line.feed, line.route, hours, severityColumn(subscription.from)});
    isChanged = database.changedRowCount() > 0;
    return failed || !isChanged ? failed : forgetLine(database, line);
  });
  return error ? Outcome<bool>(*error) : isChanged;
}

Outcome<bool> StoredNotices::unsubscribe(const LineKey& line) {
  bool isChanged = false;
  const auto error = database_->write([&](SqliteDatabase& database) -> std::optional<Error> {
    auto failed =
        database.run("DELETE FROM subscription WHERE feed = ? AND route = ?", {line.feed, line.route});
    isChanged = database.changedRowCount() > 0;
    return failed ? failed : forgetLine(database, line);
  });
  return error ? Outcome<bool>(*error) : isChanged;
}

std::optional<Error> StoredNotices::mute(const notices::Mute& mute, Date now) {
  const MuteKey key = keyOf(mute);
  const auto* const incident = std::get_if<MutedIncident>(&mute.subject);
  return database_->write([&](SqliteDatabase& database) -> std::optional<Error> {
    auto error = database.run("DELETE FROM mute WHERE until <= ?", {secondsOf(now)});
    if (error) return error;
    return database.run(
        "INSERT OR REPLACE INTO mute (feed, route, muid, content, title, until) VALUES (?, ?, ?, ?, ?, ?)",
        {key.feed, key.route, key.muid, incident ? column(incident->content) : 0,
         incident ? std::string_view(incident->title) : "", secondsOf(mute.until)});
  });
}

Outcome<bool> StoredNotices::unmute(const notices::Mute& mute) {
  const MuteKey key = keyOf(mute);
  const auto* const incident = std::get_if<MutedIncident>(&mute.subject);
  bool isChanged = false;
  const auto error = database_->write([&](SqliteDatabase& database) {
    // The agency may have given the incident another id since.
    auto failed = database.run(
        "DELETE FROM mute WHERE feed = ? AND route = ? AND (muid = ? OR (route = '' AND content = ?))",
        {key.feed, key.route, key.muid, incident ? column(incident->content) : 0});
    isChanged = database.changedRowCount() > 0;
    return failed;
  });
  return error ? Outcome<bool>(*error) : isChanged;
}

Outcome<notices::NoticeUpdate> StoredNotices::update(const std::optional<notices::WeeklyHours>& quietHours,
                                                     std::span<const notices::LineNews> news,
                                                     const notices::Moment& now, bool canTell) {
  notices::NoticeUpdate update;
  notices::NoticeState before;
  const auto compute = [&](SqliteDatabase& database) -> std::optional<Error> {
    notices::NoticeRules rules;
    if (auto error = readRules(database, rules)) return error;
    if (auto error = readState(database, before)) return error;
    rules.quietHours = quietHours;
    update = notices::update(before, rules, news, now, canTell);
    return std::nullopt;
  };
  auto error = database_->read(compute);
  if (error) return *std::move(error);
  if (update.state == before && update.notices.empty()) return update;
  // Another program may have told the news meanwhile, so it all counts only within the transaction.
  error = database_->write([&](SqliteDatabase& database) -> std::optional<Error> {
    auto failed = compute(database);
    return failed ? failed : saveState(database, before, update.state);
  });
  if (error) return *std::move(error);
  return update;
}

Outcome<std::vector<notices::ShownNotice>> StoredNotices::shown(const std::string& server) const {
  std::vector<notices::ShownNotice> all;
  const auto error = database_->read([&](SqliteDatabase& database) {
    all.clear();
    return database.run(
        "SELECT tag, id, kind, feed, route, name, over, muid, title, summary, severity, blocking FROM "
        "shown_news "
        "WHERE server = ? ORDER BY tag, position",
        {server}, [&all](const SqliteRow& row) { addShownRow(row, all); });
  });
  return error ? Outcome<std::vector<notices::ShownNotice>>(*error) : std::move(all);
}

std::optional<Error> StoredNotices::setShown(const std::string& server,
                                             std::span<const notices::ShownNotice> shown, Date now) {
  return database_->write([&](SqliteDatabase& database) {
    auto error = database.run("DELETE FROM shown_news WHERE server = ? OR saved < ?",
                              {server, secondsOf(now - kOtherServersKept)});
    for (const notices::ShownNotice& one : shown) {
      if (!error) error = saveShownNotice(database, server, one, now);
    }
    return error;
  });
}

}  // namespace linewatch
