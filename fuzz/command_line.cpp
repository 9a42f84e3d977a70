// Parses any words, separated by NULs, as the program's arguments. What is refused is refused with one line,
// whatever the words hold.

#include "app/command_line.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "choices.h"
#include "machine/terminal_line.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace linewatch;
  constexpr std::size_t kMostWords = 20;
  Choices choices(data, size);
  std::vector<std::string> words{"linewatch"};
  while (!choices.isAtEnd() && words.size() < kMostWords) words.emplace_back(choices.text());
  std::vector<const char*> arguments;
  for (const std::string& word : words) arguments.push_back(word.c_str());
  const auto parsed = app::parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
  if (const auto* const report = std::get_if<app::Report>(&parsed)) {
    require(report->status == (report->complaint.empty() ? 0 : 2));
    if (!report->complaint.empty()) requireOneLine(terminalLine(report->complaint));
  }
  return 0;
}
