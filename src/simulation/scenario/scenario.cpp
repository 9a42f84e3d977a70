#include "simulation/scenario/scenario.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <tuple>
#include <utility>

#include "simulation/scenario/scenario_reading.h"
#include "simulation/scenario/scenario_world.h"

namespace linewatch::simulation {

namespace {

constexpr std::string_view kKindKey = "do";
constexpr std::string_view kStepsKey = "steps";
/// In a longer time a repeating timer fires so often that the run takes too long.
constexpr Seconds kLongestAdvance{366 * 86400.0};

const char* canBeAdvanced(const Seconds& seconds) {
  if (seconds < Seconds(0)) return "must not be negative";
  return seconds > kLongestAdvance ? "must be at most 31622400, a year" : nullptr;
}

/// Reads the steps in order. Knows at each step what the world is then and whether a widget is loaded.
class StepReader {
 public:
  StepReader(Faults& faults, const World& world) : faults_(faults), world_(world) {}

  Step read(const Place& place, const JsonObject& object);

 private:
  enum class Controller { any, needed, none };
  struct Kind {
    std::string_view name;
    Step (StepReader::*read)(const Place&, const JsonObject&);
    Controller controller;
  };
  static const std::array<Kind, 18> kKinds;

  template <class T>
  Step readKeys(const Place& place, const JsonObject& object);
  template <class T, bool kWill, bool kDid>
  Step readTurn(const Place& place, const JsonObject& object);
  Step readLoad(const Place& place, const JsonObject& object);
  Step readUpdate(const Place& place, const JsonObject& object);
  Step readSet(const Place& place, const JsonObject& object);
  template <class T>
  Step readDrop(const Place& place, const JsonObject& object);

  const Kind* kindOf(const Place& place, const JsonObject& object);
  void checkController(const Place& place, Controller controller);

