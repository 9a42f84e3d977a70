#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <tuple>

#include "shared/date.h"
#include "shared/number_hash.h"
#include "wire/message_field_holders.h"

/// Compares and hashes records.
namespace linewatch::fields {

template <class Record>
bool equal(const Record& a, const Record& b);
template <class Record>
std::size_t hash(const Record& record);

template <class Value>
bool valuesEqual(const Value& a, const Value& b) {
  if constexpr (Plain<Value>) {
    return a == b;
  } else if constexpr (Message<Value>) {
    return a.isEqual(b);
  } else {
    return equal(a, b);
  }
}

template <class Held>
bool fieldsEqual(const Held& a, const Held& b) {
  if constexpr (List<Held>::value) {
    const auto *left = List<Held>::peek(a), *right = List<Held>::peek(b);
    if (!left || !right) return left == right;
    return std::equal(left->begin(), left->end(), right->begin(), right->end(),
                      [](const auto& x, const auto& y) { return fieldsEqual(x, y); });
  } else {
    const auto *left = peek(a), *right = peek(b);
    if (!left || !right) return left == right;
    return valuesEqual(*left, *right);
  }
}

template <class Record>
bool equal(const Record& a, const Record& b) {
  const auto &left = RecordFields::of(a), &right = RecordFields::of(b);
  return std::apply(
      [&](const auto&... field) { return (fieldsEqual(field.in(left), field.in(right)) && ...); },
      tableOf<Record>());
}

template <class Value>
std::size_t hashOfValue(const Value& value) {
  if constexpr (Varint<Value>) {
    return hashOfNumber(varintOf(value));
  } else if constexpr (std::same_as<Value, double>) {
    return hashOfNumber(value);
  } else if constexpr (std::same_as<Value, Date>) {
    return hashOfNumber(secondsOf(value));
  } else if constexpr (std::same_as<Value, std::string>) {
    return std::hash<std::string>{}(value);
  } else if constexpr (std::same_as<Value, PackedNumbers>) {
    std::size_t all = value.size();
    for (const std::uint64_t element : value) all = all * 31 + hashOfNumber(element);
    return all;
  } else if constexpr (Message<Value>) {
    return value.hash();
  } else {
    return hash(value);
  }
}

template <class Held>
std::size_t hashOfField(const Held& held) {
  if constexpr (List<Held>::value) {
    const auto* elements = List<Held>::peek(held);
    std::size_t all = elements ? elements->size() : 0;
    if (elements)
      for (const auto& element : *elements) all = all * 31 + hashOfValue(*peek(element));
    return all;
  } else {
    const auto* value = peek(held);
    return value ? hashOfValue(*value) : 0;
  }
}

template <class Record>
std::size_t hash(const Record& record) {
  const auto& fields = RecordFields::of(record);
  std::size_t all = 0;
  forEachField<Record>([&](const auto& field) { all ^= hashOfField(field.in(fields)); });
  return all;
}

}  // namespace linewatch::fields
