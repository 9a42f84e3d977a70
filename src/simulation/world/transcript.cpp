#include "simulation/world/transcript.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace linewatch::simulation {

namespace {

bool isLogLine(const TranscriptEvent& event) { return event.name == "log"; }

std::string textOf(const TranscriptEvent& event) { return event.field("text").description(); }

}  // namespace

Value TranscriptEvent::field(const std::string& key) const {
  const auto entry = fields.find(key);
  return entry == fields.end() ? noValue() : entry->second;
}

std::vector<TranscriptEvent> Transcript::eventsNamed(std::string_view name) const {
  std::vector<TranscriptEvent> named;
  std::ranges::copy_if(events_, std::back_inserter(named),
                       [&](const auto& event) { return event.name == name; });
  return named;
}

std::size_t Transcript::countOf(std::string_view name) const {
  return static_cast<std::size_t>(std::ranges::count(events_, name, &TranscriptEvent::name));
}

std::vector<std::string> Transcript::names() const {
  std::vector<std::string> names;
  for (const TranscriptEvent& event : events_) {
    if (!isLogLine(event)) names.push_back(event.name);
  }
  return names;
}

std::vector<std::string> Transcript::logTexts() const {
  std::vector<std::string> texts;
  for (const TranscriptEvent& event : events_) {
    if (isLogLine(event)) texts.push_back(textOf(event));
  }
  return texts;
}

std::vector<std::string> Transcript::logTexts(std::string_view level) const {
  std::vector<std::string> texts;
  for (const TranscriptEvent& event : events_) {
    if (isLogLine(event) && event.field("level") == Value(level)) texts.push_back(textOf(event));
  }
  return texts;
}

bool Transcript::hasLogText(std::string_view text) const {
  return std::ranges::any_of(events_,
                             [&](const auto& event) { return isLogLine(event) && textOf(event) == text; });
}

std::size_t Transcript::record(std::string name, Dictionary fields) {
  events_.push_back({time_, std::move(name), std::move(fields)});
  return clearedCount_ + events_.size() - 1;
}

void Transcript::amend(std::size_t place, const std::string& key, Value value) {
  if (place < clearedCount_) return;
  events_[place - clearedCount_].fields.insert_or_assign(key, std::move(value));
}

void Transcript::clear() {
  clearedCount_ += events_.size();
  events_.clear();
}

}  // namespace linewatch::simulation
