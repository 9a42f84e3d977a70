#include "simulation/scenario/scenario_json.h"

#include <cstddef>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "simulation/scenario/scenario_place.h"

namespace linewatch::simulation {

namespace {

constexpr std::size_t kMaximumDepth = 100;

/// Builds the document from the parser's events, with the path to each value. Refuses keys given twice and
/// values that nest too deep. Entries are appended without a search for their key, so that large objects take
/// linear time.
class DocumentBuilder final : public nlohmann::json_sax<Json> {
 public:
  bool null() override { return addValue(nullptr); }
  bool boolean(bool value) override { return addValue(value); }
  bool number_integer(number_integer_t value) override { return addValue(value); }
  bool number_unsigned(number_unsigned_t value) override { return addValue(value); }
  bool number_float(number_float_t value, const string_t&) override { return addValue(value); }
  bool string(string_t& value) override { return addValue(std::move(value)); }
  bool binary(binary_t&) override { return false; }
  bool start_object(std::size_t) override { return open(Json::object()); }
  bool start_array(std::size_t) override { return open(Json::array()); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }

  bool key(string_t& name) override {
    open_.back().key = name;
    if (!open_.back().keys.insert(std::move(name)).second) return fail(path() + ": is given twice");
    return true;
  }

  bool parse_error(std::size_t, const std::string& token, const Json::exception& exception) override {
    if (dynamic_cast<const Json::out_of_range*>(&exception) == nullptr)
      return fail(sentenceOf(exception.what()));
    const std::string where = path();
    return fail((where.empty() ? "" : where + ": ") + token + " is too large a number");
  }

  Outcome<Json> outcome() {
    if (fault_) return scenarioError(*std::move(fault_));
    return std::move(document_);
  }

 private:
  /// An array or object that has begun and not ended.
  struct Container {
    Json* value;
    /// The number of complete elements or entries.
    std::size_t count = 0;
    /// The key of the current entry, and the keys of all entries so far.
    std::string key;
    std::set<std::string> keys;
  };

  Json* add(Json value) {
    if (open_.empty()) return &(document_ = std::move(value));
    Container& parent = open_.back();
    if (auto* array = parent.value->get_ptr<JsonArray*>()) return &array->emplace_back(std::move(value));
    return &parent.value->get_ref<JsonObject&>().emplace_back(parent.key, std::move(value)).second;
  }
  bool addValue(Json value) {
    add(std::move(value));
    return endValue();
  }
  bool open(Json container) {
    if (open_.size() == kMaximumDepth) return fail("nested too deep: more than 100 levels");
    Json* added = add(std::move(container));
    open_.push_back({added, 0, {}, {}});
    return true;
  }
  bool close() {
    open_.pop_back();
    return endValue();
  }
  bool endValue() {
    if (!open_.empty()) ++open_.back().count;
    return true;
  }
  bool fail(std::string sentence) {
    fault_ = std::move(sentence);
    return false;
  }

  /// The path to the value that is being read.
  std::string path() const {
    std::string path;
    for (const Container& container : open_) {
      if (container.value->is_array()) {
        appendIndex(path, container.count);
      } else {
        appendKey(path, container.key);
      }
    }
    return path;
  }

  /// The library's message without its own name and number in front: "line 3, column 5: …".
  static std::string sentenceOf(std::string_view message) {
    for (const std::string_view start : {"parse error at ", "] "}) {
      const auto place = message.find(start);
      if (place != std::string_view::npos) return std::string(message.substr(place + start.size()));
    }
    return std::string(message);
  }

  Json document_;
  std::vector<Container> open_;
  std::optional<std::string> fault_;
};

}  // namespace

Error scenarioError(std::string sentence) {
  return {std::string(kScenarioErrorDomain), 1, {{kLocalizedDescriptionKey, std::move(sentence)}}};
}

Outcome<Json> parseJson(std::string_view text) {
  DocumentBuilder builder;
  Json::sax_parse(text, &builder);
  return builder.outcome();
}

}  // namespace linewatch::simulation
