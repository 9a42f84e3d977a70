#include "simulation/scenario/scenario_reading.h"

#include <algorithm>

#include "wire/json_text.h"

namespace linewatch::simulation {

namespace {

/// The contents when they are of type T; null, with the fault `otherwise`, when they are not.
template <class T>
const T* contentsOf(Faults& faults, const Place& place, const Json& json, std::string_view otherwise) {
  const auto* contents = json.get_ptr<const T*>();
  if (contents == nullptr) faults.add(place, otherwise);
  return contents;
}

std::optional<double> numberIn(const Json& json) {
  return json.is_number() ? std::optional(json.get<double>()) : std::nullopt;
}

std::optional<std::int64_t> signedNumberIn(const Json& json) {
  constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (!json.is_number_integer()) return std::nullopt;
  if (json.is_number_unsigned() && json.get<std::uint64_t>() > kLargest) return std::nullopt;
  return json.get<std::int64_t>();
}

/// Merges the object into the value when that is a dictionary already.
void readDictionary(Faults& faults, const Place& place, const JsonObject& object, Value& value) {
  const Dictionary* before = value.get<Dictionary>();
  Dictionary merged = before ? *before : Dictionary();
  for (const auto& [name, element] : object) {
    read(faults, Place(place, name), element, merged.try_emplace(name, noValue()).first->second);
  }
  value = std::move(merged);
}

void readArray(Faults& faults, const Place& place, const JsonArray& array, Value& value) {
  Array elements(array.size(), noValue());
  for (std::size_t i = 0; i < array.size(); ++i) read(faults, Place(place, i), array[i], elements[i]);
  value = std::move(elements);
}

}  // namespace

void Faults::add(const Place& place, std::string_view why) {
  if (first_) return;
  const std::string path = place.path();
  first_ = (path.empty() ? "the scenario" : path + ":") + " " + std::string(why);
}

void read(Faults& faults, const Place& place, const Json& json, bool& value) {
  if (const auto* contents = contentsOf<bool>(faults, place, json, "must be true or false")) {
    value = *contents;
  }
}

void read(Faults& faults, const Place& place, const Json& json, double& value) {
  if (const auto number = numberIn(json)) {
    value = *number;
  } else {
    faults.add(place, "must be a number");
  }
}

void read(Faults& faults, const Place& place, const Json& json, Seconds& value) {
  double count = value.count();
  read(faults, place, json, count);
  value = Seconds(count);
}

void read(Faults& faults, const Place& place, const Json& json, std::string& value) {
  if (const auto* text = contentsOf<std::string>(faults, place, json, "must be a text")) value = *text;
}

void read(Faults& faults, const Place& place, const Json& json, Size& value) {
  const auto* array = json.get_ptr<const JsonArray*>();
  const auto width = array && array->size() == 2 ? numberIn(array->front()) : std::nullopt;
  const auto height = width ? numberIn(array->back()) : std::nullopt;
  if (!height) return faults.add(place, "must be two numbers, a width and a height");
  value = {*width, *height};
}

void read(Faults& faults, const Place& place, const Json& json, Value& value) {
  if (const auto* object = json.get_ptr<const JsonObject*>()) {
    return readDictionary(faults, place, *object, value);
  }
  if (const auto* array = json.get_ptr<const JsonArray*>()) return readArray(faults, place, *array, value);
  if (const auto* text = json.get_ptr<const std::string*>()) {
    value = *text;
  } else if (json.is_boolean()) {
    value = json.get<bool>();
  } else if (const auto number = signedNumberIn(json)) {
    value = *number;
  } else if (json.is_number_unsigned()) {
    value = json.get<std::uint64_t>();
  } else if (json.is_number()) {
    value = json.get<double>();
  } else {
    faults.add(place, "must not be null");
  }
}

void read(Faults& faults, const Place& place, const Json& json, Dictionary& values) {
  const JsonObject* object = objectIn(faults, place, json);
  if (object == nullptr) return;
  for (const auto& [name, element] : *object) {
    read(faults, Place(place, name), element, values.try_emplace(name, noValue()).first->second);
  }
}

std::optional<std::int64_t> wholeNumber(Faults& faults, const Place& place, const Json& json,
                                        std::int64_t lowest, std::int64_t highest) {
  const auto number = signedNumberIn(json);
  if (number && *number >= lowest && *number <= highest) return number;
  faults.add(place,
             "must be a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
  return std::nullopt;
}

void read(Faults& faults, const Place& place, const Json& json, std::uint64_t& value) {
  if (json.is_number_unsigned()) {
    value = json.get<std::uint64_t>();
  } else {
    faults.add(place, "must be a whole number from 0 to 18446744073709551615");
  }
}

void addUnknownNameFault(Faults& faults, const Place& place, std::vector<std::string_view> names) {
  std::string why = "must be one of";
  for (std::size_t i = 0; i < names.size(); ++i) why += (i == 0 ? " " : ", ") + jsonQuoted(names[i]);
  faults.add(place, why);
}

const JsonArray* arrayIn(Faults& faults, const Place& place, const Json& json) {
  return contentsOf<JsonArray>(faults, place, json, "must be an array");
}

const JsonObject* objectIn(Faults& faults, const Place& place, const Json& json) {
  return contentsOf<JsonObject>(faults, place, json, "must be an object");
}

bool hasKey(const JsonObject& object, std::string_view name) {
  return std::ranges::any_of(object, [&](const auto& entry) { return entry.first == name; });
}

}  // namespace linewatch::simulation
