#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/extension_context.h"
#include "shared/date.h"
#include "shared/value.h"
#include "simulation/scenario/scenario_json.h"
#include "simulation/scenario/scenario_place.h"
#include "simulation/world/keyed_table.h"

/// Reads the parts of a scenario: one overload of `read` for each type; a record has a table of its keys.
///
/// `read` changes the value it is given: an object is merged into it, everything else replaces it. A part
/// that cannot be read leaves the value as it was and adds a fault.
namespace linewatch::simulation {

/// Keeps the first fault found in a scenario.
class Faults {
 public:
  /// `why` completes a sentence that starts with the path: "must be a number".
  void add(const Place& place, std::string_view why);

  bool isEmpty() const { return !first_; }
  /// The first fault; there must be one.
  Error error() const { return scenarioError(*first_); }

 private:
  std::optional<std::string> first_;
};

/// Why the value is not acceptable ("must be more than 0"); null when it is.
template <class T>
using Check = const char* (*)(const T& value);

/// A key of a record: its name in JSON, the member it stands for, and the member's check.
template <class Record, class Access>
struct Key {
  using Value = std::remove_cvref_t<std::invoke_result_t<const Access&, Record&>>;

  std::string_view name;
  /// A pointer to the member, or a function that returns a reference to it.
  Access access;
  bool isRequired = false;
  Check<Value> check = nullptr;

