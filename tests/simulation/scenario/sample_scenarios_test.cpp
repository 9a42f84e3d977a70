#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "simulation/scenario/scenario_run.h"

namespace linewatch::simulation {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

const fs::path kScenarios = fs::path(LINEWATCH_ROOT) / "samples" / "scenarios";

std::vector<std::string> sampleNames() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(kScenarios)) {
    if (entry.path().extension() == ".json") names.push_back(entry.path().stem().string());
  }
  std::ranges::sort(names);
  return names;
}

std::string contentOf(const fs::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

Lines linesOf(const fs::path& path) {
  std::ifstream file(path);
  Lines lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

/// The line, with a mark below the first character that differs from the other line.
std::string marked(const char* sign, const std::string& line, const std::string& other) {
  constexpr std::size_t kBefore = 60, kAfter = 160;
  const auto place = static_cast<std::size_t>(
      std::mismatch(line.begin(), line.end(), other.begin(), other.end()).first - line.begin());
  const std::size_t from = place > kBefore ? place - kBefore : 0;
  return std::string(sign) + line.substr(from, kBefore + kAfter) + "\n" + std::string(place - from + 2, ' ') +
         "^\n";
}

/// Empty when the lines are equal; otherwise the first two that differ, with the line before them.
std::string difference(const Lines& expected, const Lines& found) {
  const auto [wanted, got] = std::mismatch(expected.begin(), expected.end(), found.begin(), found.end());
  if (wanted == expected.end() && got == found.end()) return {};
  const std::string wantedLine = wanted == expected.end() ? "(nothing more)" : *wanted;
  const std::string gotLine = got == found.end() ? "(nothing more)" : *got;
  std::string text = "line " + std::to_string(wanted - expected.begin() + 1) + "\n";
  if (wanted != expected.begin()) text += "  " + (wanted - 1)->substr(0, 200) + "\n";
  return text + marked("- ", wantedLine, gotLine) + marked("+ ", gotLine, wantedLine);
}

class SampleScenario : public testing::TestWithParam<std::string> {};

/// The transcript beside a scenario is what `linewatch simulate` prints for it.
TEST_P(SampleScenario, GivesTheTranscriptBesideIt) {
  const auto found = runScenario(contentOf(kScenarios / (GetParam() + ".json")));
  ASSERT_TRUE(found) << found.error().description();
  EXPECT_EQ(difference(linesOf(kScenarios / (GetParam() + ".jsonl")), *found), "");
  const auto again = runScenario(contentOf(kScenarios / (GetParam() + ".json")));
  EXPECT_EQ(difference(*found, *again), "") << "the same every time";
}

INSTANTIATE_TEST_SUITE_P(, SampleScenario, testing::ValuesIn(sampleNames()),
                         [](const auto& sample) { return sample.param; });

}  // namespace
}  // namespace linewatch::simulation
