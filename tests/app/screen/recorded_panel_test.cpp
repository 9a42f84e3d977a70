#include <QApplication>
#include <QFileDialog>
#include <QTimer>
#include <filesystem>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/screen/noting_platform.h"
#include "app/screen/panel.h"
#include "desktop/window/window_events.h"
#include "feeds/alerts/alerts_sketch.h"
#include "feeds/http/local_http_server.h"
#include "platform/platform.h"
#include "shared/file_contents.h"
#include "shared/mutex.h"
#include "simulation/recording/recording_platform.h"
#include "simulation/scenario/scenario_json.h"
#include "simulation/scenario/scenario_run.h"
#include "simulation/scenario/scenario_snapshot.h"
#include "temporary_folder.h"
#include "widget/transit_incidents_view_controller.h"
#include "wire/json_text.h"

namespace linewatch::app {
namespace {

using simulation::Json;

/// Removes what a simulation measures in its own way, and the identifier of the panel's session.
void removeMeasures(Json& json) {
  for (const char* const measure : {"views", "size", "artworkColumnWidth", "sessionIdentifier"}) {
    if (json.is_object()) json.erase(measure);
  }
  if (json.is_object() && json.contains("url")) {
    const std::string url = json["url"];
    json["url"] = url.substr(0, url.find("&session="));
  }
  if (json.is_structured())
    for (Json& element : json) removeMeasures(element);
}

/// Adds the snapshot, unless it shows what the last one shows.
void addShown(std::vector<std::string>& shown, Json snapshot) {
  snapshot.erase("t");
  snapshot.erase("event");
  removeMeasures(snapshot);
  std::string text = snapshot.dump();
  if (shown.empty() || shown.back() != text) shown.push_back(std::move(text));
}

/// The answer that the server gives until it gets another one. Any thread.
class ServerMood {
 public:
  void set(std::string answer) LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    answer_ = std::move(answer);
  }
  std::string answer() const LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    return answer_;
  }

 private:
  mutable Mutex mutex_;
  std::string answer_ LINEWATCH_GUARDED_BY(mutex_);
};

/// A real panel over a timetable in files and alerts on a server, with a clock that the test moves.
class RecordedPanelTest : public testing::Test {
 protected:
  void SetUp() override {
    desktop::needApplication();
    writeFile(folder_.path() / "agency.txt", "agency_id,agency_name\nM,Metro\n");
    writeFile(folder_.path() / "routes.txt",
              "route_id,agency_id,route_short_name,route_type,route_color\nA,M,A,1,FF0000\nB,M,B,1,0000FF\n"
              "C,M,Ring,3,\n");
    options_.locale = UserLocale::parse("en");
    options_.now = Date(Seconds(kStart));
    options_.feed.gtfs = {folder_.path().string()};
    options_.feed.alerts = {server_.url("/alerts?key=secret")};
    options_.favorites = {"A", "B", "C"};
  }
  ~RecordedPanelTest() override { end(); }

  void start() {
    auto session = Session::open(options_, [this](desktop::DesktopSettings& settings) {
      settings.screen = screen_;
      settings.isInteractive = true;
      settings.openActivity = [this](const UserActivity&, const OpenHandler& done) {
        done(opens_, std::nullopt);
      };
    });
    ASSERT_TRUE(session) << sentenceOf(session.error());
    session_ = std::move(*session);
    platform_ = std::make_unique<NotingPlatform>(session_->platform(), [this] { look(); });
    installPlatform(std::make_shared<simulation::RecordingPlatform>(*platform_, recording_.recorder()));
    ASSERT_FALSE(session_->platform().feeds().follow());
    panel_ = std::make_unique<Panel>(*session_, *screen_, *options_.locale,
                                     Panel::Options{.window = {.maxRows = 4, .refresh = Seconds(60)}},
                                     &recording_);
    panel_->window().show();
    // The first rows, before the event loop may bring the answer.
    look();
    awaitFetch();
  }
  void end() {
    panel_ = nullptr;
    session_ = nullptr;
    platform_ = nullptr;
  }

  void serve(const std::vector<AlertSketch>& alerts) {
    ++minute_;
    mood_.set(httpAnswer("200 OK", "",
                         linewatch::bytesOf(FeedSketch{.alerts = alerts, .timestamp = kSecond + minute_})));
  }
  static AlertSketch alert(const std::string& id, const std::string& route, const std::string& header) {
    return {.id = id, .selectors = {{.route = route}}, .header = {{header, ""}}};
  }

