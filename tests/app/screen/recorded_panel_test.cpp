#include <QApplication>
#include <algorithm>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/screen/panel.h"
#include "desktop/window/window_events.h"
#include "feeds/alerts/alerts_sketch.h"
#include "platform/platform.h"
#include "simulation/recording/recording_platform.h"
#include "simulation/scenario/scenario_json.h"
#include "simulation/scenario/scenario_run.h"
#include "simulation/scenario/scenario_snapshot.h"
#include "simulation/simulated_platform.h"
#include "temporary_folder.h"
#include "widget/transit_incidents_view_controller.h"
#include "wire/json_text.h"

namespace linewatch::app {
namespace {

using simulation::Json;

/// The panel's platform, but for the texts: these are the keys and arguments that a transcript has.
class KeyedPlatform final : public simulation::RecordingPlatform {
 public:
  using RecordingPlatform::RecordingPlatform;
  Localization& localization() override { return keys_->localization(); }

 private:
  std::shared_ptr<simulation::SimulatedPlatform> keys_ = simulation::SimulatedPlatform::make();
};

/// Removes what a simulation measures in its own way.
void removeMeasures(Json& json) {
  for (const char* const measure : {"views", "width", "size", "artworkColumnWidth"}) {
    if (json.is_object()) json.erase(measure);
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

/// A real panel over a timetable and alerts in files, with a clock that the test moves.
class RecordedPanelTest : public testing::Test {
 protected:
  void SetUp() override {
    desktop::needApplication();
    writeFile(folder_.path() / "agency.txt", "agency_id,agency_name\nM,Metro\n");
    writeFile(folder_.path() / "routes.txt",
              "route_id,agency_id,route_short_name,route_type,route_color\nA,M,A,1,FF0000\nB,M,B,1,0000FF\n"
              "C,M,Ring,3,\n");
    writeAlerts({});
    options_.locale = UserLocale::parse("en");
    options_.now = Date(Seconds(kStart));
    options_.feed.gtfs = {folder_.path().string()};
    options_.feed.alerts = {(folder_.path() / "alerts.pb").string()};
    options_.favorites = {"A", "B", "C"};
  }
  ~RecordedPanelTest() override { end(); }

  void start() {
    auto session = Session::open(options_, [this](desktop::DesktopSettings& settings) {
      settings.screen = screen_;
      settings.isInteractive = true;
      settings.openActivity = [](const UserActivity&, const OpenHandler& done) { done(true, std::nullopt); };
    });
    ASSERT_TRUE(session) << sentenceOf(session.error());
    session_ = std::move(*session);
    installPlatform(std::make_shared<KeyedPlatform>(session_->platform(), recording_.recorder()));
    ASSERT_FALSE(session_->platform().feeds().follow());
    panel_ = std::make_unique<Panel>(*session_, *screen_, *options_.locale, std::vector<std::string>(),
                                     desktop::PanelOptions{.maxRows = 4}, &recording_);
    panel_->window().show();
    awaitFetch();
  }
  void end() {
    panel_ = nullptr;
    session_ = nullptr;
  }

  void writeAlerts(const std::vector<AlertSketch>& alerts) {
    writeFile(folder_.path() / "alerts.pb", linewatch::bytesOf(FeedSketch{.alerts = alerts, .timestamp = 0}));
  }
  static AlertSketch alert(const std::string& id, const std::string& route, const std::string& header) {
    return {.id = id, .selectors = {{.route = route}}, .header = {{header, ""}}};
  }

  RVTransitIncidentsViewController& controller() { return panel_->window().controller(); }
  /// Runs the event loop until no fetch runs, and looks at the rows after every turn.
  void awaitFetch() {
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
    desktop::settle();
    awaitFetch();
  }
  void look() {
    // The simulation takes no snapshot before the widget first shows something.
    if (!controller().dataSource()->listItem()) return;
    addShown(shown_, Json::parse(jsonText(simulation::snapshotOf(controller()))));
  }
  void tap(std::size_t row) {
    panel_->window().rows().pressRow(row);
    desktop::settle();
  }

  static std::vector<std::string> shownIn(const std::vector<std::string>& transcript) {
    std::vector<std::string> shown;
    for (const std::string& line : transcript) {
      Json event = Json::parse(line);
      if (event["event"] == "snapshot") addShown(shown, std::move(event));
    }
    return shown;
  }

  static constexpr double kStart = 1795507200.25;
  TemporaryFolder folder_;
  CommonOptions options_;
  std::shared_ptr<desktop::DrawingScreen> screen_ =
      std::make_shared<desktop::DrawingScreen>(desktop::ScreenSettings());
  PanelRecording recording_{/*isAnonymous=*/false};
  std::unique_ptr<Session> session_;
  std::unique_ptr<Panel> panel_;
  /// What the panel has shown, each time something else.
  std::vector<std::string> shown_;
};

TEST_F(RecordedPanelTest, ReplaysWithTheRowsAndOpenablesOfThePanel) {
  const auto second = static_cast<std::uint64_t>(kStart);
  AlertSketch later = alert("later", "C", "Works at night");
  later.active = {{second + 600, second + 1200}};
  writeAlerts({alert("strike", "A", "Strike"), later});
  start();
  panel_->window().setExpanded(true);
  desktop::settle();
  look();
  tap(0);
  skip(100);
  writeAlerts({alert("strike", "A", "Strike ends"), alert("signal", "B", "Signal failure"), later});
  update();
  skip(520);
  skip(60);
  update();
  ASSERT_GE(shown_.size(), 4U);

  const auto scenario = recording_.recorder()->scenario();
  ASSERT_TRUE(scenario);
  end();
  const auto transcript = simulation::runScenario(*scenario);
  ASSERT_TRUE(transcript) << transcript.error().description() << "\n" << *scenario;
  EXPECT_EQ(shownIn(*transcript), shown_) << *scenario;
}

}  // namespace
}  // namespace linewatch::app
