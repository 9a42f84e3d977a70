#pragma once

#include <concepts>
#include <string_view>
#include <utility>

#include "shared/date.h"
#include "shared/value.h"
#include "wire/message_enumeration.h"
#include "wire/message_field_holders.h"

/// The dictionary form of records.
namespace linewatch::fields {

template <class Record>
Dictionary dictionary(const Record& record);

template <class Value>
linewatch::Value dictionaryValue(const Value& value) {
  if constexpr (MessageEnumeration<Value>) {
    return enumerationAsString(value);
  } else if constexpr (std::same_as<Value, Date>) {
    return secondsOf(value);
  } else if constexpr (std::same_as<Value, PackedNumbers>) {
    return Array(value.begin(), value.end());
  } else if constexpr (Plain<Value>) {
    return value;
  } else if constexpr (Message<Value>) {
    return value.dictionaryRepresentation();
  } else {
    return dictionary(value);
  }
}

template <class Held>
void describeField(Dictionary& dictionary, std::string_view name, const Held& held) {
  if constexpr (List<Held>::value) {
    Array array;
    if (const auto* elements = List<Held>::peek(held))
      for (const auto& element : *elements) array.push_back(dictionaryValue(*peek(element)));
    if (!array.empty()) dictionary.emplace(name, std::move(array));
  } else if (const auto* value = peek(held)) {
    dictionary.emplace(name, dictionaryValue(*value));
  }
}

template <class Record>
Dictionary dictionary(const Record& record) {
  const auto& fields = RecordFields::of(record);
  Dictionary all;
  forEachField<Record>([&](const auto& field) { describeField(all, field.name, field.in(fields)); });
  return all;
}

}  // namespace linewatch::fields
