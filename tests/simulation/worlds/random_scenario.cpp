#include "random_scenario.h"

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <utility>

namespace linewatch::worlds {

namespace {

using simulation::Json;

constexpr int kLines = 6, kSystems = 3, kIncidents = 9;

/// The standard distributions differ between libraries; these do not.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}

  int below(int count) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(count)); }
  bool oneIn(int count) { return below(count) == 0; }
  template <class T, std::size_t n>
  const T& of(const std::array<T, n>& choices) {
    return choices[static_cast<std::size_t>(below(static_cast<int>(n)))];
  }

 private:
  std::mt19937_64 engine_;
};

std::string keyed(const char* prefix, int number) { return prefix + std::to_string(number); }
Json step(const char* name) { return Json{{"do", name}}; }

class Generator {
 public:
  explicit Generator(std::uint64_t seed) : dice_(seed) {}

  Json scenario(std::size_t stepCount) {
    Json document = world();
    document["steps"] = Json::array();
    steps_ = &document["steps"];
    while (steps_->size() < stepCount) addStep();
    finish();
    return document;
  }

 private:
  // ---- The world ----

  Json world() {
    Json systems, lines, incidents;
    for (int i = 1; i <= kSystems; ++i) systems[keyed("S", i)] = system(i);
    for (int i = 1; i <= kLines; ++i) lines[keyed("L", i)] = line(i);
    for (int i = 1; i <= kIncidents; ++i) incidents[keyed("I", i)] = incident();
    // One incident in two records: only its number tells.
    incidents["I9"]["muid"] = 1;
    return Json{{"host", host()},
                {"favorites", favorites()},
                {"systems", systems},
                {"lines", lines},
                {"incidents", incidents},
                {"service", service()},
                {"preferences", Json::object()}};
  }

  Json host() {
    const double height = dice_.of(std::array{110.0, 95.5, 60.0, 0.0});
    const double rows = dice_.of(std::array{0.5, 1.0, 1.5, 2.0, 3.0, 4.0, 4.25, 6.0, 20.0});
    const double width = dice_.of(std::array{359.0, 300.0, 280.0, 500.0});
    return Json{{"hosted", !dice_.oneIn(8)},
                {"compact", Json::array({width, height})},
                {"expanded", Json::array({width, rows * (height > 0 ? height : 110)})},
                {"bounds", Json::array({width, 110})}};
  }

  Json system(int number) {
    Json json{{"name", dice_.oneIn(4) ? "" : keyed("System ", number)}};
    // Two systems may look alike.
    if (!dice_.oneIn(3)) json["artwork"] = shield(keyed("S", 1 + dice_.below(2)));
    return json;
  }
  Json line(int number) {
    Json json{{"name", dice_.oneIn(5) ? "" : keyed("Line ", dice_.oneIn(6) ? 1 : number)},
              {"incidents", lineIncidents()}};
    if (!dice_.oneIn(4)) json["system"] = keyed("S", 1 + dice_.below(kSystems));
    if (!dice_.oneIn(3)) json["alternateArtwork"] = shield(std::string(1 + dice_.below(9), 'W'));
    if (dice_.oneIn(12)) json["identifier"] = false;
    return json;
  }
  static Json shield(const std::string& text) { return Json{{"shieldText", text}}; }

  Json lineIncidents() {
    Json keys = Json::array();
    const int count = std::max(0, dice_.below(6) - 1);
    for (int i = 0; i < count; ++i) keys.push_back(keyed("I", 1 + dice_.below(kIncidents)));
    return keys;
  }
  Json incident() {
    Json json{{"title", text("Title ")}, {"secondaryText", text("Text ")}, {"blocking", dice_.oneIn(2)}};
    json["start"] = dice_.oneIn(3) ? Json() : moment();
    json["end"] = dice_.oneIn(3) ? Json() : moment();
    return json;
  }
  /// Absent, empty, or one of a few texts.
  Json text(const char* prefix) {
    const int choice = dice_.below(6);
    if (choice == 0) return nullptr;
    return choice == 1 ? "" : keyed(prefix, choice / 2);
  }
  /// Soon, near enough to be reached. A multiple of a quarter of a second, which a double holds exactly.
  Json moment() {
    return elapsed_ + dice_.of(std::array{-86400.0, -60.0, 0.0, 0.25, 0.5, 1.0, 10.0, 60.0, 60.0, 600.0,
                                          1800.0, 3600.0, 86400.0, 1e9});
  }