  RVTransitIncidentsViewController& controller() { return panel_->window().controller(); }
  /// Runs the event loop until no fetch runs, and looks at the rows after every turn.
  void awaitFetch() {
    desktop::settle();
    look();
    while (controller().request()) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
      look();
    }
    desktop::settle();
    look();
  }
  void update() {
    panel_->window().requestUpdate();
    awaitFetch();
  }
  void skip(double seconds) {
    session_->platform().mainLoop().skip(Seconds(seconds));
    awaitFetch();
  }
  void expand(bool isExpanded) {
    panel_->window().setExpanded(isExpanded);
    desktop::settle();
    look();
  }
  void tap(std::size_t row) {
    panel_->window().rows().pressRow(row);
    desktop::settle();
  }
  void look() {
    if (panel_) addShown(shown_, Json::parse(jsonText(simulation::snapshotOf(controller()))));
  }

  static std::vector<std::string> shownIn(const std::vector<std::string>& transcript) {
    std::vector<std::string> shown;
    for (const std::string& line : transcript) {
      Json event = Json::parse(line);
      if (event["event"] == "snapshot") addShown(shown, std::move(event));
    }
    return shown;
  }
  /// The calls that a NotingPlatform notes, in the same form.
  static std::vector<std::string> callsIn(const std::vector<std::string>& transcript) {
    static const std::set<std::string> kNoted = {"lookup", "usage", "analytics", "openUserActivity"};
    std::vector<std::string> calls;
    for (const std::string& line : transcript) {
      Json event = Json::parse(line);
      if (kNoted.contains(event["event"])) calls.push_back(callText(std::move(event)));
    }
    return calls;
  }
  static std::string callText(Json call) {
    for (const char* const key : {"t", "start", "duration", "application"}) call.erase(key);
    removeMeasures(call);
    // Without the order of its keys.
    return nlohmann::json(call).dump();
  }
  std::vector<std::string> calls() const {
    std::vector<std::string> calls;
    for (const std::string& call : platform_->calls()) calls.push_back(callText(Json::parse(call)));
    return calls;
  }

  static constexpr double kStart = 1795507200.25;
  static constexpr auto kSecond = static_cast<std::uint64_t>(kStart);
  TemporaryFolder folder_;
  ServerMood mood_;
  LocalHttpServer server_{
      [this](LocalHttpServer::Connection& connection) { connection.write(mood_.answer()); }};
  CommonOptions options_;
  bool opens_ = true;
  std::uint64_t minute_ = 0;
  std::shared_ptr<desktop::DrawingScreen> screen_ =
      std::make_shared<desktop::DrawingScreen>(desktop::ScreenSettings());
  PanelRecording recording_{/*isAnonymous=*/false};
  std::unique_ptr<NotingPlatform> platform_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<Panel> panel_;
  /// What the panel has shown, each time something else.
  std::vector<std::string> shown_;
};

/// An hour with a server in trouble, an incident that begins and ends by itself, and a user who taps, expands
/// and enlarges.
TEST_F(RecordedPanelTest, AnHourOfTroubleReplaysWithTheCallsRowsAndOpenablesOfThePanel) {
  const AlertSketch strike = alert("strike", "A", "Strike");
  AlertSketch night = alert("night", "C", "Works at night");
  night.active = {{kSecond + 600, kSecond + 1200}};
  serve({strike, night});
  start();
  expand(true);
  tap(0);
  skip(100);
  serve({strike, alert("signal", "B", "Signal failure"), night});
  update();
  opens_ = false;
  tap(1);
  opens_ = true;
  mood_.set(httpAnswer("503 Service Unavailable", "", ""));
  for (int i = 0; i < 6; ++i) skip(100);
  mood_.set(httpAnswer("200 OK", "Content-Type: text/html\r\n", "<html>Sorry</html>"));
  for (int i = 0; i < 4; ++i) skip(100);
  tap(0);
  panel_->window().resize(500, panel_->window().height());
  desktop::press(panel_->window(), Qt::Key_Plus, Qt::ControlModifier);
  look();
  mood_.set("not HTTP at all");
  for (int i = 0; i < 12; ++i) skip(120);
  serve({alert("signal", "B", "Signal failure on B")});
  update();
  expand(false);
  mood_.set("");
  for (int i = 0; i < 5; ++i) skip(150);
  serve({});
  update();
  EXPECT_GE(shown_.size(), 8U);

  const auto scenario = recording_.recorder()->scenario();
  ASSERT_TRUE(scenario);
  const std::vector<std::string> calls = this->calls();
  end();
  for (const std::string& secret : {std::string("secret"), server_.url(""), folder_.path().string()})
    EXPECT_EQ(scenario->find(secret), std::string::npos) << *scenario;
  const auto transcript = simulation::runScenario(*scenario);
  ASSERT_TRUE(transcript) << transcript.error().description() << "\n" << *scenario;
  EXPECT_EQ(shownIn(*transcript), shown_) << *scenario;
  EXPECT_EQ(callsIn(*transcript), calls) << *scenario;
}

/// Accepts the file dialog with the name of a file as soon as the dialog is open.
void answerFileDialog(const std::filesystem::path& file) {
  QTimer::singleShot(0, [file] {
    auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    if (!dialog) return answerFileDialog(file);
    dialog->selectFile(QString::fromStdString(file.string()));
    QMetaObject::invokeMethod(dialog, "accept");
  });
}

TEST_F(RecordedPanelTest, TheMenuSavesWhatHappened) {
  serve({alert("strike", "A", "Strike")});
  start();
  const auto file = folder_.path() / "saved.json";
  answerFileDialog(file);
  desktop::press(panel_->window(), Qt::Key_S, Qt::ControlModifier);
  end();
  const auto saved = contentsOf(file);
  ASSERT_TRUE(saved) << sentenceOf(saved.error());
  const auto transcript = simulation::runScenario(*saved);
  ASSERT_TRUE(transcript) << transcript.error().description();
  EXPECT_EQ(shownIn(*transcript).back(), shown_.back());
}

}  // namespace
}  // namespace linewatch::app
