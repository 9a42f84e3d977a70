#include "notices/notice_update.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace linewatch::notices {

namespace {

constexpr std::string_view kSummaryTag = "summary";
/// How exact `LineState::seen` is, so that an answer without news seldom changes the state.
constexpr Seconds kSeenStep{3600};

bool isMuted(const NoticeRules& rules, const LineKey& line, Date now) {
  return std::ranges::any_of(rules.mutes, [&](const Mute& mute) {
    const auto* const muted = std::get_if<LineKey>(&mute.subject);
    return muted && *muted == line && now < mute.until;
  });
}

bool isMuted(const NoticeRules& rules, std::uint64_t muid, std::uint64_t content, Date now) {
  return std::ranges::any_of(rules.mutes, [&](const Mute& mute) {
    const auto* const muted = std::get_if<MutedIncident>(&mute.subject);
    return muted && (muted->muid == muid || muted->content == content) && now < mute.until;
  });
}

bool isMuted(const NoticeRules& rules, const IncidentNews& incident, Date now) {
  return isMuted(rules, incident.muid, contentOf(incident), now);
}

/// An incident of the answer, and whether the user knows it.
struct WantedIncident {
  const IncidentNews* incident = nullptr;
  std::uint64_t content = 0;
  bool isTold = false;
};

/// Follows one line through one answer.
class LineFollower {
 public:
  LineFollower(const Subscription& subscription, const NoticeRules& rules, const LineNews& news,
               const Moment& now, LineState state)
      : subscription_(subscription), rules_(rules), news_(news), now_(now), state_(std::move(state)) {}

  /// Takes the incidents as known to the user.
  void begin() {
    state_.seen = now_.date;
    for (const WantedIncident& wanted : wantedIncidents()) takeAsTold(*wanted.incident);
  }

  /// The line's notice; absent when there is nothing to tell now.
  std::optional<Notice> follow(bool canTell) {
    forgetOldEnd();
    if (now_.date - state_.seen >= kSeenStep) state_.seen = now_.date;
    followTold();
    noteEnd();
    const std::vector<WantedIncident> wanted = wantedIncidents();
    const bool hasNews = !std::ranges::all_of(wanted, &WantedIncident::isTold);
    if (hasNews) state_.ended.reset();
    const bool isQuiet = rules_.quietHours && rules_.quietHours->contains(now_);
    isHeldBack_ = !canTell && !isQuiet && (hasNews || state_.ended) && mayTell();
    if (isQuiet || !(hasNews || state_.ended) || !canTell || !mayTell()) {
      state_.isWithheld = (hasNews || state_.ended) && (isQuiet || state_.isWithheld);
      return std::nullopt;
    }
    return hasNews ? tellNews(wanted) : tellEnd();
  }

  const LineState& state() const { return state_; }
  /// Whether the last notice of the line no longer holds.
  bool mustWithdraw() const { return mustWithdraw_; }
  /// Whether there is a notice that only `canTell` holds back.
  bool isHeldBack() const { return isHeldBack_; }
  /// How many incidents of the line's notice are news; they are its first ones.
  std::size_t newsCount() const { return newsCount_; }

 private:
  bool mayTell() const {
    return subscription_.hours.contains(now_) && !isMuted(rules_, subscription_.line, now_.date);
  }

  /// Whether the incident is as severe as the user wants it.
  bool isRelevant(const IncidentNews& incident) const {
    return incident.severity >= subscription_.from || incident.isBlocking;
  }
  bool isClear() const {
    return std::ranges::none_of(news_.incidents,
                                [this](const IncidentNews& incident) { return isRelevant(incident); });
  }

  bool isLongAgo(const std::optional<Date>& date, Seconds time) const {
    return date && now_.date - *date >= time;
  }

  /// The text of the incident that was told last; null if there is none.
  const ToldNews* lastTold(std::uint64_t muid) const {
    // NOLINTNEXTLINE(modernize-loop-convert): Clang 14 cannot compile the reversed view of the C++ library
    for (auto told = state_.told.rbegin(); told != state_.told.rend(); ++told) {
      if (told->muid == muid) return &*told;
    }
    return nullptr;
  }

  bool isTold(const IncidentNews& incident, std::uint64_t content) const {
    const auto same = std::ranges::find(state_.told, content, &ToldNews::content);
    const ToldNews* const last = lastTold(incident.muid);
    // An earlier text is back, which is news once it lasts.
    if (same != state_.told.end())
      return !last || last->content == content || !isLongAgo(last->replaced, kSameText);
    return last && last->gist == gistOf(incident) && !isLongAgo(last->told, kSameText);
  }

  std::vector<WantedIncident> wantedIncidents() const {
    std::vector<WantedIncident> wanted;
    for (const IncidentNews& incident : news_.incidents) {
      const std::uint64_t content = contentOf(incident);
      const bool isRepeated = std::ranges::find(wanted, content, &WantedIncident::content) != wanted.end();
      if (isRelevant(incident) && !isRepeated && !isMuted(rules_, incident, now_.date))
        wanted.push_back({&incident, content, isTold(incident, content)});
    }
    return wanted;
  }

