#include "shared/value.h"

#include <charconv>
#include <functional>
#include <type_traits>

namespace linewatch {

namespace {

std::size_t combine(std::size_t seed, std::size_t hash) {
  return seed ^ (hash + 0x9E3779B97F4A7C15ULL + (seed << 6) + (seed >> 2));
}

std::size_t hashOf(const Bytes& bytes) {
  return std::hash<std::string_view>{}({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::size_t hashOf(const Array& array) {
  std::size_t seed = array.size();
  for (const Value& element : array) seed = combine(seed, element.hash());
  return seed;
}

std::size_t hashOf(const std::shared_ptr<const Object>& object) { return hashOrZero(object); }
std::size_t hashOf(const Dictionary& dictionary) { return hash(dictionary); }
template <class T>
std::size_t hashOf(const T& scalar) {
  return std::hash<T>{}(scalar);
}

std::string quoted(const Value& value) {
  if (const auto* text = value.get<std::string>()) return '"' + *text + '"';
  return value.description();
}

struct Describe {
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(std::int64_t value) const { return std::to_string(value); }
  std::string operator()(std::uint64_t value) const { return std::to_string(value); }
  std::string operator()(double value) const {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
  }
  std::string operator()(const std::string& value) const { return value; }
  std::string operator()(const Bytes& value) const { return "<" + std::to_string(value.size()) + " bytes>"; }
  std::string operator()(const Array& value) const {
    std::string text = "[";
    for (const Value& element : value) text += (text.size() > 1 ? ", " : "") + quoted(element);
    return text + "]";
  }
  std::string operator()(const Dictionary& value) const { return linewatch::description(value); }
  std::string operator()(const std::shared_ptr<const Object>& value) const {
    return value ? value->description() : "(null)";
  }
};

}  // namespace

Value::Value(Array value) : storage_(std::move(value)) {}
Value::Value(Dictionary value) : storage_(std::move(value)) {}

bool Value::operator==(const Value& other) const {
  if (storage_.index() != other.storage_.index()) return false;
  if (const auto* object = get<std::shared_ptr<const Object>>()) {
    return bothAbsentOrEqual(*object, *other.get<std::shared_ptr<const Object>>());
  }
  return storage_ == other.storage_;
}

std::size_t Value::hash() const {
  return std::visit([](const auto& contents) { return hashOf(contents); }, storage_);
}

std::string Value::description() const { return std::visit(Describe{}, storage_); }

Value noValue() { return Value(std::shared_ptr<const Object>()); }

bool isNoValue(const Value& value) {
  const auto* object = value.get<std::shared_ptr<const Object>>();
  return object != nullptr && *object == nullptr;
}

std::size_t hash(const Dictionary& dictionary) {
  std::size_t seed = dictionary.size();
  for (const auto& [key, value] : dictionary)
    seed = combine(seed, combine(std::hash<std::string>{}(key), value.hash()));
  return seed;
}

std::string description(const Dictionary& dictionary) {
  std::string text = "{";
  for (const auto& [key, value] : dictionary)
    text += (text.size() > 1 ? ", " : "") + key + ": " + quoted(value);
  return text + "}";
}

}  // namespace linewatch
