#include "simulation/scenario/transcript_lines.h"

#include "wire/json_text.h"

namespace linewatch::simulation {

std::string lineOf(const TranscriptEvent& event) {
  std::string line =
      R"({"t": )" + jsonText(Value(event.time.count())) + R"(, "event": )" + jsonQuoted(event.name);
  if (event.fields.empty()) return line + "}";
  return line + ", " + jsonText(event.fields).substr(1);
}

std::vector<std::string> linesOf(const Transcript& transcript) {
  std::vector<std::string> lines;
  lines.reserve(transcript.events().size());
  for (const TranscriptEvent& event : transcript.events()) lines.push_back(lineOf(event));
  return lines;
}

}  // namespace linewatch::simulation
