#pragma once

#include <concepts>
#include <cstdint>
#include <string>

#include "shared/date.h"
#include "wire/message_field_holders.h"
#include "wire/message_writer.h"

/// Writes records in the wire format.
namespace linewatch::fields {

template <class Record>
void write(MessageWriter& writer, const Record& record);

template <class Value>
void writeValue(MessageWriter& writer, std::uint32_t number, const Value& value) {
  if constexpr (Varint<Value>) {
    writer.writeVarintField(number, varintOf(value));
  } else if constexpr (std::same_as<Value, double>) {
    writer.writeDoubleField(number, value);
  } else if constexpr (std::same_as<Value, Date>) {
    writer.writeDoubleField(number, secondsOf(value));
  } else if constexpr (std::same_as<Value, std::string>) {
    writer.writeStringField(number, value);
  } else {
    const auto mark = writer.beginMessage(number);
    if constexpr (std::same_as<Value, PackedNumbers>) {
      for (const std::uint64_t element : value) writer.writeVarint(element);
    } else if constexpr (Message<Value>) {
      value.writeTo(writer);
    } else {
      write(writer, value);
    }
    writer.endMessage(mark);
  }
}

template <class Held>
void writeField(MessageWriter& writer, std::uint32_t number, const Held& held) {
  if constexpr (List<Held>::value) {
    if (const auto* elements = List<Held>::peek(held))
      for (const auto& element : *elements) writeValue(writer, number, *peek(element));
  } else if (const auto* value = peek(held)) {
    writeValue(writer, number, *value);
  }
}

template <class Record>
void write(MessageWriter& writer, const Record& record) {
  const auto& fields = RecordFields::of(record);
  forEachField<Record>([&](const auto& field) { writeField(writer, field.number, field.in(fields)); });
}

}  // namespace linewatch::fields
