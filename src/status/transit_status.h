#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/transit_line.h"
#include "shared/date.h"
#include "shared/error.h"

namespace linewatch {

/// How bad an incident is, from mild to bad.
enum class StatusSeverity : std::uint8_t { unknown, info, warning, severe };

/// One answer of the transit service about the favourite lines.
struct TransitNews {
  /// The number of lines that were asked for.
  std::size_t favorites = 0;
  /// The answered lines, in the order of the favourites.
  TransitLineItems lines;
  /// The names of lines that were asked for but are not known.
  std::vector<std::string> unknownLines;
  /// Why the look-up failed; absent if it gave an answer.
  std::optional<Error> error;
  /// When the alerts came; of several feeds the oldest. Absent when none came.
  std::optional<Date> received;
  /// By the `muid` of the incident. Unknown for incidents that are missing here.
  std::map<std::uint64_t, StatusSeverity> severities;
  /// Whether the lines are those of the made-up city.
  bool isSampleCity = false;
};

/// An incident in force.
struct StatusIncident {
  std::uint64_t muid = 0;
  /// Each may be empty.
  std::string title, summary;
  /// True when nothing runs.
  bool isBlocking = false;
  StatusSeverity severity = StatusSeverity::unknown;

  bool operator==(const StatusIncident&) const = default;
};

/// A line whose incidents are known.
struct StatusLine {
  std::uint64_t muid = 0;
  /// Each may be empty.
  std::string name, agency;
  /// Indexes into `TransitStatus::incidents`; empty when the line runs normally.
  std::vector<std::size_t> incidents;

  bool operator==(const StatusLine&) const = default;
};

/// How the favourite lines run. What tray, notifications, bus and status bars show is made from it alone.
struct TransitStatus {
  enum class State : std::uint8_t {
    allClear,     // every line is known and has no incident
    incidents,    // at least one line has incidents; other lines may be unknown
    unknown,      // no incident is known, but not every line is known either
    noFavorites,  // there are no favourite lines
  };

  State state = State::noFavorites;
  /// The known lines, in the order of the favourites.
  std::vector<StatusLine> lines;
  /// Each once, in the order in which the lines list them.
  std::vector<StatusIncident> incidents;
  /// The number of lines that are not known.
  std::size_t unknownCount = 0;
  /// Names of unknown lines. May be fewer than `unknownCount`, because a name is not always known.
  std::vector<std::string> unknownLines;
  /// The sentence that says why the look-up failed; empty when it did not fail.
  std::string error;
  std::optional<Date> received;
  bool isSampleCity = false;

  /// The number of lines with incidents.
  std::size_t affectedCount() const;
  /// The worst severity of all incidents; a blocking incident is severe. Unknown without incidents.
  StatusSeverity worstSeverity() const;
  /// The time since the alerts came, not below 0. Absent when none came.
  std::optional<Seconds> ageAt(Date now) const;
  /// Whether both say the same. When the alerts came does not count.
  bool saysTheSameAs(const TransitStatus& other) const;

  bool operator==(const TransitStatus&) const = default;
};

/// The status at `now`. Only incidents in force count. A failed look-up makes every line unknown, and so does
/// an answer that leaves out lines without naming them.
TransitStatus transitStatus(const TransitNews& news, Date now);

}  // namespace linewatch
