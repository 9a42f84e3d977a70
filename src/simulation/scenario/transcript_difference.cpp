#include "simulation/scenario/transcript_difference.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "shared/failure.h"
#include "simulation/scenario/scenario_json.h"
#include "simulation/scenario/scenario_place.h"

namespace linewatch::simulation {

namespace {

/// Bytes; a longer value is cut.
constexpr std::size_t kLongestValue = 200;

/// Its keys have no order.
using Event = nlohmann::json;

struct Events {
  std::string_view name;
  std::vector<Event> events;
};

/// A difference within an event: the path to it, and the two values; null: absent.
struct Difference {
  std::string path;
  const Event* a = nullptr;
  const Event* b = nullptr;
};

Outcome<Events> eventsIn(const NamedTranscript& transcript) {
  Events events{transcript.name, {}};
  std::string_view rest = transcript.text;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    auto event = parseJson(line);
    if (!event || !event->is_object()) {
      const std::string why = event ? "is not an object" : sentenceOf(event.error());
      return scenarioError(std::string(transcript.name) + ": line " +
                           std::to_string(events.events.size() + 1) + ": " + why);
    }
    events.events.emplace_back(*std::move(event));
  }
  return events;
}

const Event* memberOf(const Event& object, const std::string& key) {
  const auto member = object.find(key);
  return member == object.end() ? nullptr : &*member;
}

std::optional<Difference> difference(const std::string& path, const Event* a, const Event* b);

std::optional<Difference> differenceOfMembers(const std::string& path, const Event& a, const Event& b) {
  for (const Event* const object : {&a, &b}) {
    for (const auto& [key, value] : object->items()) {
      std::string place = path;
      appendKey(place, key);
      if (auto found = difference(place, memberOf(a, key), memberOf(b, key))) return found;
    }
  }
  return std::nullopt;
}

std::optional<Difference> differenceOfElements(const std::string& path, const Event& a, const Event& b) {
  for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
    std::string place = path;
    appendIndex(place, i);
    const auto at = [i](const Event& array) { return i < array.size() ? &array[i] : nullptr; };
    if (auto found = difference(place, at(a), at(b))) return found;
  }
  return std::nullopt;
}

/// The first difference, the deepest that contains it. Absent when the values are equal.
std::optional<Difference> difference(const std::string& path, const Event* a, const Event* b) {
  if (a && b && *a == *b) return std::nullopt;
  if (a && b && a->is_object() && b->is_object()) return differenceOfMembers(path, *a, *b);
  if (a && b && a->is_array() && b->is_array()) return differenceOfElements(path, *a, *b);
  return Difference{path, a, b};
}

std::string valueText(const Event* value) {
  if (value == nullptr) return "missing";
  std::string text = value->dump(-1, ' ', false, Event::error_handler_t::replace);
  if (text.size() <= kLongestValue) return text;
  std::size_t end = kLongestValue;
  while ((static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end) + "…";
}

std::string textOf(const Event& event, const char* key) {
  const Event* const member = memberOf(event, key);
  if (member == nullptr) return "?";
  return member->is_string() ? member->get<std::string>() : member->dump();
}

/// "reload at 2.5 s".
std::string eventText(const Event& event) {
  return textOf(event, "event") + " at " + textOf(event, "t") + " s";
}

std::string counted(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string wordsOf(const Events& a, const Events& b, std::size_t place) {
  const std::string same =
      "The first " + counted(place, "event") + (place == 1 ? " is" : " are") + " the same.\n";
  const auto ended = [&](const Events& shorter, const Events& longer) {
    return same + std::string(shorter.name) + " ends there. " + std::string(longer.name) + " goes on with " +
           eventText(longer.events[place]) + ".\n";
  };
  if (place == a.events.size()) return ended(a, b);
  if (place == b.events.size()) return ended(b, a);
  const Event& first = a.events[place];
  const Event& second = b.events[place];
  const std::string line = same + "Line " + std::to_string(place + 1);
  if (textOf(first, "event") != textOf(second, "event")) {
    return line + " is " + eventText(first) + " in " + std::string(a.name) + ", and " + eventText(second) +
           " in " + std::string(b.name) + ".\n";
  }
  const auto found = difference("", &first, &second);
  return line + " is " + eventText(first) + ". Its " + found->path + " differs:\n" + std::string(a.name) +
         ": " + valueText(found->a) + "\n" + std::string(b.name) + ": " + valueText(found->b) + "\n";
}

}  // namespace

Outcome<std::optional<std::string>> transcriptDifference(const NamedTranscript& a, const NamedTranscript& b) {
  const auto first = eventsIn(a);
  if (!first) return first.error();
  const auto second = eventsIn(b);
  if (!second) return second.error();
  const auto [endA, endB] = std::ranges::mismatch(first->events, second->events);
  if (endA == first->events.end() && endB == second->events.end()) return std::optional<std::string>();
  return std::optional(wordsOf(*first, *second, static_cast<std::size_t>(endA - first->events.begin())));
}

}  // namespace linewatch::simulation
