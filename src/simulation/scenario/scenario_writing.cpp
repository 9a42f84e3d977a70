#include "simulation/scenario/scenario_writing.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <tuple>
#include <utility>
#include <variant>

#include "list/list_dictionary_form.h"
#include "simulation/scenario/scenario_keys.h"
#include "simulation/scenario/scenario_step_keys.h"
#include "wire/json_text.h"

namespace linewatch::simulation {

namespace {

// One overload of `formOf` for each type, as there is one of `read`.

Value formOf(const Dictionary& values) { return values; }
Value formOf(const std::string& text) { return text; }
template <class T>
requires std::is_arithmetic_v<T> Value formOf(T number) { return number; }
Value formOf(const Seconds& seconds) { return seconds.count(); }
Value formOf(const Date& date) { return secondsOf(date); }
Value formOf(const Size& size) { return Array{size.width, size.height}; }
Value formOf(const TransitArtworkDataSource& artwork) { return dictionaryForm(artwork); }
Value formOf(ConnectionFailureDiagnosis diagnosis) { return static_cast<std::int64_t>(diagnosis); }

Value formOf(const std::shared_ptr<const TransitIncidentEntity>& entity) {
  Dictionary form{{"muid", entity->muid()}};
  if (const auto stops = entity->nextStopIDs())
    form.emplace("nextStopIDs", Array(stops->begin(), stops->end()));
  return form;
}

template <Named T>
Value formOf(T value) {
  for (const auto& [name, meant] : Names<T>::table) {
    if (meant == value) return name;
  }
  return noValue();
}

template <Keyed Record>
Value formOf(const Record& record);
template <class T>
Value formOf(const std::vector<T>& values);
template <class T>
Value formOf(const KeyedTable<T>& table);

template <class T>
Value formOf(const std::optional<T>& value) {
  return value ? formOf(*value) : noValue();
}
template <class T>
Value formOf(const Restarting<T>& restarting) {
  return formOf(restarting.value);
}
template <class T, class Compare>
Value formOf(const std::map<std::string, T, Compare>& values) {
  Dictionary form;
  for (const auto& [key, value] : values) form.emplace(key, formOf(value));
  return form;
}
template <class Compare>
Value formOf(const std::set<std::string, Compare>& texts) {
  return Array(texts.begin(), texts.end());
}
template <class T>
Value formOf(const std::vector<T>& values) {
  Array form;
  form.reserve(values.size());
  for (const T& value : values) form.push_back(formOf(value));
  return form;
}
template <class T>
Value entryForm(const T& entry) {
  return written(entry);
}
Value entryForm(const TransitArtworkDataSource& artwork) { return dictionaryForm(artwork); }

template <class T>
Value formOf(const KeyedTable<T>& table) {
  Dictionary form;
  for (const auto& [key, value] : table) form.emplace(key, entryForm(value));
  return form;
}

/// Adds the value of the key when it differs from that of `usual`. The keys' accessors need records that can
/// change.
template <class Record, class KeyOfRecord>
void addChanged(Dictionary& form, Record& record, Record& usual, const KeyOfRecord& key) {
  Value value = formOf(std::invoke(key.access, record));
  if (!(value == formOf(std::invoke(key.access, usual)))) form.emplace(key.name, std::move(value));
}

template <class Record>
Dictionary changedKeys(Record record, Record usual) {
  Dictionary form;
  std::apply([&](const auto&... keys) { (addChanged(form, record, usual, keys), ...); }, Keys<Record>::table);
  return form;
}

template <Keyed Record>
Value formOf(const Record& record) {
  return changedKeys(record, Record{});
}

}  // namespace

Dictionary written(const WorldSystem& system) {
  Dictionary form = changedKeys(system, WorldSystem{});
  form.insert_or_assign("muid", system.muid);
  form.insert_or_assign("name", system.name);
  return form;
}

Dictionary written(const WorldLine& line) {
  Dictionary form = changedKeys(line, WorldLine{});
  form.insert_or_assign("muid", line.muid);
  form.insert_or_assign("name", line.name);
  return form;
}

Dictionary written(const WorldIncident& incident) {
  Dictionary form = changedKeys(incident, WorldIncident{});
  form.insert_or_assign("muid", incident.muid);
  return form;
}

Dictionary written(const WorldFavorite& favorite) { return changedKeys(favorite, WorldFavorite{}); }
Dictionary written(const WorldHost& host) { return changedKeys(host, WorldHost{}); }
Dictionary written(const Error& error) { return changedKeys(error, Error{}); }
Dictionary written(const World& world) { return changedKeys(world, World{}); }

Dictionary written(const Step& step) {
  return std::visit(
      []<class T>(const T& kind) {
        Dictionary form;
        T record = kind;
        const auto add = [&](const auto& key) {
          form.emplace(key.name, formOf(std::invoke(key.access, record)));
        };
        std::apply([&](const auto&... keys) { (add(keys), ...); }, Keys<T>::table);
        form.insert_or_assign(std::string(kKindKey), Keys<T>::name);
        return form;
      },
      step);
}

std::string objectText(const JsonMembers& members) {
  std::string text = "{";
  for (const auto& [key, value] : members) {
    if (text.size() > 1) text += ", ";
    text += jsonQuoted(key) + ": " + value;
  }
  return text + "}";
}

std::string setText(JsonMembers changes) {
  changes.emplace(changes.begin(), kKindKey, jsonQuoted(Keys<step::Set>::name));
  return objectText(changes);
}

std::string scenarioText(const JsonMembers& world, const std::vector<std::string>& steps) {
  std::string text = "{\n";
  for (const auto& [key, value] : world) text += "  " + jsonQuoted(key) + ": " + value + ",\n";
  text += "  " + jsonQuoted(kStepsKey) + ": [";
  for (std::size_t i = 0; i < steps.size(); ++i) text += (i == 0 ? "\n    " : ",\n    ") + steps[i];
  return text + "\n  ]\n}\n";
}

}  // namespace linewatch::simulation
