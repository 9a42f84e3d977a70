#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "shared/date.h"
#include "wire/codable_message.h"
#include "wire/message_enumeration.h"
#include "wire/message_field.h"

namespace linewatch {

/// The class of the objects that reading and deep copying create where a record holds a `T`. Specialised for
/// interfaces, which have no objects of their own.
template <class T>
struct StoredAs {
  using Type = T;
};

/// Gives access to a record's fields. They are members of the record, or of a struct `Record::Fields` in the
/// member `fields_`; in the second case the record befriends this struct.
struct RecordFields {
  template <class Record>
  static constexpr bool areInStruct = requires {
    typename std::remove_const_t<Record>::Fields;
  };

  template <class Record>
  static auto& of(Record& record) {
    if constexpr (areInStruct<Record>) {
      return record.fields_;
    } else {
      return record;
    }
  }
};

/// Uniform access to the value of a field, whether it is a plain member, flagged, optional or a reference.
namespace fields {

// Kinds of value.

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

template <Varint T>
std::uint64_t varintOf(T value) {
  if constexpr (std::unsigned_integral<T>) {
    return value;
  } else {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
  }
}

// Kinds of holder. `peek` gives the value, or null when it is absent; `fresh` makes it present, for reading
// into.

template <class T>
struct Holder {
  using Value = T;
  static const T* peek(const T& held) {
    if constexpr (std::same_as<T, double>) {
      return std::bit_cast<std::uint64_t>(held) != 0 ? &held : nullptr;  // a negative zero is present
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

/// A list of references; an optional list may be absent.
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

}  // namespace fields

}  // namespace linewatch
