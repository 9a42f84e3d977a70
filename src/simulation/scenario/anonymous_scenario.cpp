#include "simulation/scenario/anonymous_scenario.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "simulation/scenario/scenario.h"
#include "simulation/scenario/scenario_json.h"
#include "simulation/scenario/scenario_step_keys.h"
#include "simulation/scenario/scenario_writing.h"
#include "wire/json_text.h"

namespace linewatch::simulation {

namespace {

constexpr std::array kTextKeys = {"name",
                                  "title",
                                  "secondaryText",
                                  "fullDescription",
                                  "messageForRoutePlanning",
                                  "messageForRouteStepping",
                                  "messageForNonRoutable",
                                  "operatingHours",
                                  "shieldText",
                                  "accessibilityText"};
constexpr std::array kTables = {"systems", "lines", "incidents", "drawnArtworks"};

template <class Keys>
bool isOneOf(const std::string& key, const Keys& keys) {
  return std::ranges::find(keys, key) != keys.end();
}

/// A stand-in for each of a kind of values: the kind and a number, counted from 1.
class StandIns {
 public:
  explicit StandIns(std::string kind) : kind_(std::move(kind)) {}

  std::uint64_t number(const std::string& value) {
    return numbers_.try_emplace(value, numbers_.size() + 1).first->second;
  }
  std::string name(const std::string& value) { return kind_ + std::to_string(number(value)); }

 private:
  std::string kind_;
  std::map<std::string, std::uint64_t> numbers_;
};

/// Replaces in one scenario, in the order of its steps. The scenario has no faults.
class Anonymizer {
 public:
  /// The keys of a world, in the whole scenario or in a step that changes the world.
  void replaceWorld(JsonObject& world) {
    for (auto& [key, value] : world) {
      if (isOneOf(key, kTables)) {
        replaceTable(key, value);
      } else if (key == "favorites") {
        for (Json& favorite : value) replaceEntry(favorite);
      } else if (key == "service" && value.is_object()) {
        replaceEntry(value);
      } else if (key == "favoritesError" && value.is_object()) {
        value.erase("info");
      }
    }
  }

 private:
  /// The keys of the table's entries become stand-ins. A name that was the key is given, as its text has
  /// another stand-in.
  void replaceTable(const std::string& table, Json& entries) {
    JsonObject replaced;
    for (auto& [key, entry] : entries.get_ref<JsonObject&>()) {
      const bool isNamed = table == "systems" || table == "lines";
      if (isNamed && known_.emplace(table, key).second && !entry.contains("name")) entry["name"] = key;
      replaceEntry(entry);
      replaced.emplace_back(keyIn(table, key), std::move(entry));
    }
    entries = std::move(replaced);
  }

  void replaceEntry(Json& entry) {
    if (!entry.is_object()) return;
    for (auto& [key, value] : entry.get_ref<JsonObject&>()) replaceValue(key, value);
    if (entry.contains("error") && entry["error"].is_object()) entry["error"].erase("info");
  }

  void replaceValue(const std::string& key, Json& value) {
    if (key == "muid" || key == "nextStopIDs") return replaceNumbers(value);
    if (key == "line") return replaceKeys("lines", value);
    if (key == "lines") return replaceKeys("lines", value);
    if (key == "system") return replaceKeys("systems", value);
    if (key == "incidents") return replaceKeys("incidents", value);
    if (key == "infoURL") return replaceText(addresses_, value);
    if (isOneOf(key, kTextKeys)) return replaceText(texts_, value);
    // An artwork, its fallback, or what an incident affects.
    if (value.is_object()) return replaceEntry(value);
    if (value.is_array())
      for (Json& element : value) replaceEntry(element);
  }

  /// An empty text says nothing of anybody, and shows nothing.
  static void replaceText(StandIns& standIns, Json& value) {
    if (const auto* text = value.get_ptr<const std::string*>(); text && !text->empty())
      value = standIns.name(*text);
  }
  void replaceNumbers(Json& value) {
    if (value.is_array()) {
      for (Json& number : value) replaceNumbers(number);
    } else if (value.is_number() && value != 0) {
      value = numbers_.number(value.dump());
    }
  }
  void replaceKeys(const std::string& table, Json& value) {
    if (value.is_array()) {
      for (Json& key : value) replaceKeys(table, key);
    } else if (value.is_string()) {
      value = keyIn(table, value.get<std::string>());
    }
  }
  std::string keyIn(const std::string& table, const std::string& key) {
    // "lines" to "line 1".
    return keys_.try_emplace(table, table.substr(0, table.size() - 1) + " ").first->second.name(key);
  }

  StandIns texts_{"Text "}, addresses_{"https://example.org/"}, numbers_{""};
  std::map<std::string, StandIns> keys_;
  /// The entries that had their name.
  std::set<std::pair<std::string, std::string>> known_;
};

/// The value on one line, with spaces and in the order of its keys.
std::string spacedText(const Json& json) {
  std::string text;
  if (const auto* object = json.get_ptr<const JsonObject*>()) {
    JsonMembers members;
    for (const auto& [key, value] : *object) members.emplace_back(key, spacedText(value));
    return objectText(members);
  }
  if (const auto* array = json.get_ptr<const JsonArray*>()) {
    for (const Json& element : *array) text += (text.empty() ? "" : ", ") + spacedText(element);
    return "[" + text + "]";
  }
  if (const auto* string = json.get_ptr<const std::string*>()) return jsonQuoted(*string);
  return json.dump();
}

}  // namespace

Outcome<std::string> anonymousScenario(std::string_view text) {
  const auto scenario = readScenario(text);
  if (!scenario) return scenario.error();
  Json document = *parseJson(text);
  auto& root = document.get_ref<JsonObject&>();
  Anonymizer anonymizer;
  anonymizer.replaceWorld(root);
  JsonMembers world;
  std::vector<std::string> steps;
  for (auto& [key, value] : root) {
    if (key != kStepsKey) {
      world.emplace_back(key, spacedText(value));
      continue;
    }
    for (Json& step : value) {
      if (step[std::string(kKindKey)] == Keys<step::Set>::name)
        anonymizer.replaceWorld(step.get_ref<JsonObject&>());
      steps.push_back(spacedText(step));
    }
  }
  return scenarioText(world, steps);
}

}  // namespace linewatch::simulation
