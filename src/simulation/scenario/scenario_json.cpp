#include "simulation/scenario/scenario_json.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "simulation/scenario/scenario_place.h"

namespace linewatch::simulation {

namespace {

constexpr std::size_t kMaximumDepth = 100;

/// Follows the parser through the text, so that it can name the path to a value, and finds what the parser
/// accepts but a scenario must not have: a key given twice, and values that nest too deep.
class ParserCallback {
 public:
  using Event = nlohmann::json::parse_event_t;

  /// False once there is a fault: the parser then drops the values that follow.
  bool operator()(int /*depth*/, Event event, const Json& parsed) {
    if (fault_) return false;
    switch (event) {
      case Event::object_start:
      case Event::array_start:
        open(event == Event::array_start);
        break;
      case Event::key:
        startEntry(parsed.get_ref<const std::string&>());
        break;
      case Event::object_end:
      case Event::array_end:
        open_.pop_back();
        endValue();
        break;
      case Event::value:
        endValue();
        break;
    }
    return !fault_;
  }

  const std::optional<std::string>& fault() const { return fault_; }

  /// The path to the value that the parser reads next.
  std::string path() const {
    std::string path;
    for (const Container& container : open_) {
      if (container.isArray) {
        appendIndex(path, container.index);
      } else {
        appendKey(path, container.key);
      }
    }
    return path;
  }

 private:
  /// An array or object that has begun and not ended.
  struct Container {
    bool isArray = false;
    /// Of the next element of an array.
    std::size_t index = 0;
    /// Of the present entry of an object.
    std::string key;
    std::set<std::string> keys;
  };

  void open(bool isArray) {
    if (open_.size() == kMaximumDepth) {
      fault_ = "nested too deep: more than 100 levels";
    } else {
      open_.push_back({isArray, 0, {}, {}});
    }
  }
  void startEntry(const std::string& key) {
    Container& object = open_.back();
    object.key = key;
    if (!object.keys.insert(key).second) fault_ = path() + ": is given twice";
  }
  void endValue() {
    if (!open_.empty()) ++open_.back().index;
  }

  std::vector<Container> open_;
  std::optional<std::string> fault_;
};

/// The library's message without its own name and number in front: "line 3, column 5: …".
std::string sentenceOf(std::string_view message) {
  for (const std::string_view start : {"parse error at ", "] "}) {
    const auto place = message.find(start);
    if (place != std::string_view::npos) return std::string(message.substr(place + start.size()));
  }
  return std::string(message);
}

/// The number that the library's message quotes at its end: "… number overflow parsing '1e400'".
std::string quotedNumberOf(std::string_view message) {
  const auto end = message.rfind('\'');
  const auto begin = message.rfind('\'', end - 1) + 1;
  return std::string(message.substr(begin, end - begin));
}

}  // namespace

Error scenarioError(std::string sentence) {
  return {std::string(kScenarioErrorDomain), 1, {{kLocalizedDescriptionKey, std::move(sentence)}}};
}

Outcome<Json> parseJson(std::string_view text) {
  ParserCallback callback;
  std::string sentence;
  try {
    Json document = Json::parse(text, std::ref(callback));
    if (!callback.fault()) return document;
  } catch (const Json::out_of_range& error) {
    const std::string path = callback.path();
    sentence = (path.empty() ? "" : path + ": ") + quotedNumberOf(error.what()) + " is too large a number";
  } catch (const Json::exception& error) {
    sentence = sentenceOf(error.what());
  }
  return scenarioError(callback.fault().value_or(std::move(sentence)));
}

}  // namespace linewatch::simulation
