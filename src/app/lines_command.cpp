#include <algorithm>

#include "app/commands.h"
#include "app/line_table.h"
#include "app/list_documents.h"
#include "feeds/gtfs/line_search.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string whyNone(Session& session, const LinesCommand& command) {
  const RiderTexts& texts = session.texts();
  if (session.platform().feeds().feeds().empty()) return noFeedLeft(texts);
  return command.query.empty() ? texts("NoLines") : texts("NoLineFits", {joined(command.query)});
}

}  // namespace

Report lines(Session& session, const LinesCommand& command, const TerminalStyle& style) {
  const FeedLines all = session.platform().feeds().lines();
  const std::vector<FoundLine> found = searchLines(all.indexes, joined(command.query));
  // The line may be in a feed that cannot be read.
  Report report = all.error ? refused(*all.error) : Report{};
  if (command.json) {
    report.output = jsonText(linesDocument(found, all.error)) + "\n";
    return report;
  }
  report.output = lineTable(found, style) + sampleCityNote(session, style);
  if (found.empty() && !all.error) report.complaint = whyNone(session, command);
  return report;
}

}  // namespace linewatch::app