  constexpr Key required() const { return {name, access, true, check}; }
  constexpr Key checked(Check<Value> check_) const { return {name, access, isRequired, check_}; }
};

template <class Record, class Access>
constexpr Key<Record, Access> key(std::string_view name, Access access) {
  return {name, access};
}
template <class Record, class Member>
constexpr Key<Record, Member Record::*> key(std::string_view name, Member Record::*member) {
  return {name, member};
}

/// The keys of a record, as the tuple `table`.
template <class Record>
struct Keys;
template <class T>
concept Keyed = requires {
  Keys<T>::table;
};

/// The names of an enumeration's values, as the array `table` of pairs.
template <class Enumeration>
struct Names;
template <class T>
concept Named = requires {
  Names<T>::table;
};

// Plain values.

void read(Faults& faults, const Place& place, const Json& json, bool& value);
void read(Faults& faults, const Place& place, const Json& json, double& value);
void read(Faults& faults, const Place& place, const Json& json, Seconds& value);
void read(Faults& faults, const Place& place, const Json& json, std::string& value);
/// Two numbers: the width and the height.
void read(Faults& faults, const Place& place, const Json& json, Size& value);
/// Anything but null. A whole number becomes a signed integer when it fits, else an unsigned one.
void read(Faults& faults, const Place& place, const Json& json, Value& value);
void read(Faults& faults, const Place& place, const Json& json, Dictionary& values);

/// A whole number from `lowest` to `highest`; absent, with a fault, when the JSON value is something else.
std::optional<std::int64_t> wholeNumber(Faults& faults, const Place& place, const Json& json,
                                        std::int64_t lowest, std::int64_t highest);
void read(Faults& faults, const Place& place, const Json& json, std::uint64_t& value);

template <std::signed_integral T>
void read(Faults& faults, const Place& place, const Json& json, T& value) {
  using Limits = std::numeric_limits<T>;
  if (const auto number = wholeNumber(faults, place, json, Limits::min(), Limits::max())) {
    value = static_cast<T>(*number);
  }
}
template <std::unsigned_integral T>
requires(sizeof(T) < sizeof(std::uint64_t)) void read(Faults& faults, const Place& place, const Json& json,
                                                      T& value) {
  if (const auto number = wholeNumber(faults, place, json, 0, std::numeric_limits<T>::max())) {
    value = static_cast<T>(*number);
  }
}

/// Adds the fault that the text is none of the names.
void addUnknownNameFault(Faults& faults, const Place& place, std::vector<std::string_view> names);

template <Named T>
void read(Faults& faults, const Place& place, const Json& json, T& value) {
  const auto* name = json.get_ptr<const std::string*>();
  std::vector<std::string_view> known;
  for (const auto& [knownName, meant] : Names<T>::table) {
    if (name && *name == knownName) {
      value = meant;
      return;
    }
    known.push_back(knownName);
  }
  addUnknownNameFault(faults, place, std::move(known));
}

// Containers.

/// The array or object in `json`; null, with a fault, when the JSON value is something else.
const JsonArray* arrayIn(Faults& faults, const Place& place, const Json& json);
const JsonObject* objectIn(Faults& faults, const Place& place, const Json& json);

template <Keyed Record>
void read(Faults& faults, const Place& place, const Json& json, Record& record);

/// A JSON null makes the value absent.
template <class T>
void read(Faults& faults, const Place& place, const Json& json, std::optional<T>& value) {
  if (json.is_null()) {
    value = std::nullopt;
  } else {
    read(faults, place, json, value ? *value : value.emplace());
  }
}

template <class T>
void read(Faults& faults, const Place& place, const Json& json, std::vector<T>& values) {
  const JsonArray* array = arrayIn(faults, place, json);
  if (array == nullptr) return;
  values.clear();
  values.reserve(array->size());
  for (const Json& element : *array) {
    const std::size_t index = values.size();
    read(faults, Place(place, index), element, values.emplace_back());
  }
}

template <class Compare>
void read(Faults& faults, const Place& place, const Json& json, std::set<std::string, Compare>& values) {
  std::vector<std::string> texts;
  read(faults, place, json, texts);
  values = {texts.begin(), texts.end()};
}

template <class T, class Compare>
void read(Faults& faults, const Place& place, const Json& json, std::map<std::string, T, Compare>& values) {
  const JsonObject* object = objectIn(faults, place, json);
  if (object == nullptr) return;
  for (const auto& [name, element] : *object) read(faults, Place(place, name), element, values[name]);
}

/// The start of an entry whose defaults depend on nothing.
template <class T>
void startEntry(T& /*entry*/, const std::string& /*key*/, std::size_t /*count*/) {}

/// A new entry starts as `startEntry(entry, key, count)` makes it; `count` is the number of entries with it.
template <class T>
void read(Faults& faults, const Place& place, const Json& json, KeyedTable<T>& table) {
  const JsonObject* object = objectIn(faults, place, json);
  if (object == nullptr) return;
  for (const auto& [name, element] : *object) {
    const bool isNew = table.find(name) == nullptr;
    T& entry = table[name];
    if (isNew) startEntry(entry, name, table.size());
    read(faults, Place(place, name), element, entry);
  }
}

// Records.

template <class Record, class KeyOfRecord>
bool readIfNamed(Faults& faults, const Place& place, const std::string& name, const Json& json,
                 Record& record, const KeyOfRecord& key) {
  if (key.name != name) return false;
  const Place within(place, name);
  auto& value = std::invoke(key.access, record);
  read(faults, within, json, value);
  if (const char* why = key.check ? key.check(value) : nullptr) faults.add(within, why);
  return true;
}

bool hasKey(const JsonObject& object, std::string_view name);

/// Reads the object's entries into the record, except the entry with the key `except`.
template <Keyed Record>
void readEntries(Faults& faults, const Place& place, const JsonObject& object, Record& record,
                 std::string_view except = {}) {
  for (const auto& [name, json] : object) {
    if (name == except) continue;
    const bool isKnown = std::apply(
        [&, &name = name, &json = json](const auto&... keys) {
          return (readIfNamed(faults, place, name, json, record, keys) || ...);
        },
        Keys<Record>::table);
    if (!isKnown) faults.add(Place(place, name), "there is no such key");
  }
  const auto require = [&](const auto& key) {
    if (key.isRequired && !hasKey(object, key.name)) faults.add(Place(place, key.name), "is missing");
  };
  std::apply([&](const auto&... keys) { (require(keys), ...); }, Keys<Record>::table);
}

template <Keyed Record>
void read(Faults& faults, const Place& place, const Json& json, Record& record) {
  if (const JsonObject* object = objectIn(faults, place, json)) readEntries(faults, place, *object, record);
}

}  // namespace linewatch::simulation
