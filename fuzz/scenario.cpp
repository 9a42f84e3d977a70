// Reads any text as a scenario. A scenario that can be read is run, unless it takes more than a day of
// virtual time. Every error is one line.

#include "simulation/scenario/scenario.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "require.h"
#include "simulation/scenario/scenario_run.h"

namespace {

using namespace linewatch;
using namespace linewatch::simulation;

Seconds lengthOf(const Scenario& scenario) {
  Seconds length{0};
  for (const Step& step : scenario.steps) {
    if (const auto* advance = std::get_if<step::Advance>(&step)) length += advance->seconds;
  }
  return length;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto scenario = readScenario(text);
  if (!scenario) {
    requireOneLine(scenario.error());
  } else if (lengthOf(*scenario) < Seconds(86400)) {
    const auto lines = runScenario(text);
    if (!lines) {
      requireOneLine(lines.error());
    } else {
      for (const std::string& line : *lines) require(line.find('\n') == std::string::npos);
    }
  }
  return 0;
}
