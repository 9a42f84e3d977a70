#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "shared/date.h"
#include "shared/value.h"

namespace linewatch::simulation {

using linewatch::isNoValue;
using linewatch::noValue;

/// One thing that crossed the border between the widget and the world around it.
struct TranscriptEvent {
  /// Virtual time since the start.
  Seconds time{0};
  std::string name;
  Dictionary fields;

  /// The field, or none: a value for which `isNoValue` holds.
  Value field(const std::string& key) const;
  bool operator==(const TranscriptEvent&) const = default;
};

/// The record of all that crosses the border, in the order in which it does.
class Transcript {
 public:
  const std::vector<TranscriptEvent>& events() const { return events_; }
  std::vector<TranscriptEvent> eventsNamed(std::string_view name) const;
  std::size_t countOf(std::string_view name) const;
  /// The names of all events, in order, without those of the log.
  std::vector<std::string> names() const;
  /// The texts of the log's lines, of both levels or of one ("debug", "error").
  std::vector<std::string> logTexts() const;
  std::vector<std::string> logTexts(std::string_view level) const;
  bool hasLogText(std::string_view text) const;

  /// Appends an event at the current time and gives its place among all events since the start.
  std::size_t record(std::string name, Dictionary fields = {});
  /// Sets a field of a recorded event that becomes known only after it; the place is as `record` gave it.
  /// Does nothing when the event was cleared away.
  void amend(std::size_t place, const std::string& key, Value value);
  /// Forgets the events so far; places go on counting.
  void clear();

  /// The time that the next events get.
  void setTime(Seconds time) { time_ = time; }

 private:
  std::vector<TranscriptEvent> events_;
  std::size_t clearedCount_ = 0;
  Seconds time_{0};
};

}  // namespace linewatch::simulation
