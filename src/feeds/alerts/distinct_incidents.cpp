#include "feeds/alerts/distinct_incidents.h"

#include <algorithm>
#include <functional>
#include <memory_resource>
#include <span>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace linewatch {

namespace {

using Entity = AlertsMessage::Entity;

/// Combines values into one hash.
class Mixer {
 public:
  void add(std::size_t value) { state_ ^= value + 0x9E3779B97F4A7C15U + (state_ << 6U) + (state_ >> 2U); }
  void add(std::string_view text) { add(std::hash<std::string_view>()(text)); }
  std::size_t result() const { return state_; }
  template <class First, class Second>
  static std::size_t of(First first, Second second) {
    Mixer mixer;
    mixer.add(first);
    mixer.add(second);
    return mixer.result();
  }

 private:
  std::size_t state_ = 0;
};

bool isWordless(const AlertsMessage& message, const Entity& entity) {
  return std::ranges::none_of(message.translations(entity), [](const AlertTranslation& translation) {
    return translation.kind == AlertText::header || translation.kind == AlertText::description;
  });
}

/// Sorted, each once.
std::vector<std::string_view> namedStops(const AlertsMessage& message, const Entity& entity) {
  std::vector<std::string_view> stops;
  for (const AlertSelector& selector : message.selectors(entity)) {
    if (selector.namesStop()) stops.push_back(selector.stopId);
  }
  std::ranges::sort(stops);
  // Clang 14 cannot compile std::ranges::unique of this standard library.
  stops.erase(std::unique(stops.begin(), stops.end()), stops.end());
  return stops;
}

std::tuple<AlertText, std::string_view, std::string_view> orderOf(const AlertTranslation& translation) {
  return {translation.kind, translation.language, translation.text};
}
std::tuple<AlertPeriod::Use, std::uint64_t, std::uint64_t> orderOf(const AlertPeriod& period) {
  return {period.use, period.start, period.end};
}

/// True when both have the same parts, in any order.
template <class Part>
bool haveSameParts(std::span<const Part> some, std::span<const Part> others) {
  if (std::ranges::equal(some, others)) return true;
  if (some.size() != others.size()) return false;
  std::vector<Part> a(some.begin(), some.end()), b(others.begin(), others.end());
  const auto order = [](const Part& part) { return orderOf(part); };
  std::ranges::sort(a, {}, order);
  std::ranges::sort(b, {}, order);
  return a == b;
}

/// Hash and equality of entities that are one incident: the same effect, periods, texts and stops. An alert
/// without texts is worded from its cause too.
struct SameContent {
  const AlertsMessage* message;

  std::size_t operator()(std::uint32_t place) const {
    const Entity& entity = message->entities()[place];
    Mixer mixer;
    mixer.add(static_cast<std::size_t>(entity.effect));
    std::size_t parts = 0;  // a sum, because their order makes no difference
    for (const AlertPeriod& period : message->periods(entity)) parts += Mixer::of(period.start, period.end);
    for (const AlertTranslation& translation : message->translations(entity))
      parts += Mixer::of(translation.text, translation.language);
    mixer.add(parts);
    for (const std::string_view stop : namedStops(*message, entity)) mixer.add(stop);
    return mixer.result();
  }
  bool operator()(std::uint32_t a, std::uint32_t b) const {
    const Entity& one = message->entities()[a];
    const Entity& other = message->entities()[b];
    return one.effect == other.effect && haveSameParts(message->periods(one), message->periods(other)) &&
           haveSameParts(message->translations(one), message->translations(other)) &&
           namedStops(*message, one) == namedStops(*message, other) &&
           (one.cause == other.cause || !isWordless(*message, one));
  }
};

/// A language that an incident, by its index, has texts in.
struct LanguageOfIncident {
  std::uint32_t incident;
  std::string_view language;

