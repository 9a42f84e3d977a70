#include "feeds/alerts/distinct_incidents.h"

#include <algorithm>
#include <functional>
#include <memory_resource>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace linewatch {

namespace {

using Entity = AlertsMessage::Entity;

class Mixer {
 public:
  void add(std::size_t value) { state_ ^= value + 0x9E3779B97F4A7C15U + (state_ << 6U) + (state_ >> 2U); }
  void add(std::string_view text) { add(std::hash<std::string_view>()(text)); }
  std::size_t result() const { return state_; }

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

/// Hash and equality of entities that are one incident: effect, periods and texts. An alert without texts is
/// worded from its cause and stops, so these count too.
struct SameContent {
  const AlertsMessage* message;

  std::size_t operator()(std::uint32_t place) const {
    const Entity& entity = message->entities()[place];
    Mixer mixer;
    mixer.add(static_cast<std::size_t>(entity.effect));
    for (const AlertPeriod& period : message->periods(entity)) {
      mixer.add(period.start);
      mixer.add(period.end);
    }
    for (const AlertTranslation& translation : message->translations(entity)) {
      mixer.add(translation.text);
      mixer.add(translation.language);
    }
    if (isWordless(*message, entity)) {
      mixer.add(static_cast<std::size_t>(entity.cause));
      for (const std::string_view stop : namedStops(*message, entity)) mixer.add(stop);
    }
    return mixer.result();
  }
  bool operator()(std::uint32_t a, std::uint32_t b) const {
    const Entity& one = message->entities()[a];
    const Entity& other = message->entities()[b];
    return one.effect == other.effect && std::ranges::equal(message->periods(one), message->periods(other)) &&
           std::ranges::equal(message->translations(one), message->translations(other)) &&
           (!isWordless(*message, one) || isWordedAlike(one, other));
  }
  bool isWordedAlike(const Entity& one, const Entity& other) const {
    return one.cause == other.cause && namedStops(*message, one) == namedStops(*message, other);
  }
};

/// A language in which the incident with that index has texts.
struct SpokenLanguage {
  std::uint32_t incident;
  std::string_view language;

  bool operator==(const SpokenLanguage&) const = default;
};

struct HashOfSpokenLanguage {
  std::size_t operator()(const SpokenLanguage& spoken) const {
    Mixer mixer;
    mixer.add(spoken.incident);
    mixer.add(spoken.language);
    return mixer.result();
  }
};

class Collector {
 public:
  explicit Collector(const AlertsMessage& message)
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
      const auto [known, isNewId] = byId_.emplace(id, Known{next});
      if (!isNewId && addsLanguages(known->second, place)) {
        incidents_[known->second.incident].otherLanguages.push_back(place);
        noteLanguages(known->second.incident, place);
        content->second = known->second.incident;
        return;
      }
      if (!isNewId) incident.sameIdBefore = ++known->second.others;
    }
    incidents_.push_back(std::move(incident));
  }

  struct Known {
    std::uint32_t incident;
    std::uint32_t others = 0;
    /// False until the languages of the incident's own entity are in `spoken_`, which happens when its id
    /// occurs again.
    bool isNoted = false;
  };

  // Some feeds give an alert as one entity for each language. More entities than languages exist are
  // something else.
  bool addsLanguages(Known& known, std::uint32_t place) {
    constexpr std::size_t kMostLanguages = 64;
    const DistinctIncident& incident = incidents_[known.incident];
    const Entity& first = message_.entities()[incident.entity];
    const Entity& other = message_.entities()[place];
    if (incident.otherLanguages.size() >= kMostLanguages || first.effect != other.effect ||
        !std::ranges::equal(message_.periods(first), message_.periods(other)))
      return false;
    if (!std::exchange(known.isNoted, true)) noteLanguages(known.incident, incident.entity);
    return speaksAnew(known.incident, place);
  }
  bool speaksAnew(std::uint32_t incident, std::uint32_t place) const {
    const auto translations = message_.translations(message_.entities()[place]);
    // A text without a tag may be in any language.
    return !translations.empty() && !spoken_.contains({incident, {}}) &&
           std::ranges::none_of(translations, [&](const AlertTranslation& translation) {
             return translation.language.empty() || spoken_.contains({incident, translation.language});
           });
  }
  void noteLanguages(std::uint32_t incident, std::uint32_t place) {
    for (const AlertTranslation& translation : message_.translations(message_.entities()[place])) {
      spoken_.insert({incident, translation.language});
    }
  }

  const AlertsMessage& message_;
  std::vector<DistinctIncident> incidents_;
  std::pmr::monotonic_buffer_resource memory_;
  std::pmr::unordered_map<std::uint32_t, std::uint32_t, SameContent, SameContent> byContent_;
  std::pmr::unordered_map<std::string_view, Known> byId_;
  std::pmr::unordered_set<SpokenLanguage, HashOfSpokenLanguage> spoken_{&memory_};
};

}  // namespace

std::vector<DistinctIncident> distinctIncidents(const AlertsMessage& message) {
  return Collector(message).collect();
}

}  // namespace linewatch
