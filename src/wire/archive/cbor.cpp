#include "wire/archive/cbor.h"

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace linewatch::cbor {

namespace {

/// Builds the JSON form within the limits. The parser recurses at each level, so the limit of nesting
/// protects the stack.
class LimitedBuilder final : public nlohmann::json_sax<Json> {
 public:
  explicit LimitedBuilder(std::size_t maximumItemCount) : maximumItemCount_(maximumItemCount) {}

  Json takeRoot() { return std::move(root_); }

  // No value is written as a null.
  bool null() override { return false; }
  bool boolean(bool value) override { return add(value) != nullptr; }
  bool number_integer(number_integer_t value) override { return add(value) != nullptr; }
  bool number_unsigned(number_unsigned_t value) override { return add(value) != nullptr; }
  bool number_float(number_float_t value, const string_t&) override { return add(value) != nullptr; }
  bool string(string_t& value) override { return add(std::move(value)) != nullptr; }
  bool binary(binary_t& value) override { return add(std::move(value)) != nullptr; }
  bool start_object(std::size_t) override { return open(Json::object()); }
  bool start_array(std::size_t) override { return open(Json::array()); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }
  bool key(string_t& value) override {
    key_ = std::move(value);
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const Json::exception&) override { return false; }

 private:
  /// A level of a value takes up to two levels of CBOR: an archived object and its map.
  static constexpr std::size_t kMaximumNesting = 2 * kMaximumDepth + 2;

  /// Null when there are too many items.
  template <class T>
  Json* add(T&& value) {
    if (++count_ > maximumItemCount_) return nullptr;
    if (open_.empty()) return &(root_ = std::forward<T>(value));
    Json& parent = *open_.back();
    if (parent.is_object()) return &(parent[std::move(key_)] = std::forward<T>(value));
    return &parent.emplace_back(std::forward<T>(value));
  }

  bool open(Json container) {
    Json* added = open_.size() < kMaximumNesting ? add(std::move(container)) : nullptr;
    if (added != nullptr) open_.push_back(added);
    return added != nullptr;
  }

  bool close() {
    open_.pop_back();
    return true;
  }

  Json root_;
  std::vector<Json*> open_;
  string_t key_;
  const std::size_t maximumItemCount_;
  std::size_t count_ = 0;
};

std::optional<Json> jsonOfArray(const Array& array, int depth) {
  Json json = tagged(Kind::array);
  for (const Value& element : array) {
    auto part = jsonOf(element, depth - 1);
    if (!part) return std::nullopt;
    json.push_back(std::move(*part));
  }
  return json;
}

std::optional<Json> jsonOfDictionary(const Dictionary& dictionary, int depth) {
  Json json = Json::object();
  for (const auto& [key, value] : dictionary) {
    auto part = jsonOf(value, depth - 1);
    if (!part) return std::nullopt;
    json.emplace(key, std::move(*part));
  }
  return json;
}

std::optional<Value> integerOf(const Json& json) {
  constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (json.is_number_unsigned() && json.get<std::uint64_t>() > kLargest) return std::nullopt;
  return Value(json.get<std::int64_t>());
}

std::optional<Value> arrayOf(const Json& json) {
  Array array;
  array.reserve(json.size() - 1);
  for (std::size_t i = 1; i < json.size(); ++i) {
    auto element = valueOf(json[i]);
    if (!element) return std::nullopt;
    array.push_back(std::move(*element));
  }
  return Value(std::move(array));
}

std::optional<Value> taggedValueOf(const Json& json) {
  const auto kind = kindOf(json);
  if (kind == Kind::array) return arrayOf(json);
  if (kind != Kind::unsignedInteger || json.size() != 2 || !json[1].is_number_unsigned()) return std::nullopt;
  return Value(json[1].get<std::uint64_t>());
}

std::optional<Value> dictionaryOf(const Json& json) {
  Dictionary dictionary;
  for (const auto& [key, part] : json.get_ref<const Json::object_t&>()) {
    auto value = valueOf(part);
    if (!value) return std::nullopt;
    dictionary.emplace_hint(dictionary.end(), key, std::move(*value));
  }
  return Value(std::move(dictionary));
}

std::size_t itemCountOf(const Json& json) {
  std::size_t count = 1;
  if (!json.is_structured()) return count;
  for (const Json& part : json) count += itemCountOf(part);
  return count;
}

}  // namespace

Json tagged(Kind kind) { return Json::array({static_cast<std::uint64_t>(kind)}); }

std::optional<Kind> kindOf(const Json& json) {
  if (!json.is_array() || json.empty() || !json[0].is_number_unsigned()) return std::nullopt;
  const auto number = json[0].get<std::uint64_t>();
  if (number > static_cast<std::uint64_t>(Kind::object)) return std::nullopt;
  return static_cast<Kind>(number);
}

namespace {

struct JsonOfContents {
  int depth;

  std::optional<Json> operator()(bool value) const { return Json(value); }
  std::optional<Json> operator()(std::int64_t value) const { return Json(value); }
  std::optional<Json> operator()(std::uint64_t value) const {
    Json json = tagged(Kind::unsignedInteger);
    json.push_back(value);
    return json;
  }
  std::optional<Json> operator()(double value) const { return Json(value == 0 ? 0.0 : value); }
  std::optional<Json> operator()(const std::string& value) const { return Json(value); }
  std::optional<Json> operator()(const Bytes& value) const { return Json::binary(value); }
  std::optional<Json> operator()(const Array& value) const { return jsonOfArray(value, depth); }
  std::optional<Json> operator()(const Dictionary& value) const { return jsonOfDictionary(value, depth); }
  std::optional<Json> operator()(const std::shared_ptr<const Object>&) const { return std::nullopt; }
};

}  // namespace

std::optional<Json> jsonOf(const Value& value, int depth) {
  if (depth <= 0) return std::nullopt;
  return std::visit(JsonOfContents{depth}, value.storage());
}

std::optional<Value> valueOf(const Json& json) {
  switch (json.type()) {
    case Json::value_t::boolean:
      return Value(json.get<bool>());
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
      return integerOf(json);
    case Json::value_t::number_float:
      return Value(json.get<double>());
    case Json::value_t::string:
      return Value(json.get_ref<const std::string&>());
    case Json::value_t::binary:
      return Value(static_cast<const Bytes&>(json.get_binary()));
    case Json::value_t::array:
      return taggedValueOf(json);
    case Json::value_t::object:
      return dictionaryOf(json);
    default:
      return std::nullopt;
  }
}

std::optional<Json> read(std::span<const std::uint8_t> bytes, std::size_t maximumItemCount) {
  LimitedBuilder builder(maximumItemCount);
  if (!Json::sax_parse(bytes.begin(), bytes.end(), &builder, Json::input_format_t::cbor)) return std::nullopt;
  return builder.takeRoot();
}

bool canBeRead(const Json& json, std::size_t maximumItemCount) {
  return itemCountOf(json) <= maximumItemCount;
}

std::optional<Bytes> bytesOf(const Value& value) {
  const auto json = jsonOf(value);
  return json && canBeRead(*json) ? std::optional(Json::to_cbor(*json)) : std::nullopt;
}

std::optional<Value> valueIn(std::span<const std::uint8_t> bytes) {
  const auto json = read(bytes);
  return json ? valueOf(*json) : std::nullopt;
}

}  // namespace linewatch::cbor
