#include "simulation/scenario/scenario.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <utility>

#include "simulation/scenario/scenario_reading.h"
#include "simulation/scenario/scenario_step_keys.h"
#include "simulation/scenario/scenario_world.h"

namespace linewatch::simulation {

namespace {

constexpr std::string_view kStartKey = "start";

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
  static const std::array<Kind, 20> kKinds;

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

const std::array<StepReader::Kind, 20> StepReader::kKinds = {{
    {Keys<step::Load>::name, &StepReader::readLoad, Controller::none},
    {Keys<step::Appear>::name, &StepReader::readTurn<step::Appear, true, true>, Controller::needed},
    {"willAppear", &StepReader::readTurn<step::Appear, true, false>, Controller::needed},
    {"didAppear", &StepReader::readTurn<step::Appear, false, true>, Controller::needed},
    {Keys<step::Disappear>::name, &StepReader::readTurn<step::Disappear, true, true>, Controller::needed},
    {"willDisappear", &StepReader::readTurn<step::Disappear, true, false>, Controller::needed},
    {"didDisappear", &StepReader::readTurn<step::Disappear, false, true>, Controller::needed},
    {Keys<step::Update>::name, &StepReader::readUpdate, Controller::needed},
    {Keys<step::Advance>::name, &StepReader::readKeys<step::Advance>, Controller::any},
    {Keys<step::DisplayMode>::name, &StepReader::readKeys<step::DisplayMode>, Controller::needed},
    {Keys<step::Tap>::name, &StepReader::readKeys<step::Tap>, Controller::needed},
    {Keys<step::Resize>::name, &StepReader::readKeys<step::Resize>, Controller::needed},
    {Keys<step::Limits>::name, &StepReader::readKeys<step::Limits>, Controller::needed},
    {Keys<step::Answer>::name, &StepReader::readKeys<step::Answer>, Controller::any},
    {Keys<step::TextSize>::name, &StepReader::readKeys<step::TextSize>, Controller::any},
    {Keys<step::MemoryWarning>::name, &StepReader::readKeys<step::MemoryWarning>, Controller::needed},
    {Keys<step::Set>::name, &StepReader::readSet, Controller::any},
    {Keys<step::Snapshot>::name, &StepReader::readKeys<step::Snapshot>, Controller::needed},
    {Keys<step::Release>::name, &StepReader::readDrop<step::Release>, Controller::needed},
    {Keys<step::Restart>::name, &StepReader::readDrop<step::Restart>, Controller::any},
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
  if (hasKey(object, kStartKey)) faults_.add(Place(place, kStartKey), "cannot change");
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
