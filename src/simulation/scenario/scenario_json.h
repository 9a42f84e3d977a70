#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "shared/outcome.h"

namespace linewatch::simulation {

/// A JSON value whose objects keep their entries in the order in which they are written. Whole numbers beyond
/// 64 bits are doubles.
using Json = nlohmann::ordered_json;
using JsonArray = Json::array_t;
using JsonObject = Json::object_t;

/// The domain of errors in a scenario. Their info has a sentence for the user.
inline constexpr std::string_view kScenarioErrorDomain = "Scenario";
Error scenarioError(std::string sentence);

/// Parses one JSON text. The error says where the text is not JSON, which key an object has twice, or which
/// number a double cannot hold. Values may nest 100 deep.
Outcome<Json> parseJson(std::string_view text);

}  // namespace linewatch::simulation
