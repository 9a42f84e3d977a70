#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

#include "app/commands.h"
#include "app/favorite_lines.h"
#include "app/text_table.h"
#include "machine/terminal_line.h"
#include "notices/notice_rules.h"
#include "shared/failure.h"
#include "shared/shell_words.h"

namespace linewatch::app {

namespace {

using notices::LineKey;
using notices::Mute;
using notices::MutedIncident;
using notices::Subscription;

constexpr std::array<std::string_view, 3> kSeverityWords = {"info", "warning", "severe"};

LineKey keyOf(const StoredFavorite& favorite) { return {favorite.feed, favorite.subject}; }

std::string favoriteName(const FavoriteLine& favorite) {
  return favorite.line ? favorite.line->name() : favorite.favorite.subject;
}

/// A favourite by its line's name, its route id, or FEED:ROUTE_ID.
Outcome<FavoriteLine> favoriteCalled(Session& session, const std::string& name) {
  const auto favorites = favoriteLines(session);
  if (!favorites) return favorites.error();
  const auto isCalled = [&name](const FavoriteLine& line) {
    const StoredFavorite& favorite = line.favorite;
    return favorite.subject == name || favorite.feed + ":" + favorite.subject == name;
  };
  auto found = std::ranges::find_if(*favorites, isCalled);
  if (found == favorites->end()) {
    std::vector<FavoriteLine> named;
    std::ranges::copy_if(*favorites, std::back_inserter(named),
                         [&name](const FavoriteLine& line) { return favoriteName(line) == name; });
    if (named.size() == 1) return named.front();
    return failure(named.empty() ? FailureCode::notFound : FailureCode::invalid, "line \"" + name + "\"", "",
                   named.empty() ? "it is no favourite; linewatch favorites lists them"
                                 : "several favourites have this name; say FEED:ROUTE_ID");
  }
  return *found;
}

/// Null when the line has no notifications.
const Subscription* subscriptionOf(const LineKey& line, const notices::NoticeRules& rules) {
  const auto found = std::ranges::find(rules.subscriptions, line, &Subscription::line);
  return found == rules.subscriptions.end() ? nullptr : &*found;
}

/// As the command line takes it: "weekdays 7 to 9 --from severe".
std::string subscriptionInWords(const Subscription& subscription) {
  std::string words = subscription.hours.text();
  if (subscription.from != notices::Severity::info)
    words += " --from " + std::string(kSeverityWords.at(static_cast<std::size_t>(subscription.from)));
  return words;
}

Outcome<StoredNotices> storedNotices(Session& session) {
  SavedState* const saved = session.platform().saved();
  if (saved) return saved->notices();
  return failure(FailureCode::invalid, "notifications", "", "a run without saved state has none");
}

// ---- The list ----

/// The line's mute that is in force; null if there is none.
const Mute* muteOf(const LineKey& line, const notices::NoticeRules& rules, Date now) {
  const auto found = std::ranges::find_if(rules.mutes, [&line, now](const Mute& mute) {
    const auto* const muted = std::get_if<LineKey>(&mute.subject);
    return muted && *muted == line && now < mute.until;
  });
  return found == rules.mutes.end() ? nullptr : &*found;
}

void addMutedIncidents(const notices::NoticeRules& rules, Date now, const RiderTexts& texts,
                       std::vector<std::vector<TableCell>>& rows) {
  std::set<std::uint64_t> listed;
  for (const Mute& mute : rules.mutes) {
    const auto* const incident = std::get_if<MutedIncident>(&mute.subject);
    if (!incident || mute.until <= now || !listed.insert(incident->content).second) continue;
    rows.push_back({{.text = terminalLine(incident->title)},
                    {.text = texts("MutedUntil", {texts.dateAndTime(mute.until, now)}), .isFaint = true},
                    {}});
  }
}

Report listNotifications(Session& session, const notices::NoticeRules& rules, const TerminalStyle& style) {
  const auto favorites = favoriteLines(session);
  if (!favorites) return refused(favorites.error());
  const Date now = session.platform().mainLoop().now();
  const RiderTexts& texts = session.texts();
  std::vector<std::vector<TableCell>> rows;
  bool hasNotifications = false;
  // The choice for a line that is no favourite waits until the line is one again.
  for (const FavoriteLine& favorite : *favorites) {
    const LineKey line = keyOf(favorite.favorite);
    const Subscription* const subscription = subscriptionOf(line, rules);
    const Mute* const mute = muteOf(line, rules, now);
    if (!subscription && !mute) continue;
    if (subscription) hasNotifications = true;
    rows.push_back(
        {{.text = terminalLine(favoriteName(favorite))},
         {.text = subscription ? subscriptionInWords(*subscription) : "off"},
         {.text = mute ? texts("MutedUntil", {texts.dateAndTime(mute->until, now)}) : std::string(),
          .isFaint = true}});
  }
  addMutedIncidents(rules, now, texts, rows);
  std::string none;
  if (!hasNotifications) none = texts("NoNotifications", {"linewatch notify LINE on"}) + "\n";
  return Report::of(none + (rows.empty() ? std::string() : textTable(rows, style)));
}

// ---- Changes ----

/// The subscription that the words ask for. Without words the hours stay as they are.
Outcome<Subscription> subscriptionIn(const NotifyCommand& command, const LineKey& line,
                                     const Subscription* before) {
  Subscription wanted = before ? *before : Subscription{.line = line, .hours = {}};
  std::string words;
  for (const std::string& word : command.when) words += (words.empty() ? "" : " ") + word;
  if (!words.empty()) {
    auto hours = notices::WeeklyHours::parse(words == "on" ? "always" : words);
    if (!hours) return hours.error();
    wanted.hours = *std::move(hours);
  }
  if (command.from)
    wanted.from = static_cast<notices::Severity>(std::ranges::find(kSeverityWords, *command.from) -
                                                 kSeverityWords.begin());
  return wanted;
}

/// Says that the line is muted, and how to end that; empty if it is not. `called`: the line as the user names
/// it.
std::string muteNote(const LineKey& line, const std::string& name, const std::string& called,
                     const notices::NoticeRules& rules, Session& session) {
  const Date now = session.platform().mainLoop().now();
  const RiderTexts& texts = session.texts();
  const Mute* const mute = muteOf(line, rules, now);
  if (!mute) return {};
  return texts("IsMutedUntil", {name, texts.dateAndTime(mute->until, now)}) + "\n" +
         texts("ToUnmute", {"linewatch mute " + shellQuoted(called) + " off"}) + "\n";
}

Report changeNotifications(Session& session, StoredNotices stored, const notices::NoticeRules& rules,
                           const NotifyCommand& command) {
  const auto favorite = favoriteCalled(session, command.line);
  if (!favorite) return refused(favorite.error());
  const LineKey line = keyOf(favorite->favorite);
  const std::string name = favoriteName(*favorite);
  const Subscription* const before = subscriptionOf(line, rules);
  const RiderTexts& texts = session.texts();
  const bool isOff = command.when == std::vector<std::string>{"off"};
  const bool isQuestion = command.when.empty() && !command.from;
  if (isOff) {
    const auto removed = stored.unsubscribe(line);
    if (!removed) return refused(removed.error());
  }
  if (isOff || (isQuestion && !before)) return Report::of(texts("NotificationsOff", {name}) + "\n");
  const auto wanted = subscriptionIn(command, line, before);
  if (!wanted) return refused(wanted.error());
  if (!isQuestion) {
    const auto changed = stored.subscribe(*wanted);
    if (!changed) return refused(changed.error());
  }
  return Report::of(texts("NotificationsOn", {name, subscriptionInWords(*wanted)}) + "\n" +
                    muteNote(line, name, command.line, rules, session));
}

/// Seconds of "90m", "2h" or "1d", from a minute to 30 days; absent for anything else.
std::optional<Seconds> parseMuteTime(std::string_view text) {
  constexpr std::pair<char, double> kUnits[] = {{'m', 60}, {'h', 3600}, {'d', 86400}};
  const auto* const unit =
      std::ranges::find(kUnits, text.empty() ? ' ' : text.back(), &std::pair<char, double>::first);
  if (unit == std::end(kUnits)) return std::nullopt;
  std::uint32_t count = 0;
  const char* const end = text.data() + text.size() - 1;
  const auto [stop, trouble] = std::from_chars(text.data(), end, count);
  const Seconds time{static_cast<double>(count) * unit->second};
  const bool isAllowed = time >= Seconds(60) && time <= Seconds(30.0 * 86400);
  return trouble == std::errc() && stop == end && isAllowed ? std::optional(time) : std::nullopt;
}

std::string lowercase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

/// The incidents that were told and go on, or are muted, and have the words in their title.
std::vector<MutedIncident> incidentsCalled(const notices::NoticeState& state,
                                           const notices::NoticeRules& rules, Date now,
                                           const std::string& words) {
  std::vector<MutedIncident> found;
  const auto add = [&](const MutedIncident& incident) {
    const bool isNew = std::ranges::none_of(found, [&incident](const MutedIncident& other) {
      return other.muid == incident.muid || other.content == incident.content;
    });
    if (isNew && lowercase(incident.title).find(lowercase(words)) != std::string::npos)
      found.push_back(incident);
  };
  for (const auto& [line, known] : state) {
    // The newest text of an incident is the last one.
    // NOLINTNEXTLINE(modernize-loop-convert): Clang 14 cannot compile the reversed view of the C++ library
    for (auto told = known.told.rbegin(); told != known.told.rend(); ++told) {
      if (!told->gone) add({told->muid, told->content, told->title});
    }
  }
  for (const Mute& mute : rules.mutes) {
    const auto* const incident = std::get_if<MutedIncident>(&mute.subject);
    if (incident && now < mute.until) add(*incident);
  }
  return found;
}

/// A line or an incident to mute, and its name for messages.
struct Muted {
  std::variant<LineKey, MutedIncident> subject;
  std::string name;
};

Outcome<Muted> subjectCalled(Session& session, const StoredNotices& stored, const std::string& words) {
  const auto favorite = favoriteCalled(session, words);
  if (favorite) return Muted{keyOf(favorite->favorite), favoriteName(*favorite)};
  const auto state = stored.state();
  if (!state) return state.error();
  const auto rules = stored.rules();
  if (!rules) return rules.error();
  const auto incidents = incidentsCalled(*state, *rules, session.platform().mainLoop().now(), words);
  if (incidents.size() == 1) return Muted{incidents.front(), incidents.front().title};
  return failure(incidents.empty() ? FailureCode::notFound : FailureCode::invalid, "\"" + words + "\"", "",
                 incidents.empty() ? "neither a favourite nor an incident with notifications has this name"
                                   : "several incidents have these words in their titles; say more of them");
}

}  // namespace

Report notify(Session& session, const NotifyCommand& command, const TerminalStyle& style) {
  auto stored = storedNotices(session);
  if (!stored) return refused(stored.error());
  const auto rules = stored->rules();
  if (!rules) return refused(rules.error());
  return command.line.empty() ? listNotifications(session, *rules, style)
                              : changeNotifications(session, *stored, *rules, command);
}

Report mute(Session& session, const MuteCommand& command) {
  auto stored = storedNotices(session);
  if (!stored) return refused(stored.error());
  const auto time = parseMuteTime(command.duration);
  const bool isOff = command.duration == "off";
  if (!time && !isOff)
    return refused(
        failure(FailureCode::invalid, "mute", "",
                "\"" + command.duration + "\" is neither off nor a time from 1m to 30d such as 2h"));
  const auto muted = subjectCalled(session, *stored, command.subject);
  if (!muted) return refused(muted.error());
  const Date now = session.platform().mainLoop().now();
  const Mute change{.subject = muted->subject, .until = now + time.value_or(Seconds(0))};
  const RiderTexts& texts = session.texts();
  if (isOff) {
    const auto removed = stored->unmute(change);
    return removed ? Report::of(texts("NotMuted", {muted->name}) + "\n") : refused(removed.error());
  }
  if (const auto error = stored->mute(change, now)) return refused(*error);
  return Report::of(texts("IsMutedUntil", {muted->name, texts.dateAndTime(change.until, now)}) + "\n");
}

}  // namespace linewatch::app
