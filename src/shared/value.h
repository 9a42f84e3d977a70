#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "shared/object.h"

namespace linewatch {

using Bytes = std::vector<std::uint8_t>;

class Value;
using Array = std::vector<Value>;
/// Keyed by UTF-8 text, in byte order of the keys.
using Dictionary = std::map<std::string, Value, std::less<>>;

/// A value of one of several types. User infos, preferences, error infos and dictionary forms consist of
/// values.
///
/// Two values are equal when they hold the same kind and equal contents, at every level; a signed and an
/// unsigned integer are different kinds. Equal values hash equally.
class Value {
 public:
  using Storage = std::variant<bool, std::int64_t, std::uint64_t, double, std::string, Bytes, Array,
                               Dictionary, std::shared_ptr<const Object>>;

  Value(bool value) : storage_(value) {}
  template <std::signed_integral T>
  Value(T value) : storage_(static_cast<std::int64_t>(value)) {}
  template <std::unsigned_integral T>
  requires(!std::same_as<T, bool>) Value(T value) : storage_(static_cast<std::uint64_t>(value)) {}
  Value(double value) : storage_(value) {}
  Value(std::string value) : storage_(std::move(value)) {}
  Value(std::string_view value) : storage_(std::string(value)) {}
  Value(const char* value) : storage_(std::string(value)) {}
  Value(Bytes value) : storage_(std::move(value)) {}
  Value(Array value);
  Value(Dictionary value);
  Value(std::shared_ptr<const Object> object) : storage_(std::move(object)) {}

  const Storage& storage() const { return storage_; }

  /// The contents when they are of type T, null otherwise.
  template <class T>
  const T* get() const {
    return std::get_if<T>(&storage_);
  }

  bool operator==(const Value& other) const;
  std::size_t hash() const;

  /// The text form that logs show: texts bare at the top and quoted inside, bytes as their length, keys in
  /// order.
  std::string description() const;

 private:
  Storage storage_;
};

/// The value for "no value": an absent object.
Value noValue();
bool isNoValue(const Value& value);
/// The value, or `noValue()` when it is absent.
template <class T>
Value valueOrNone(const std::optional<T>& value) {
  return value ? Value(*value) : noValue();
}

std::size_t hash(const Dictionary& dictionary);
std::string description(const Dictionary& dictionary);

}  // namespace linewatch
