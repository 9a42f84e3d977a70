#include <optional>
#include <string>
#include <utility>

#include "app/commands.h"
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

/// The favourites of the command line that the given timetable does not have. That is wrong usage; a stored
/// favourite whose line is gone is not, and the note under the list names it.
std::string wrongFavorites(Session& session, const CommonOptions& options) {
  std::string names;
  if (options.feed.gtfs.empty()) return names;
  for (const UnknownLine& line : session.platform().feeds().unknownLines()) {
    if (line.isMissing) names += (names.empty() ? "" : ", ") + line.name;
  }
  return names;
}

Report reportOn(const std::optional<Error>& error, const std::string& wrongFavorites) {
  if (!wrongFavorites.empty())
    return {.output = {}, .complaint = "unknown favourites are left out: " + wrongFavorites, .status = 2};
  return error ? notLoaded(*error) : Report();
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
  Report report = reportOn(error, wrongFavorites(session, options));
  if (command.json) {
    addDocument(shownContent(session, *result, list), report);
    return report;
  }
  if (command.upcoming) {
    report.output = upcomingText(session, *result, style);
  } else if (list) {
    report.output = terminalText(*list, command.expanded, style);
  }
  report.output += dataNote(session, style);
  return report;
}

}  // namespace linewatch::app
