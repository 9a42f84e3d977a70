#include <algorithm>

#include "app/commands.h"
#include "app/line_table.h"
#include "desktop/feeds/line_search.h"

namespace linewatch::app {

namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

}  // namespace

Report lines(Session& session, const LinesCommand& command, const TerminalStyle& style) {
  const auto indexes = session.platform().feeds().lines();
  if (!indexes) return refused(indexes.error());
  const std::vector<desktop::FoundLine> found = desktop::searchLines(*indexes, joined(command.query));
  if (found.empty())
    return {.output = {}, .complaint = "no line fits \"" + joined(command.query) + "\"", .status = 0};
  return Report::of(lineTable(found, style));
}

}  // namespace linewatch::app
