#include <optional>

#include "app/commands.h"
#include "app/favorite_lines.h"
#include "list/list_dictionary_form.h"
#include "list/transit_item_data_source_builder.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

std::shared_ptr<const RVTransitListItem> listOf(const RVResult& result, std::uint64_t maxRows) {
  const auto builder = RVTransitDataSourceBuilderForResult(result, maxRows, nullptr, nullptr);
  return builder ? builder->listItem() : nullptr;
}

std::string unknownFavorites(Session& session) {
  std::string names;
  const auto favorites = favoriteLines(session);
  if (!favorites) return names;
  for (const auto& [favorite, line] : *favorites) {
    if (!line) names += (names.empty() ? "" : ", ") + favorite.subject;
  }
  return names;
}

// The list is right but lacks these lines, and the user must hear of that.
void reportUnknownFavorites(Session& session, const CommonOptions& options, Report& report) {
  const std::string names = unknownFavorites(session);
  if (names.empty()) return;
  report.complaint = "unknown favourites are left out: " + names;
  if (!options.feed.gtfs.empty()) report.status = 2;
}

}  // namespace

Report show(Session& session, const ShowCommand& command, const CommonOptions& options,
            const TerminalStyle& style) {
  session.platform().documents().keepNoLocalTimetables();
  const auto result = session.fetch();
  const auto list = listOf(*result, options.maxRows);
  const std::optional<Error> error = result->error() ? result->error() : session.unusedFeedError();
  Report report;
  if (error) {
    report = notLoaded(*error);
  } else {
    reportUnknownFavorites(session, options, report);
  }
  if (list) {
    report.output =
        command.json ? jsonText(dictionaryForm(*list)) + "\n" : terminalText(*list, command.expanded, style);
  }
  if (!command.json && report.status != 1) report.output += dataNote(session, style);
  return report;
}

}  // namespace linewatch::app