  void takeAsTold(const IncidentNews& incident) {
    const std::uint64_t content = contentOf(incident);
    std::erase_if(state_.told, [content](const ToldNews& told) { return told.content == content; });
    state_.told.push_back({.content = content,
                           .gist = gistOf(incident),
                           .muid = incident.muid,
                           .title = incident.title,
                           .told = now_.date});
  }

  /// The incident of the answer that the user knows by its id or, if the agency has given it another id, by
  /// its content; null if there is none.
  const IncidentNews* currentOf(const ToldNews& told) const {
    const auto& incidents = news_.incidents;
    auto found = std::ranges::find(incidents, told.muid, &IncidentNews::muid);
    if (found == incidents.end()) found = std::ranges::find(incidents, told.content, contentOf);
    return found == incidents.end() ? nullptr : &*found;
  }

  void followTold() {
    // Decided on the state before this answer: a text that is back now was away until now.
    std::vector<ToldNews> known;
    std::ranges::copy_if(state_.told, std::back_inserter(known),
                         [&](const ToldNews& told) { return !isForgotten(told); });
    state_.told = std::move(known);
    followNewIds();
    for (ToldNews& told : state_.told) {
      const IncidentNews* const current = currentOf(told);
      if (current) {
        told.muid = current->muid;
        told.gone.reset();
      } else if (!told.gone) {
        told.gone = now_.date;
      }
      if (std::ranges::find(news_.incidents, told.content, contentOf) != news_.incidents.end())
        told.replaced.reset();
      else if (current && !told.replaced)
        told.replaced = now_.date;
    }
    // The last one stays, because the end of the incidents must still be told.
    const auto isPresent = [](const ToldNews& told) { return !told.gone; };
    if (std::ranges::any_of(state_.told, isPresent))
      std::erase_if(state_.told, [&](const ToldNews& told) { return isLongAgo(told.gone, kSameNews); });
  }

  /// Some agencies give an incident another id with each change of its numbers: "10 minutes delay" goes, and
  /// "9 minutes delay" of another id comes in the same answer.
  void followNewIds() {
    for (const ToldNews& told : state_.told) {
      if (told.gone || currentOf(told)) continue;
      const auto renamed = std::ranges::find_if(news_.incidents, [&](const IncidentNews& incident) {
        return gistOf(incident) == told.gist && !isKnown(incident);
      });
      if (renamed == news_.incidents.end()) continue;
      const std::uint64_t before = told.muid;
      for (ToldNews& text : state_.told) {
        if (text.muid == before) text.muid = renamed->muid;
      }
    }
  }

  /// Whether the user was told of an incident with this id or this text.
  bool isKnown(const IncidentNews& incident) const {
    const std::uint64_t content = contentOf(incident);
    return std::ranges::any_of(state_.told, [&](const ToldNews& told) {
      return told.muid == incident.muid || told.content == content;
    });
  }

  /// Whether the text is news again when it returns.
  bool isForgotten(const ToldNews& told) const {
    const bool isBack = currentOf(told) != nullptr;
    return (isBack && isLongAgo(told.gone, kSameNews)) ||
           (lastTold(told.muid) != &told && isLongAgo(told.replaced, kSameText));
  }

  /// Incidents that ended at an unknown time long after the line was last seen, e.g. while the program did
  /// not run.
  void forgetOldEnd() {
    if (!isClear() || now_.date - state_.seen <= kEndIsNews || state_.told.empty()) return;
    state_.told.clear();
    mustWithdraw_ = true;
  }

  void noteEnd() {
    if (!isClear())
      state_.clear.reset();
    else if (!state_.clear)
      state_.clear = now_.date;
    if (isLongAgo(state_.clear, kSettled) && !state_.told.empty()) {
      const bool wasMuted = std::ranges::all_of(state_.told, [&](const ToldNews& told) {
        return isMuted(rules_, told.muid, told.content, now_.date);
      });
      if (!wasMuted) state_.ended = state_.clear;
      state_.told.clear();
      mustWithdraw_ = true;
    }
    if (state_.ended && now_.date - *state_.ended > kEndIsNews) state_.ended.reset();
  }

  Notice begunNotice(Notice::Kind kind) {
    state_.ended.reset();
    state_.isWithheld = false;
    mustWithdraw_ = false;
    return {
        .kind = kind, .tag = tagOf(subscription_.line), .entries = {{subscription_.line, news_.name, {}}}};
  }

  Notice tellNews(const std::vector<WantedIncident>& wanted) {
    // A new text of an incident that was told before is a change.
    const bool isAllChange = std::ranges::all_of(wanted, [this](const WantedIncident& incident) {
      return incident.isTold || lastTold(incident.incident->muid);
    });
    Notice notice = begunNotice(isAllChange ? Notice::Kind::changed : Notice::Kind::newIncident);
    for (const bool told : {false, true}) {
      for (const WantedIncident& incident : wanted) {
        if (incident.isTold == told) notice.entries.front().incidents.push_back(*incident.incident);
      }
    }
    for (const WantedIncident& incident : wanted) {
      if (incident.isTold) continue;
      takeAsTold(*incident.incident);
      ++newsCount_;
    }
    return notice;
  }