  Json favorites() {
    Json list = Json::array();
    const int count = dice_.oneIn(5) ? 0 : dice_.below(7);
    for (int i = 0; i < count; ++i) {
      if (dice_.oneIn(8)) {
        list.push_back(Json{{"kind", dice_.of(std::array{"place", "route", "region", "line"})}});
      } else {
        list.push_back(Json{{"line", keyed("L", 1 + dice_.below(kLines))}});
      }
    }
    return list;
  }
  Json service() {
    return Json{
        {"delay", dice_.of(std::array{0.0, 0.25, 0.5, 0.5, 1.0, 20.0, 2000.0})},
        {"answer", dice_.of(std::array{"lines", "lines", "lines", "lines", "all", "error", "nothing"})}};
  }

  // ---- The steps ----

  void addStep() {
    if (!isLoaded_ && !dice_.oneIn(4)) {
      isLoaded_ = true;
      return add(step("load"));
    }
    const int choice = dice_.below(100);
    if (choice < 40) return addAdvance();
    if (choice < 62) return add(change());
    if (choice < 64) return addTextSize();
    if (choice < 66) return addDrop("restart");
    if (isLoaded_) addWidgetStep(choice);
  }

  void addAdvance() {
    constexpr std::array lengths = {0.0, 0.0,  0.25, 0.5,  0.5,   1.0,    1.0,
                                    1.0, 10.0, 60.0, 60.0, 300.0, 1800.0, 3600.0};
    double seconds = dice_.of(lengths);
    // A suspended machine, or a night.
    if (dice_.oneIn(40)) seconds = dice_.of(std::array{7200.25, 40000.0, 86400.0, 200000.5});
    elapsed_ += seconds;
    add(Json{{"do", "advance"}, {"seconds", seconds}});
  }

  void addWidgetStep(int choice) {
    if (choice < 76) return add(step("update"));
    if (choice < 86) return addTurn();
    if (choice < 91) {
      return add(Json{{"do", "displayMode"}, {"mode", dice_.of(std::array{"compact", "expanded"})}});
    }
    if (choice < 94) return add(Json{{"do", "tap"}, {"row", dice_.below(4)}});
    if (choice < 97) {
      const double width = dice_.of(std::array{359.0, 300.0, 250.0, 700.0, 0.0});
      return add(Json{{"do", "resize"}, {"width", width}, {"height", 110}});
    }
    if (choice < 98) return add(step("memoryWarning"));
    addDrop("release");
  }

  /// Hosts mostly pair their calls, but not always.
  void addTurn() {
    constexpr std::array turns = {"willAppear", "didAppear", "willDisappear", "didDisappear"};
    if (dice_.oneIn(8)) return add(step(dice_.of(turns)));
    isVisible_ = !isVisible_;
    add(step(isVisible_ ? "appear" : "disappear"));
  }
  void addTextSize() {
    add(Json{{"do", "textSize"}, {"category", dice_.of(std::array{"S", "L", "XXXL", "AX3"})}});
  }
  void addDrop(const char* name) {
    isLoaded_ = isVisible_ = false;
    add(step(name));
  }

  Json change() {
    Json json = step("set");
    switch (dice_.below(11)) {
      case 0:
      case 1:
        json["incidents"][keyed("I", 1 + dice_.below(kIncidents - 1))] = incident();
        break;
      case 2:
      case 3:
        json["lines"][keyed("L", 1 + dice_.below(kLines))] = Json{{"incidents", lineIncidents()}};
        break;
      case 4:
        json["lines"][keyed("L", 1 + dice_.below(kLines))] = line(1 + dice_.below(kLines));
        break;
      case 5:
        json["favorites"] = favorites();
        break;
      case 6:
        json["host"] = host();
        break;
      case 7:
        addFault(json);
        break;
      case 8:
        json["clockOffset"] = dice_.of(std::array{-86400.0, -3600.0, -0.25, 0.0, 0.0, 60.0, 3600.0, 86400.0});
        break;
      default:
        json["service"] = service();
        break;
    }
    return json;
  }

  void addFault(Json& json) {
    constexpr std::array switches = {"archives", "compresses", "opens", "acceptsActivities"};
    if (dice_.oneIn(5)) {
      json["preferences"] = Json{{"Rova.LineWatch.savedUIData", "not an archive"}};
    } else if (dice_.oneIn(3)) {
      json["diagnosis"] = dice_.below(4);
      json["capabilities"] = Json{{"wapi", dice_.oneIn(2)}};
    } else {
      json[dice_.of(switches)] = !dice_.oneIn(3);
    }
  }

  /// Lets every fetch end, and shows that no timer outlives the widget.
  void finish() {
    if (isLoaded_) add(step("release"));
    add(Json{{"do", "advance"}, {"seconds", 10000}});
  }

  void add(Json json) { steps_->push_back(std::move(json)); }

  Dice dice_;
  Json* steps_ = nullptr;
  double elapsed_ = 0;
  bool isLoaded_ = false, isVisible_ = false;
};

}  // namespace

Json randomScenario(std::uint64_t seed, std::size_t stepCount) { return Generator(seed).scenario(stepCount); }

}  // namespace linewatch::worlds
