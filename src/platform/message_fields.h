#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/codable_message.h"
#include "platform/date.h"
#include "platform/message_enumeration.h"
#include "platform/message_field.h"
#include "platform/number_hash.h"

/// The operations of every message and nested record, each one function over the table of fields
/// (`message_field.h`). For source files that define messages; who only uses a message includes its header.
namespace linewatch {

/// The class whose objects stand in a list or reference of `T` that has been read or made for storing: `T`
/// itself, but specialised where `T` is an interface.
template <class T>
struct StoredAs {
  using Type = T;
};

/// Reaches the struct in which a class keeps its fields, for classes that befriend it and name it `Fields`.
/// Other records are their own fields.
struct RecordFields {
  template <class Record>
  static constexpr bool areApart = requires {
    typename std::remove_const_t<Record>::Fields;
  };

  template <class Record>
  static auto& of(Record& record) {
    if constexpr (areApart<Record>) {
      return record.fields_;
    } else {
      return record;
    }
  }
};

namespace fields {

// What a value is.

template <class T>
concept Varint = std::integral<T> || MessageEnumeration<T>;
template <class T>
concept Message = std::derived_from<T, CodableMessage>;
/// Numbers packed into one length-delimited entry.
using PackedNumbers = std::vector<std::uint64_t>;
template <class T>
concept Scalar = Varint<T> || std::same_as<T, double> || std::same_as<T, Date>;
template <class T>
concept Plain = Scalar<T> || std::same_as<T, std::string> || std::same_as<T, PackedNumbers>;

// What holds it. `peek` gives the value when it is present, `fresh` a present one to be filled.

template <class T>
struct Holder {
  using Value = T;
  static const T* peek(const T& held) {
    if constexpr (std::same_as<T, double>) {
      return std::bit_cast<std::uint64_t>(held) != 0 ? &held : nullptr;  // keeps a negative zero
    } else {
      return held != T{} ? &held : nullptr;
    }
  }
  static T& fresh(T& held) { return held; }
};

template <class T>
struct Holder<Flagged<T>> {
  using Value = T;
  static const T* peek(const Flagged<T>& held) { return held.isPresent ? &held.value : nullptr; }
  static T& fresh(Flagged<T>& held) {
    held.isPresent = true;
    return held.value;
  }
};

template <class T>
struct Holder<std::optional<T>> {
  using Value = T;
  static const T* peek(const std::optional<T>& held) { return held ? &*held : nullptr; }
  static T& fresh(std::optional<T>& held) { return held.emplace(); }
};

template <class T>
struct Holder<std::shared_ptr<T>> {
  using Value = typename StoredAs<std::remove_const_t<T>>::Type;
  static const Value* peek(const std::shared_ptr<T>& held) { return static_cast<const Value*>(held.get()); }
  static Value& fresh(std::shared_ptr<T>& held) {
    auto made = std::make_shared<Value>();
    Value& value = *made;
    held = std::move(made);
    return value;
  }
};

template <class T>
struct IsReference : std::false_type {};
template <class T>
struct IsReference<std::shared_ptr<T>> : std::true_type {};

/// A list of references, which may itself be absent.
template <class T>
struct List : std::false_type {};
template <class T>
struct List<std::vector<std::shared_ptr<T>>> : std::true_type {
  using Elements = std::vector<std::shared_ptr<T>>;
  static const Elements* peek(const Elements& held) { return &held; }
  static Elements& present(Elements& held) { return held; }
};
template <class T>
struct List<std::optional<std::vector<std::shared_ptr<T>>>> : std::true_type {
  using Elements = std::vector<std::shared_ptr<T>>;
  static const Elements* peek(const std::optional<Elements>& held) { return held ? &*held : nullptr; }
  static Elements& present(std::optional<Elements>& held) { return held ? *held : held.emplace(); }
};

template <class Held>
const auto* peek(const Held& held) {
  return Holder<Held>::peek(held);
}

/// The table of the record's fields.
template <class Record>
constexpr const auto& tableOf() {
  using Fields = std::remove_cvref_t<decltype(RecordFields::of(std::declval<Record&>()))>;
  return FieldTable<Fields>::fields;
}

/// Calls `visit(field)` for each field in the order of the numbers.
template <class Record, class Visit>
void forEachField(Visit visit) {
  std::apply([&](const auto&... field) { (visit(field), ...); }, tableOf<Record>());
}

// Writing.

template <class Record>
void write(MessageWriter& writer, const Record& record);

template <Varint T>
std::uint64_t varintOf(T value) {
  if constexpr (std::unsigned_integral<T>) {
    return value;
  } else {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
  }
}

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

// Reading.

template <class Record>
bool read(MessageReader& reader, Record& record);

inline bool readNumbers(MessageReader& reader, PackedNumbers& numbers) {
  while (reader.hasMore()) numbers.push_back(reader.readVarint());
  return !reader.hasError();
}

/// A fresh message is of exactly this class, so that its own reading is called without looking it up.
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

/// False only when a nested message does not read; a number or text that does not read sets the error flag.
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

// Copying and merging.

template <class Record>
void copyDeep(const Record& from, Record& to);
template <class Record>
void merge(const Record& from, Record& into);

template <class T>
std::shared_ptr<T> deepCopy(const std::shared_ptr<T>& reference) {
  using Value = typename Holder<std::shared_ptr<T>>::Value;
  if (!reference) return nullptr;
  const Value& original = *peek(reference);
  if constexpr (Message<Value>) {
    return std::static_pointer_cast<Value>(original.deepCopy());
  } else {
    auto copy = std::make_shared<Value>();
    copyDeep(original, *copy);
    return copy;
  }
}

/// `isDeep`: nested records and messages are copied as well, not shared.
template <bool isDeep, class Held>
void copyField(const Held& from, Held& to) {
  if constexpr (List<Held>::value) {
    const auto* elements = List<Held>::peek(from);
    if (!elements || (elements->empty() && !isDeep)) return;
    auto& copies = List<Held>::present(to);
    copies.clear();
    for (const auto& element : *elements) {
      if constexpr (isDeep) {
        copies.push_back(deepCopy(element));
      } else {
        copies.push_back(element);
      }
    }
  } else if (!peek(from)) {
    return;
  } else if constexpr (isDeep && IsReference<Held>::value) {
    to = deepCopy(from);
  } else if constexpr (isDeep && !Plain<typename Holder<Held>::Value>) {
    copyDeep(*from, Holder<Held>::fresh(to));
  } else {
    to = from;
  }
}

template <class Record>
void copyShallow(const Record& from, Record& to) {
  const auto& source = RecordFields::of(from);
  auto& target = RecordFields::of(to);
  forEachField<Record>([&](const auto& field) { copyField<false>(field.in(source), field.in(target)); });
}

template <class Record>
void copyDeep(const Record& from, Record& to) {
  const auto& source = RecordFields::of(from);
  auto& target = RecordFields::of(to);
  forEachField<Record>([&](const auto& field) { copyField<true>(field.in(source), field.in(target)); });
}

template <class T>
void mergeReferences(const std::shared_ptr<T>& from, std::shared_ptr<T>& into) {
  using Value = typename Holder<std::shared_ptr<T>>::Value;
  if constexpr (std::is_const_v<T>) {
    auto merged = std::make_shared<Value>(*peek(into));
    merge(*peek(from), *merged);
    into = std::move(merged);
  } else if constexpr (Message<Value>) {
    into->mergeFrom(*from);
  } else {
    merge(*from, *into);
  }
}

template <class Held>
void mergeField(const Held& from, Held& into) {
  if constexpr (List<Held>::value) {
    const auto* elements = List<Held>::peek(from);
    if (!elements || elements->empty()) return;
    const auto added = *elements;  // a message may be merged with itself
    auto& list = List<Held>::present(into);
    list.insert(list.end(), added.begin(), added.end());
  } else if (!peek(from)) {
    return;
    // NOLINTNEXTLINE(bugprone-branch-clone): what is taken over as it is, for two reasons.
  } else if constexpr (Plain<typename Holder<Held>::Value>) {
    into = from;
  } else if (!peek(into)) {
    into = from;
  } else if constexpr (IsReference<Held>::value) {
    mergeReferences(from, into);
  } else {
    merge(*from, *into);
  }
}

template <class Record>
void merge(const Record& from, Record& into) {
  const auto& source = RecordFields::of(from);
  auto& target = RecordFields::of(into);
  forEachField<Record>([&](const auto& field) { mergeField(field.in(source), field.in(target)); });
}

// Equality and hash.

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

// Dictionary form.

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

}  // namespace fields

template <class Message>
Dictionary FieldedMessage<Message>::dictionaryRepresentation() const {
  return fields::dictionary(self());
}

template <class Message>
bool FieldedMessage<Message>::readFrom(MessageReader& reader) {
  return fields::read(reader, self());
}

template <class Message>
void FieldedMessage<Message>::writeTo(MessageWriter& writer) const {
  fields::write(writer, self());
}

template <class Message>
void FieldedMessage<Message>::copyTo(CodableMessage& other) const {
  auto* same = dynamic_cast<Message*>(&other);
  if (same != nullptr && same != this) fields::copyShallow(self(), *same);
}

template <class Message>
std::shared_ptr<CodableMessage> FieldedMessage<Message>::deepCopy() const {
  auto copy = std::make_shared<Message>();
  fields::copyDeep(self(), *copy);
  return copy;
}

template <class Message>
bool FieldedMessage<Message>::isEqual(const Object& other) const {
  return typeid(*this) == typeid(other) && fields::equal(self(), static_cast<const Message&>(other));
}

template <class Message>
std::size_t FieldedMessage<Message>::hash() const {
  return fields::hash(self());
}

template <class Message>
void FieldedMessage<Message>::mergeFrom(const CodableMessage& other) {
  if (const auto* same = dynamic_cast<const Message*>(&other)) fields::merge(*same, self());
}

}  // namespace linewatch
