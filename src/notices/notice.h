#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "notices/line_news.h"

namespace linewatch::notices {

/// A notice to send. It replaces the one with the same tag.
struct Notice {
  enum class Kind : std::uint8_t {
    newIncident,
    changed,  // the text or the severity of an incident that was told before
    over,     // no incident is left, or only milder ones than the user wants to be told of
    summary,  // what happened during the quiet hours
  };

  /// The news of one line.
  struct Entry {
    LineKey line;
    std::string name;
    /// The news first, then the incidents that were told before and go on. If it is over, those that are
    /// left; empty when the line runs again.
    std::vector<IncidentNews> incidents;
    bool isOver = false;

    bool operator==(const Entry&) const = default;
  };

  Kind kind = Kind::newIncident;
  std::string tag;
  /// Lines in the order of the answer. Except in a summary all have the same incidents.
  std::vector<Entry> entries;

  bool operator==(const Notice&) const = default;
};

/// The worst of the entries: severe when nothing runs, info when it is over for every line.
Severity severityOf(const Notice& notice);

}  // namespace linewatch::notices
