#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "shared/outcome.h"

namespace linewatch::simulation {

struct Json;
struct JsonEntry;
using JsonArray = std::vector<Json>;
/// The entries in the order in which they are written; no key stands twice.
using JsonObject = std::vector<JsonEntry>;

/// A JSON value as it is written. Whole numbers are unsigned, or signed when they are below 0; what is
/// written with a point or an exponent, or is larger than 64 bits hold, is a double.
struct Json {
  std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string, JsonArray, JsonObject>
      contents;

  /// The contents when they are of type T, null otherwise.
  template <class T>
  const T* get() const {
    return std::get_if<T>(&contents);
  }
};

struct JsonEntry {
  std::string key;
  Json value;
};

/// The domain of errors about what is given to the simulation. Their info has a sentence for the user.
inline constexpr std::string_view kScenarioErrorDomain = "Scenario";
Error scenarioError(std::string sentence);

/// Reads one JSON text. What is not JSON, a key that stands twice in one object, and values that nest more
/// than 100 deep are errors that say where they are.
Outcome<Json> parsedJSON(std::string_view text);

}  // namespace linewatch::simulation
