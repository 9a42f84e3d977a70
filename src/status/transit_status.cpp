#include "status/transit_status.h"

#include <algorithm>
#include <unordered_map>

#include "platform/in_force.h"
#include "shared/failure.h"
#include "shared/hash_mixing.h"

namespace linewatch {

namespace {

/// Collects the lines with their incidents in force.
class StatusLines {
 public:
  StatusLines(const TransitNews& news, Date now, TransitStatus& status)
      : news_(news), now_(now), status_(status) {}

  void add(const TransitLineItem& item) {
    StatusLine line{.muid = item.muid(), .name = item.name(), .agency = {}, .incidents = {}};
    if (item.system()) line.agency = item.system()->name;
    for (const SharedIncident& incident : item.incidents()) {
      if (isInForceAt(*incident, now_)) line.incidents.push_back(indexOf(*incident));
    }
    status_.lines.push_back(std::move(line));
  }

 private:
  std::size_t indexOf(const TransitIncident& incident) {
    const auto [place, isNew] = indexes_.try_emplace(incident.muid(), status_.incidents.size());
    if (isNew) status_.incidents.push_back(statusOf(incident));
    return place->second;
  }
  StatusIncident statusOf(const TransitIncident& incident) const {
    const auto severity = news_.severities.find(incident.muid());
    return {.muid = incident.muid(),
            .title = incident.title().value_or(""),
            .summary = incident.summary().value_or(""),
            .isBlocking = incident.isBlockingIncident(),
            .severity = severity == news_.severities.end() ? StatusSeverity::unknown : severity->second};
  }

  const TransitNews& news_;
  Date now_;
  TransitStatus& status_;
  std::unordered_map<std::uint64_t, std::size_t, IdentifierHash> indexes_;
};

TransitStatus::State stateOf(const TransitStatus& status) {
  using State = TransitStatus::State;
  if (!status.incidents.empty()) return State::incidents;
  if (status.unknownCount > 0 || !status.error.empty()) return State::unknown;
  return status.lines.empty() ? State::noFavorites : State::allClear;
}

}  // namespace

std::size_t TransitStatus::affectedCount() const {
  const auto count = std::ranges::count_if(lines, [](const auto& line) { return !line.incidents.empty(); });
  return static_cast<std::size_t>(count);
}

StatusSeverity TransitStatus::worstSeverity() const {
  StatusSeverity worst = StatusSeverity::unknown;
  for (const StatusIncident& incident : incidents)
    worst = std::max(worst, incident.isBlocking ? StatusSeverity::severe : incident.severity);
  return worst;
}

std::optional<Seconds> TransitStatus::ageAt(Date now) const {
  if (!received) return std::nullopt;
  return std::max(Seconds::zero(), Seconds(now - *received));
}

bool TransitStatus::saysTheSameAs(const TransitStatus& other) const {
  TransitStatus same = other;
  same.received = received;
  return same == *this;
}

TransitStatus transitStatus(const TransitNews& news, Date now) {
  TransitStatus status{
      .unknownLines = news.unknownLines, .received = news.received, .isSampleCity = news.isSampleCity};
  if (news.error) {
    status.error = sentenceOf(*news.error);
  } else {
    StatusLines lines(news, now, status);
    for (const SharedLineItem& item : news.lines) lines.add(*item);
  }
  const std::size_t known = status.lines.size();
  status.unknownCount =
      std::max(status.unknownLines.size(), news.favorites > known ? news.favorites - known : 0);
  status.state = stateOf(status);
  return status;
}

}  // namespace linewatch
