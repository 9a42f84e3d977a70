#include <optional>
#include <utility>

#include "app/commands.h"
#include "app/favorite_lines.h"
#include "app/show_document.h"
#include "app/shown_content.h"
#include "app/upcoming_text.h"
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

// The list does not contain these favourites, so the user must be told.
void reportUnknownFavorites(Session& session, const CommonOptions& options, Report& report) {
  const std::string names = unknownFavorites(session);
  if (names.empty()) return;
  report.complaint = "unknown favourites are left out: " + names;
  if (!options.feed.gtfs.empty()) report.status = 2;
}

void addDocument(const ShownContent& content, Report& report) {
  const auto document = showDocument(content);
  if (!document) {
    report = refused(document.error());
    return;
  }
  report.output = jsonText(document->form) + "\n";
  if (document->recordsLeftOut == 0 || !report.complaint.empty()) return;
  report.complaint = "show --json: " + std::to_string(document->recordsLeftOut) +
                     " records are null, because all of them would exceed 64 MiB; choose fewer lines";
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
  if (command.json) {
    addDocument(shownContent(session, *result, list), report);
    return report;
  }
  if (command.upcoming) {
    report.output = upcomingText(session, *result, localeOf(options), style);
  } else if (list) {
    report.output = terminalText(*list, command.expanded, style);
  }
  report.output += dataNote(session, style);
  return report;
}

}  // namespace linewatch::app
