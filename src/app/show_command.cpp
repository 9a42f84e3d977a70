#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <unistd.h>

#include "app/commands.h"
#include "app/next_change.h"
#include "app/show_document.h"
#include "app/shown_content.h"
#include "app/upcoming_text.h"
#include "app/watch_run.h"
#include "feeds/upcoming_incidents.h"
#include "incidents/transit_incident_fetcher.h"
#include "list/list_dictionary_form.h"
#include "list/transit_item_data_source_builder.h"
#include "shared/failure.h"
#include "shared/value.h"
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

/// The list, as the command prints it, from the result of a fetch.
Report shownReport(Session& session, const RVResult& result, const ShowCommand& command,
                   const CommonOptions& options, const TerminalStyle& style) {
  const auto list = listOf(result, options.maxRows);
  const std::optional<Error> error = result.error() ? result.error() : session.unusedFeedError();
  Report report = reportOn(error, wrongFavorites(session, options));
  if (command.json) {
    addDocument(shownContent(session, result, list), report);
    return report;
  }
  if (command.upcoming) {
    report.output = upcomingText(session, result, style);
  } else if (list) {
    report.output = terminalText(*list, command.expanded, style);
  }
  report.output += dataNote(session, style);
  return report;
}

/// The news without the times at which they came. Different news have different texts.
std::string newsText(Session& session, const RVResult& result) {
  Array news;
  if (const auto list = listOf(result, 0))
    news.push_back(dictionaryForm(*list, [](const Bytes& bytes) { return Value(bytes.size()); }));
  for (const FeedState& state : session.platform().feeds().states()) {
    news.push_back(static_cast<int>(state.kind));
    news.push_back(state.error ? Value(sentenceOf(*state.error)) : noValue());
  }
  for (const UnknownLine& line : session.platform().feeds().unknownLines()) news.push_back(line.name);
  if (result.successObject()) {
    for (const UpcomingIncident& upcoming :
         upcomingIncidents(*result.successObject(), session.platform().mainLoop().now()))
      news.push_back(upcoming.incident->muid());
  }
  return jsonText(news);
}

/// Prints again whenever the news have changed; on a terminal the new text takes the place of the old one.
class ShowWatch {
 public:
  ShowWatch(Session& session, const ShowCommand& command, const CommonOptions& options,
            const TerminalStyle& style)
      : session_(session), command_(command), options_(options), style_(style) {}

  void look(WatchedOutput& output, const std::function<void()>& done) {
    request_ = RVTransitIncidentFetcher::make()->fetchFavoriteLinesTransitIncidentsWithCompletionHandler(
        [this, &output, done](const std::shared_ptr<RVResult>& result) {
          const bool isKnown = !result->error() && result->successObject();
          lines_ = isKnown ? *result->successObject() : TransitLineItems();
          print(output, *result);
          done();
        });
  }
  std::optional<Date> nextChange() const {
    return app::nextChange(lines_, session_.platform().feeds().states(),
                           session_.platform().mainLoop().now());
  }

 private:
  void print(WatchedOutput& output, const RVResult& result) {
    std::string news = newsText(session_, result);
    // A terminal shows the age of the news too.
    const bool isScreen = !command_.json && isatty(STDOUT_FILENO) == 1;
    if (news == printedNews_ && !isScreen) return;
    constexpr const char* kClearScreen = "\x1b[H\x1b[2J\x1b[3J";
    const char* const start = isScreen ? kClearScreen : command_.json || printedNews_.empty() ? "" : "\n";
    output.write(start + shownReport(session_, result, command_, options_, style_).output);
    printedNews_ = std::move(news);
  }

  Session& session_;
  const ShowCommand& command_;
  const CommonOptions& options_;
  const TerminalStyle& style_;
  std::shared_ptr<RVTransitIncidentFetcherRequest> request_;
  TransitLineItems lines_;
  std::string printedNews_;
};

}  // namespace

Report show(Session& session, const ShowCommand& command, const CommonOptions& options,
            const TerminalStyle& style) {
  session.platform().documents().keepNoLocalTimetables();
  if (!command.watches) return shownReport(session, *session.fetch(), command, options, style);
  ShowWatch watch(session, command, options, style);
  return runWatch(
      session,
      [&watch](WatchedOutput& output, const std::function<void()>& done) { watch.look(output, done); },
      [&watch] { return watch.nextChange(); });
}

}  // namespace linewatch::app