  Faults& faults_;
  /// The world as the steps read so far have changed it.
  World world_;
  bool hasController_ = false;
  std::size_t updateCount_ = 0;
};

}  // namespace

template <>
struct Keys<step::Load> {
  static constexpr std::tuple<> table{};
};
template <>
struct Keys<step::Appear> : Keys<step::Load> {};
template <>
struct Keys<step::Disappear> : Keys<step::Load> {};
template <>
struct Keys<step::MemoryWarning> : Keys<step::Load> {};
template <>
struct Keys<step::Snapshot> : Keys<step::Load> {};
template <>
struct Keys<step::Release> : Keys<step::Load> {};
template <>
struct Keys<step::Restart> : Keys<step::Load> {};
template <>
struct Keys<step::Update> {
  static constexpr auto table = std::tuple{key("id", &step::Update::id)};
};
template <>
struct Keys<step::Advance> {
  static constexpr auto table =
      std::tuple{key("seconds", &step::Advance::seconds).required().checked(canBeAdvanced)};
};
template <>
struct Keys<step::DisplayMode> {
  static constexpr auto table = std::tuple{key("mode", &step::DisplayMode::mode).required()};
};
template <>
struct Keys<step::Tap> {
  static constexpr auto table = std::tuple{key("row", &step::Tap::row).required()};
};
template <>
struct Keys<step::Resize> {
  static constexpr auto table = std::tuple{key("width", &step::Resize::width).required(),
                                           key("height", &step::Resize::height).required()};
};
template <>
struct Keys<step::TextSize> {
  static constexpr auto table = std::tuple{key("category", &step::TextSize::category).required()};
};

namespace {

const std::array<StepReader::Kind, 18> StepReader::kKinds = {{
    {"load", &StepReader::readLoad, Controller::none},
    {"appear", &StepReader::readTurn<step::Appear, true, true>, Controller::needed},
    {"willAppear", &StepReader::readTurn<step::Appear, true, false>, Controller::needed},
    {"didAppear", &StepReader::readTurn<step::Appear, false, true>, Controller::needed},
    {"disappear", &StepReader::readTurn<step::Disappear, true, true>, Controller::needed},
    {"willDisappear", &StepReader::readTurn<step::Disappear, true, false>, Controller::needed},
    {"didDisappear", &StepReader::readTurn<step::Disappear, false, true>, Controller::needed},
    {"update", &StepReader::readUpdate, Controller::needed},
    {"advance", &StepReader::readKeys<step::Advance>, Controller::any},
    {"displayMode", &StepReader::readKeys<step::DisplayMode>, Controller::needed},
    {"tap", &StepReader::readKeys<step::Tap>, Controller::needed},
    {"resize", &StepReader::readKeys<step::Resize>, Controller::needed},
    {"textSize", &StepReader::readKeys<step::TextSize>, Controller::any},
    {"memoryWarning", &StepReader::readKeys<step::MemoryWarning>, Controller::needed},
    {"set", &StepReader::readSet, Controller::any},
    {"snapshot", &StepReader::readKeys<step::Snapshot>, Controller::needed},
    {"release", &StepReader::readDrop<step::Release>, Controller::needed},
    {"restart", &StepReader::readDrop<step::Restart>, Controller::any},
}};

Step StepReader::read(const Place& place, const JsonObject& object) {
  const Kind* kind = kindOf(place, object);
  if (kind == nullptr) return {};
  checkController(place, kind->controller);
  return (this->*kind->read)(place, object);
}

const StepReader::Kind* StepReader::kindOf(const Place& place, const JsonObject& object) {
  const Place kindPlace(place, kKindKey);
  const auto entry = std::ranges::find(object, kKindKey, &JsonObject::value_type::first);
  if (entry == object.end()) {
    faults_.add(kindPlace, "is missing");
    return nullptr;
  }
  const auto* name = entry->second.get_ptr<const std::string*>();
  const auto kind =
      std::ranges::find_if(kKinds, [&](const Kind& known) { return name && known.name == *name; });
  if (kind != kKinds.end()) return &*kind;
  std::vector<std::string_view> names;
  names.reserve(std::size(kKinds));
  for (const Kind& known : kKinds) names.push_back(known.name);
  addUnknownNameFault(faults_, kindPlace, std::move(names));
  return nullptr;
}

void StepReader::checkController(const Place& place, Controller controller) {
  if (controller == Controller::needed && !hasController_) {
    faults_.add(place, "there is no widget at this point: a \"load\" must come before");
  } else if (controller == Controller::none && hasController_) {
    faults_.add(place, "the widget is loaded already");
  }
}

template <class T>
Step StepReader::readKeys(const Place& place, const JsonObject& object) {
  T step;
  readEntries(faults_, place, object, step, kKindKey);
  return step;
}

template <class T, bool kWill, bool kDid>
Step StepReader::readTurn(const Place& place, const JsonObject& object) {
  T step{kWill, kDid};
  readEntries(faults_, place, object, step, kKindKey);
  return step;
}

Step StepReader::readLoad(const Place& place, const JsonObject& object) {
  hasController_ = true;
  return readKeys<step::Load>(place, object);
}

template <class T>
Step StepReader::readDrop(const Place& place, const JsonObject& object) {
  hasController_ = false;
  return readKeys<T>(place, object);
}

Step StepReader::readUpdate(const Place& place, const JsonObject& object) {
  step::Update step{"u" + std::to_string(++updateCount_)};
  readEntries(faults_, place, object, step, kKindKey);
  return step;
}

/// Tries the change on the world now, so that its faults are found, and makes it when the step is performed.
Step StepReader::readSet(const Place& place, const JsonObject& object) {
  readWorld(faults_, place, object, kKindKey, world_);
  return step::Set{[object](World& world) {
    Faults none;
    readWorld(none, Place(), object, kKindKey, world);
  }};
}

std::vector<Step> readSteps(Faults& faults, const Place& place, const Json& json, const World& world) {
  std::vector<Step> steps;
  const JsonArray* array = arrayIn(faults, place, json);
  if (array == nullptr) return steps;
  StepReader reader(faults, world);
  for (std::size_t i = 0; i < array->size(); ++i) {
    const Place stepPlace(place, i);
    if (const JsonObject* object = objectIn(faults, stepPlace, (*array)[i])) {
      steps.push_back(reader.read(stepPlace, *object));
    }
  }
  return steps;
}

}  // namespace

Outcome<Scenario> readScenario(std::string_view text) {
  const auto document = parseJson(text);
  if (!document) return document.error();
  Faults faults;
  const Place root;
  Scenario scenario;
  if (const JsonObject* object = objectIn(faults, root, *document)) {
    readWorld(faults, root, *object, kStepsKey, scenario.world);
    const auto steps = std::ranges::find(*object, kStepsKey, &JsonObject::value_type::first);
    if (steps != object->end()) {
      scenario.steps = readSteps(faults, Place(root, kStepsKey), steps->second, scenario.world);
    }
  }
  if (!faults.isEmpty()) return faults.error();
  return scenario;
}

}  // namespace linewatch::simulation
