#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/commands.h"
#include "app/link/panel_link.h"
#include "app/next_change.h"
#include "app/refresh_loop.h"
#include "app/status_formats.h"
#include "app/status_reading.h"
#include "app/watch_run.h"
#include "app/watched_output.h"
#include "desktop/bus_name.h"
#include "desktop/feed_news.h"
#include "incidents/transit_incident_fetcher.h"
#include "settings/user_settings.h"
#include "shared/environment.h"

namespace linewatch::app {

namespace {

/// The panel that runs with the same saved state. Null without a bus, and in a run that is about other lines
/// or another time.
std::unique_ptr<PanelLink> panelOf(Session& session, const CommonOptions& options) {
  if (!session.platform().saved() || options.now) return nullptr;
  return connectToPanel(desktop::busNameFor(options.stateDir, processEnvironment), processEnvironment);
}

/// Absent when no panel runs, or when it has no news yet.
std::optional<TransitStatus> panelStatus(PanelLink* panel) {
  const auto document = panel ? panel->document() : std::nullopt;
  return document ? parseStatus(*document) : std::nullopt;
}

TransitStatus fetchedStatus(Session& session, const RVResult& result) {
  const auto favorites = session.platform().favorites().lines();
  return transitStatus(desktop::feedNews(session.platform(), favorites ? favorites->size() : 0,
                                         result.successObject().get(), result.error()),
                       session.platform().mainLoop().now());
}

/// Prints the status whenever it has changed.
class StatusWatch {
 public:
  StatusWatch(Session& session, StatusFormat format, std::unique_ptr<PanelLink> panel)
      : session_(session),
        format_(format),
        panel_(std::move(panel)),
        loop_(session.platform().mainLoop(), [this](const std::function<void()>& done) { look(done); },
              {.refresh = session.platform().settings().values().refresh,
               .nextChange = [this] { return nextChange(lines_, feedStates(), now()); }}) {
    if (panel_) followPanel();
    followRefresh(following_, session.platform().settings(), loop_);
  }

  /// The error number of the write that failed; 0 after any other end.
  int run() {
    loop_.refreshNow();
    return output_.run();
  }

 private:
  Date now() const { return session_.platform().mainLoop().now(); }
  /// While a panel answers, its feeds are asked by it.
  std::vector<FeedState> feedStates() const {
    return hasAskedPanel_ ? std::vector<FeedState>() : session_.platform().feeds().states();
  }

  void followPanel() {
    const int descriptor = panel_->follow();
    if (descriptor < 0) return forgetPanel();
    panelNews_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(panelNews_.get(), &QSocketNotifier::activated, [this] { takePanelMessages(); });
  }
  /// Also to be called after a request, because messages may have come before its answer.
  void takePanelMessages() {
    if (!panel_) return;
    const std::optional<bool> hasChanged = panel_->takeMessages();
    if (!hasChanged) forgetPanel();
    if (hasChanged.value_or(true)) loop_.refreshNow();
  }
  void forgetPanel() {
    if (panelNews_) panelNews_->setEnabled(false);
    panel_ = nullptr;
  }
  /// A panel announces what it finds.
  void userDidAsk() {
    if (!panel_ || !panel_->refresh()) loop_.refreshNow();
    takePanelMessages();
  }

  void look(const std::function<void()>& done) {
    const auto status = panelStatus(panel_.get());
    hasAskedPanel_ = status.has_value();
    if (!status) return fetch(done);
    lines_.clear();
    print(*status);
    takePanelMessages();
    done();
  }
  void fetch(const std::function<void()>& done) {
    request_ = RVTransitIncidentFetcher::make()->fetchFavoriteLinesTransitIncidentsWithCompletionHandler(
        [this, done](const std::shared_ptr<RVResult>& result) {
          const bool isKnown = !result->error() && result->successObject();
          lines_ = isKnown ? *result->successObject() : TransitLineItems();
          print(fetchedStatus(session_, *result));
          done();
        });
  }
  void print(const TransitStatus& status) {
    const std::string text = statusText(format_, status, now(), session_.platform().localization());
    // The document has the time of receipt, which changes with every look.
    const bool isSameText = format_ == StatusFormat::json || text == printedText_;
    if (printed_ && printed_->saysTheSameAs(status) && isSameText) return;
    output_.write(text);
    printed_ = status;
    printedText_ = text;
  }

  Session& session_;
  StatusFormat format_;
  /// May be null.
  std::unique_ptr<PanelLink> panel_;
  std::unique_ptr<QSocketNotifier> panelNews_;
  bool hasAskedPanel_ = false;
  std::shared_ptr<RVTransitIncidentFetcherRequest> request_;
  /// The lines of the last fetch.
  TransitLineItems lines_;
  std::optional<TransitStatus> printed_;
  std::string printedText_;
  RefreshLoop loop_;
  QObject following_;
  WatchedOutput output_{[this] { userDidAsk(); }};
};

Report watchStatus(Session& session, StatusFormat format, std::unique_ptr<PanelLink> panel) {
  const int error = StatusWatch(session, format, std::move(panel)).run();
  session.platform().stopFetching();
  return reportOfWatch(error);
}

}  // namespace

Report status(Session& session, const StatusCommand& command, const CommonOptions& options) {
  session.platform().documents().keepNoLocalTimetables();
  auto panel = panelOf(session, options);
  if (command.watches) return watchStatus(session, command.format, std::move(panel));
  auto status = panelStatus(panel.get());
  if (!status) status = fetchedStatus(session, *session.fetch());
  Report report;
  if (!status->error.empty() && !alwaysSucceeds(command.format))
    report = {.output = {}, .complaint = status->error, .status = 1};
  report.output = statusText(command.format, *status, session.platform().mainLoop().now(),
                             session.platform().localization());
  return report;
}

}  // namespace linewatch::app
