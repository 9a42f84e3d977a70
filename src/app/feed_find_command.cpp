#include <algorithm>

#include "app/catalogue_texts.h"
#include "app/feed_catalogue.h"
#include "app/progress_line.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

std::string hitText(Session& session, const CatalogueHit& hit, const TerminalStyle& style) {
  TerminalRow row;
  for (std::string& line : hitLines(session.texts(), hit, session.locale().language()))
    row.texts.emplace_back(std::move(line));
  row.texts.emplace_back(addingCommand(hit));
  return terminalRows({&row, 1}, style);
}

}  // namespace

Outcome<KeptCatalogue::Reading> readCatalogueWithProgress(Session& session) {
  ProgressLine line;
  const std::string label = session.texts()("ProgressCatalogue");
  return session.platform().catalogue()->read(
      {}, [&](std::uint64_t bytes, std::optional<std::uint64_t> total) { line.show(label, bytes, total); });
}

Report noHits(Session& session, const std::string& query, const CatalogueMatches& matches, int status) {
  return {.output = {}, .complaint = noHitText(session.texts(), query, matches), .status = status};
}

Report findFeeds(Session& session, const FeedCommand& command, const TerminalStyle& style) {
  const auto reading = readCatalogueWithProgress(session);
  if (!reading) return refused(reading.error());
  const CatalogueMatches matches = reading->catalogue->search(command.name);
  if (command.json)
    return {.output = jsonText(matchesForm(command.name, matches, *reading)) + "\n",
            .complaint = {},
            .status = matches.hits.empty() ? 1 : 0};
  if (matches.hits.empty()) return noHits(session, command.name, matches, 1);
  Report report;
  for (const CatalogueHit& hit : matches.hits)
    report.output += (report.output.empty() ? "" : "\n") + hitText(session, hit, style);
  report.complaint = keptNote(session.texts(), *reading, session.platform().mainLoop().now());
  return report;
}

}  // namespace linewatch::app
