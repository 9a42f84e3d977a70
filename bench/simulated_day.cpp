// A simulated day of the widget: 48 refreshes, and a rebuild of the list at the start and end of each of
// hundreds of incidents. Measures the whole run, from the text of the scenario to the lines of the
// transcript.

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "simulation/scenario/scenario_run.h"

namespace linewatch::simulation {
namespace {

constexpr int kLines = 60;

/// The incidents are spread over the day; each is on one to three lines.
std::string scenarioOfADay(int incidents) {
  std::mt19937 random(1);
  const auto upTo = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  std::vector<std::string> incidentsOfLines(kLines);
  std::string table;
  for (int i = 0; i < incidents; ++i) {
    const std::string name = std::to_string(i);
    const int start = upTo(100000) - 20000;
    table += (i == 0 ? "\"" : ", \"") + name + R"(": {"title": "Incident )" + name + R"(", "start": )" +
             std::to_string(start) + R"(, "end": )" + std::to_string(start + 3600 + upTo(30000)) + "}";
    for (int line = upTo(kLines), left = 1 + upTo(3); left > 0; --left, line = (line + 1) % kLines) {
      auto& listed = incidentsOfLines[static_cast<std::size_t>(line)];
      listed += (listed.empty() ? "\"" : ", \"") + name + "\"";
    }
  }
  std::string favorites, lines;
  for (int line = 0; line < kLines; ++line) {
    const std::string name = "L" + std::to_string(line), comma = line == 0 ? "" : ", ";
    favorites += comma + R"({"line": ")" + name + R"("})";
    lines += comma + "\"" + name + R"(": {"alternateArtwork": {"shieldText": ")" + name +
             R"("}, "incidents": [)" + incidentsOfLines[static_cast<std::size_t>(line)] + "]}";
  }
  return R"({"favorites": [)" + favorites + R"(], "lines": {)" + lines + R"(}, "incidents": {)" + table +
         R"(}, "steps": [{"do": "load"}, {"do": "appear"}, {"do": "advance", "seconds": 86400}, {"do": "disappear"}]})";
}

void simulatedDay(benchmark::State& state) {
  const std::string scenario = scenarioOfADay(static_cast<int>(state.range(0)));
  std::size_t lookUps = 0;
  for (auto _ : state) {
    const auto lines = runScenario(scenario);
    if (!lines) return state.SkipWithError("the scenario does not run");
    lookUps = 0;
    for (const std::string& line : *lines) lookUps += line.find("\"lookup\"") != std::string::npos;
  }
  if (lookUps != 48) state.SkipWithError("a day has 48 look-ups");
  state.counters["lookUps"] = static_cast<double>(lookUps);
}
BENCHMARK(simulatedDay)->Arg(30)->Arg(300)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace linewatch::simulation
