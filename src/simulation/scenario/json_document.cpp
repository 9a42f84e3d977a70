#include "simulation/scenario/json_document.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <utility>

#include <nlohmann/json.hpp>

#include "simulation/scenario/scenario_place.h"

namespace linewatch::simulation {

namespace {

constexpr std::size_t kMaximumDepth = 100;

/// Builds the document from what the parser reports, bottom up: what is open stands on a stack.
class Builder final : public nlohmann::json_sax<nlohmann::json> {
 public:
  bool null() override { return add({nullptr}); }
  bool boolean(bool value) override { return add({value}); }
  bool number_integer(std::int64_t value) override { return add({value}); }
  bool number_unsigned(std::uint64_t value) override { return add({value}); }
  bool number_float(double value, const std::string&) override { return add({value}); }
  bool string(std::string& value) override { return add({std::move(value)}); }
  bool binary(nlohmann::json::binary_t&) override { return false; }

  bool start_object(std::size_t) override { return open({JsonObject()}); }
  bool start_array(std::size_t) override { return open({JsonArray()}); }
  bool key(std::string& name) override {
    if (!open_.back().keys.insert(name).second) return fail(pathTo(name) + ": is given twice");
    open_.back().key = std::move(name);
    return true;
  }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }

  bool parse_error(std::size_t, const std::string& token,
                   const nlohmann::json::exception& exception) override {
    if (dynamic_cast<const nlohmann::json::out_of_range*>(&exception) != nullptr)
      return fail(pathWithin(open_.size()) + ": " + token + " is too large a number");
    return fail(sentenceOf(exception.what()));
  }

  Outcome<Json> outcome() {
    if (fault_) return scenarioError(*std::move(fault_));
    return std::move(document_);
  }

 private:
  struct Open {
    Json value;
    std::set<std::string> keys;
    std::string key;
  };

  bool add(Json value) {
    if (open_.empty()) {
      document_ = std::move(value);
    } else if (auto* array = std::get_if<JsonArray>(&open_.back().value.contents)) {
      array->push_back(std::move(value));
    } else {
      std::get<JsonObject>(open_.back().value.contents)
          .push_back({std::move(open_.back().key), std::move(value)});
    }
    return true;
  }
  bool open(Json value) {
    if (open_.size() == kMaximumDepth) return fail("nested too deep: more than 100 levels");
    open_.push_back({std::move(value), {}, {}});
    return true;
  }
  bool close() {
    Json closed = std::move(open_.back().value);
    open_.pop_back();
    return add(std::move(closed));
  }
  bool fail(std::string sentence) {
    fault_ = std::move(sentence);
    return false;
  }

  /// Where the value stands that is read next within as many of what is open.
  std::string pathWithin(std::size_t depth) const {
    std::string path;
    for (std::size_t i = 0; i < depth; ++i) {
      if (const auto* array = open_[i].value.get<JsonArray>()) {
        appendIndex(path, array->size());
      } else {
        appendKey(path, open_[i].key);
      }
    }
    return path;
  }
  std::string pathTo(const std::string& name) const {
    std::string path = pathWithin(open_.size() - 1);
    appendKey(path, name);
    return path;
  }

  /// The parser's message without its own name and number in front: "line 3, column 5: …".
  static std::string sentenceOf(std::string_view message) {
    for (const std::string_view start : {"parse error at ", "] "}) {
      const auto place = message.find(start);
      if (place != std::string_view::npos) return std::string(message.substr(place + start.size()));
    }
    return std::string(message);
  }

  Json document_{nullptr};
  std::vector<Open> open_;
  std::optional<std::string> fault_;
};

}  // namespace

Error scenarioError(std::string sentence) {
  return {std::string(kScenarioErrorDomain), 1, {{kLocalizedDescriptionKey, std::move(sentence)}}};
}

Outcome<Json> parsedJSON(std::string_view text) {
  Builder builder;
  nlohmann::json::sax_parse(text, &builder);
  return builder.outcome();
}

}  // namespace linewatch::simulation