  Notice tellEnd() {
    Notice notice = begunNotice(Notice::Kind::over);
    Notice::Entry& entry = notice.entries.front();
    entry.isOver = true;
    std::ranges::copy_if(
        news_.incidents, std::back_inserter(entry.incidents),
        [this](const IncidentNews& incident) { return !isMuted(rules_, incident, now_.date); });
    newsCount_ = entry.incidents.size();
    return notice;
  }

  const Subscription& subscription_;
  const NoticeRules& rules_;
  const LineNews& news_;
  const Moment& now_;
  LineState state_;
  bool mustWithdraw_ = false;
  bool isHeldBack_ = false;
  std::size_t newsCount_ = 0;
};

/// A notice that other lines can still join.
struct Draft {
  Notice notice;
  /// How many incidents are news; the others were told before.
  std::size_t newsCount = 0;

  std::span<const IncidentNews> news() const {
    return std::span(notice.entries.front().incidents).first(newsCount);
  }
};

bool isSameNews(const Draft& draft, const Draft& other) {
  return draft.notice.kind == other.notice.kind && std::ranges::equal(draft.news(), other.news());
}

/// Adds a notice, or its line to one with the same news. Then the line's own earlier notice no longer holds.
/// Incidents that were told before are left out if the lines do not share them.
void addNotice(Draft draft, std::vector<Draft>& drafts, NoticeUpdate& result) {
  const auto same =
      std::ranges::find_if(drafts, [&](const Draft& other) { return isSameNews(draft, other); });
  if (same == drafts.end()) return drafts.push_back(std::move(draft));
  result.withdrawn.push_back(std::move(draft.notice.tag));
  std::vector<Notice::Entry>& entries = same->notice.entries;
  entries.push_back(std::move(draft.notice.entries.front()));
  if (entries.back().incidents == entries.front().incidents) return;
  for (Notice::Entry& entry : entries) entry.incidents.resize(same->newsCount);
}

/// Adds the notices that quiet hours held back as one.
void addSummary(std::vector<Draft> withheld, std::vector<Draft>& drafts, NoticeUpdate& result) {
  if (withheld.size() == 1) return addNotice(std::move(withheld.front()), drafts, result);
  if (withheld.empty()) return;
  Notice summary{.kind = Notice::Kind::summary, .tag = std::string(kSummaryTag), .entries = {}};
  for (auto& [notice, newsCount] : withheld) {
    result.withdrawn.push_back(std::move(notice.tag));
    summary.entries.push_back(std::move(notice.entries.front()));
  }
  drafts.push_back({std::move(summary)});
}

const Subscription* subscriptionOf(const LineKey& line, const NoticeRules& rules) {
  const auto found = std::ranges::find(rules.subscriptions, line, &Subscription::line);
  return found == rules.subscriptions.end() ? nullptr : &*found;
}

Severity severityOfIncident(const IncidentNews& incident) {
  if (incident.isBlocking) return Severity::severe;
  return incident.severity == Severity::unknown ? Severity::warning : incident.severity;
}

}  // namespace

std::string tagOf(const LineKey& line) { return line.feed + ":" + line.route; }

Severity severityOf(const Notice& notice) {
  Severity worst = Severity::info;
  for (const Notice::Entry& entry : notice.entries) {
    if (entry.isOver) continue;
    for (const IncidentNews& incident : entry.incidents)
      worst = std::max(worst, severityOfIncident(incident));
  }
  return worst;
}

NoticeUpdate update(const NoticeState& state, const NoticeRules& rules, std::span<const LineNews> news,
                    const Moment& now, bool canTell) {
  NoticeUpdate result{.state = state, .notices = {}, .withdrawn = {}};
  std::erase_if(result.state, [&](const auto& known) {
    const bool isWanted = subscriptionOf(known.first, rules) != nullptr;
    if (!isWanted) result.withdrawn.push_back(tagOf(known.first));
    return !isWanted;
  });
  std::vector<Draft> drafts;
  std::vector<Draft> withheld;
  for (const LineNews& line : news) {
    const Subscription* const subscription = subscriptionOf(line.line, rules);
    if (!subscription || !line.isKnown) continue;
    const auto [known, isFirst] = result.state.try_emplace(line.line);
    LineFollower follower(*subscription, rules, line, now, known->second);
    if (isFirst) {
      follower.begin();
    } else if (auto notice = follower.follow(canTell)) {
      Draft draft{*std::move(notice), follower.newsCount()};
      if (known->second.isWithheld)
        withheld.push_back(std::move(draft));
      else
        addNotice(std::move(draft), drafts, result);
    }
    result.isHeldBack = result.isHeldBack || follower.isHeldBack();
    if (follower.mustWithdraw()) result.withdrawn.push_back(tagOf(line.line));
    known->second = follower.state();
  }
  addSummary(std::move(withheld), drafts, result);
  for (Draft& draft : drafts) result.notices.push_back(std::move(draft.notice));
  return result;
}

}  // namespace linewatch::notices
