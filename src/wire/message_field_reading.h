#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>

#include "shared/date.h"
#include "wire/message_field_holders.h"
#include "wire/message_reader.h"

/// Reads records from the wire format.
namespace linewatch::fields {

template <class Record>
bool read(MessageReader& reader, Record& record);

inline bool readNumbers(MessageReader& reader, PackedNumbers& numbers) {
  while (reader.hasMore()) numbers.push_back(reader.readVarint());
  return !reader.hasError();
}

/// `value` is of exactly this class, so that its `readFrom` can be called without virtual dispatch.
template <class Value>
bool readNested(MessageReader& reader, Value& value) {
  const auto bound = reader.boundToMessage();
  if (!bound) return false;
  bool isRead;
  if constexpr (std::same_as<Value, PackedNumbers>) {
    isRead = readNumbers(reader, value);
  } else if constexpr (Message<Value>) {
    isRead = value.Value::readFrom(reader);
  } else {
    isRead = read(reader, value);
  }
  if (isRead) reader.liftBound(*bound);
  return isRead;
}

/// False only when a nested message cannot be read. A malformed number or text sets the reader's error flag.
template <class Value>
bool readValue(MessageReader& reader, Value& value) {
  if constexpr (MessageEnumeration<Value>) {
    value = static_cast<Value>(static_cast<std::int32_t>(reader.readVarint()));
  } else if constexpr (std::same_as<Value, bool>) {
    value = reader.readVarint() != 0;
  } else if constexpr (std::integral<Value>) {
    value = static_cast<Value>(reader.readVarint());
  } else if constexpr (std::same_as<Value, double>) {
    value = reader.readDouble();
  } else if constexpr (std::same_as<Value, Date>) {
    value = Date(Seconds(reader.readDouble()));
  } else if constexpr (std::same_as<Value, std::string>) {
    reader.readString(value);
  } else {
    return readNested(reader, value);
  }
  return true;
}

template <class Held>
bool readField(MessageReader& reader, Held& held) {
  if constexpr (List<Held>::value) {
    auto& element = List<Held>::present(held).emplace_back();
    return readValue(reader, Holder<std::remove_cvref_t<decltype(element)>>::fresh(element));
  } else {
    return readValue(reader, Holder<Held>::fresh(held));
  }
}

template <class Record>
bool readFieldWithTag(MessageReader& reader, std::uint64_t tag, Record& record) {
  bool isRead = true;
  const auto readIfNumbered = [&](const auto& field) {
    if (tag >> 3 != field.number) return false;
    isRead = readField(reader, field.in(record));
    return true;
  };
  const bool isKnown =
      std::apply([&](const auto&... field) { return (readIfNumbered(field) || ...); }, tableOf<Record>());
  return isKnown ? isRead : reader.skipValue(tag);
}

template <class Record>
bool read(MessageReader& reader, Record& record) {
  constexpr unsigned kEndOfGroup = 4;
  auto& fields = RecordFields::of(record);
  while (reader.hasMore()) {
    const std::uint64_t tag = reader.readVarint();
    if (reader.hasError() || (tag & 7) == kEndOfGroup) break;
    if (!readFieldWithTag(reader, tag, fields)) return false;
  }
  return !reader.hasError();
}

}  // namespace linewatch::fields
