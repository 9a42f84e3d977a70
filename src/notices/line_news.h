#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <vector>

namespace linewatch::notices {

/// A line by its feed's name and its route id, as favourites name lines.
struct LineKey {
  std::string feed;
  std::string route;

  auto operator<=>(const LineKey&) const = default;
};

/// How bad an incident is, from mild to bad. An unknown severity is at the end, so that no least severity
/// hides it.
enum class Severity : std::uint8_t { info, warning, severe, unknown };

/// An incident as the last answer has it.
struct IncidentNews {
  std::uint64_t muid = 0;
  std::string title;
  /// May be empty.
  std::string summary;
  Severity severity = Severity::unknown;
  /// True when nothing runs.
  bool isBlocking = false;

  bool operator==(const IncidentNews&) const = default;
};

/// What the last answer says of a favourite line.
struct LineNews {
  LineKey line;
  /// For people, e.g. "U4".
  std::string name;
  /// Whether the incidents are known. If not, there are none here, which says nothing about the line.
  bool isKnown = false;
  std::vector<IncidentNews> incidents;

  bool operator==(const LineNews&) const = default;
};

/// A number for the text and severity of an incident. News with the same number is the same news, also if the
/// agency gives the incident another id. Letter case, white space and punctuation at the ends do not count.
/// The number is the same in every version of the program, because it is saved.
std::uint64_t contentOf(const IncidentNews& incident);
/// As `contentOf`, but numbers do not count: "10 minutes delay" and "9 minutes delay" have the same gist.
std::uint64_t gistOf(const IncidentNews& incident);

}  // namespace linewatch::notices