  bool operator==(const LanguageOfIncident&) const = default;
};

struct HashOfLanguage {
  std::size_t operator()(const LanguageOfIncident& key) const {
    return Mixer::of(key.incident, key.language);
  }
};

class IncidentCollector {
 public:
  explicit IncidentCollector(const AlertsMessage& message)
      : message_(message),
        byContent_(message.entities().size(), SameContent{&message}, SameContent{&message}, &memory_),
        byId_(message.entities().size(), &memory_) {}

  std::vector<DistinctIncident> collect() && {
    incidents_.reserve(message_.entities().size());
    for (std::uint32_t place = 0; place < message_.entities().size(); ++place) {
      const Entity& entity = message_.entities()[place];
      if (entity.hasAlert && !entity.isDeleted) add(place);
    }
    return std::move(incidents_);
  }

 private:
  void add(std::uint32_t place) {
    const auto next = static_cast<std::uint32_t>(incidents_.size());
    const auto [content, isNewContent] = byContent_.emplace(place, next);
    if (!isNewContent) {
      incidents_[content->second].repetitions.push_back(place);
      return;
    }
    DistinctIncident incident{.entity = place};
    if (const std::string_view id = message_.entities()[place].id; !id.empty()) {
      const auto [known, isNewId] = byId_.emplace(id, FirstWithId{next});
      if (!isNewId && addsLanguages(known->second, place)) {
        incidents_[known->second.incident].otherLanguages.push_back(place);
        addLanguages(known->second.incident, place);
        content->second = known->second.incident;
        return;
      }
      if (!isNewId) incident.sameIdBefore = ++known->second.others;
    }
    incidents_.push_back(std::move(incident));
  }

  struct FirstWithId {
    std::uint32_t incident;
    /// The number of later incidents with the id.
    std::uint32_t others = 0;
    /// True when `languages_` has the languages of the incident's first entity. They are added when the id
    /// occurs a second time, because most ids occur once.
    bool hasLanguages = false;
  };

  // Some feeds give an alert as one entity for each language. An id with more entities than there are
  // languages is used for something else.
  bool addsLanguages(FirstWithId& known, std::uint32_t place) {
    constexpr std::size_t kMostLanguages = 64;
    const DistinctIncident& incident = incidents_[known.incident];
    const Entity& first = message_.entities()[incident.entity];
    const Entity& other = message_.entities()[place];
    if (incident.otherLanguages.size() >= kMostLanguages || first.effect != other.effect ||
        !std::ranges::equal(message_.periods(first), message_.periods(other)))
      return false;
    if (!std::exchange(known.hasLanguages, true)) addLanguages(known.incident, incident.entity);
    return hasOnlyNewLanguages(known.incident, place);
  }
  bool hasOnlyNewLanguages(std::uint32_t incident, std::uint32_t place) const {
    const auto translations = message_.translations(message_.entities()[place]);
    // A text without a tag may be in any language.
    return !translations.empty() && !languages_.contains({incident, {}}) &&
           std::ranges::none_of(translations, [&](const AlertTranslation& translation) {
             return translation.language.empty() || languages_.contains({incident, translation.language});
           });
  }
  void addLanguages(std::uint32_t incident, std::uint32_t place) {
    for (const AlertTranslation& translation : message_.translations(message_.entities()[place])) {
      languages_.insert({incident, translation.language});
    }
  }

  const AlertsMessage& message_;
  std::vector<DistinctIncident> incidents_;
  std::pmr::monotonic_buffer_resource memory_;
  std::pmr::unordered_map<std::uint32_t, std::uint32_t, SameContent, SameContent> byContent_;
  std::pmr::unordered_map<std::string_view, FirstWithId> byId_;
  std::pmr::unordered_set<LanguageOfIncident, HashOfLanguage> languages_{&memory_};
};

}  // namespace

std::vector<DistinctIncident> distinctIncidents(const AlertsMessage& message) {
  return IncidentCollector(message).collect();
}

}  // namespace linewatch
