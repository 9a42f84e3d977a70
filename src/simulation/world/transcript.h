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

/// One call between the widget and the platform, or one other thing worth recording.
struct TranscriptEvent {
  /// Seconds of virtual time since the start.
  Seconds time{0};
  std::string name;
  Dictionary fields;

  /// The value of the field; a value for which `isNoValue` is true when the event has no such field.
  Value field(const std::string& key) const;
  bool operator==(const TranscriptEvent&) const = default;
};

/// All events in the order in which they happened.
class Transcript {
 public:
  const std::vector<TranscriptEvent>& events() const { return events_; }
  std::vector<TranscriptEvent> eventsNamed(std::string_view name) const;
  std::size_t countOf(std::string_view name) const;
  /// The names of all events except log lines, in order.
  std::vector<std::string> names() const;
  /// The texts of the log lines, of both levels or of one ("debug", "error").
  std::vector<std::string> logTexts() const;
  std::vector<std::string> logTexts(std::string_view level) const;
  bool hasLogText(std::string_view text) const;

  /// Appends an event at the current time. Returns its place among all events since the start.
  std::size_t record(std::string name, Dictionary fields = {});
  /// Sets a field of a recorded event whose value becomes known later. `place` is from `record`. Does nothing
  /// when the event was cleared.
  void amend(std::size_t place, const std::string& key, Value value);
  /// Removes the events so far. The count of places continues.
  void clear();

  /// Sets the time of the next events.
  void setTime(Seconds time) { time_ = time; }

 private:
  std::vector<TranscriptEvent> events_;
  std::size_t clearedCount_ = 0;
  Seconds time_{0};
};

}  // namespace linewatch::simulation
