// Runs the real panel without a display, on a clock that is moved from update to update. scripts/memory_test
// and scripts/load_test run it.
//
// panel_load memory UPDATES: the made-up feed of 20 lines changes with each update. Fails unless the memory
// is flat after the first 100.
//
// panel_load window FOLDER: shows what is saved in the state folder, and updates it. Fails when the window
// does not answer within 50 ms, or within the time that a list of so many favourites may take.

#include <QApplication>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "app/screen/panel.h"
#include "feeds/alerts/alerts_sketch.h"
#include "platform/platform.h"
#include "simulation/recording/recording_platform.h"
#include "temporary_folder.h"
#include "widget/transit_incidents_view_controller.h"

namespace linewatch::app {
namespace {

using Stopwatch = std::chrono::steady_clock;

constexpr int kLines = 20;
constexpr int kSettled = 100;
constexpr int kUpdatesOfSession = 50;
/// A refresh is 120 seconds and a random tenth at most.
constexpr Seconds kLongestRefresh{133};
constexpr double kMostGrowth = 4;          // MiB
constexpr double kLongestAnswer = 50;      // ms
constexpr double kBuildPerFavorite = 0.3;  // ms

double residentMebibytes() {
  long pages = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / (1 << 20);
}

double millisecondsSince(Stopwatch::time_point start) {
  return std::chrono::duration<double, std::milli>(Stopwatch::now() - start).count();
}

/// The processor time that this thread has used, in milliseconds. Other work on the machine does not count.
double busyMilliseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// How long the event loop worked without a pause: what a click would have to wait for.
class AnswerTimes {
 public:
  AnswerTimes() {
    QObject::connect(&heartbeat_, &QTimer::timeout, [this] {
      const double now = busyMilliseconds();
      double time = now - std::exchange(last_, now);
      if (time > longest_) std::swap(time, longest_);
      second_ = std::max(second_, time);
    });
    heartbeat_.setTimerType(Qt::PreciseTimer);
    heartbeat_.start(2);
  }
  struct Longest {
    double first = 0, second = 0;
  };
  /// The two longest times since the last call, in milliseconds of processor time.
  Longest take() { return {std::exchange(longest_, 0), std::exchange(second_, 0)}; }

 private:
  QTimer heartbeat_;
  double last_ = busyMilliseconds();
  double longest_ = 0, second_ = 0;
};

/// A panel as the program makes it, with the recording that it always keeps.
class LoadedPanel {
 public:
  explicit LoadedPanel(const CommonOptions& options) {
    auto session = Session::open(options, [this](desktop::DesktopSettings& settings) {
      settings.screen = screen_;
      settings.isInteractive = true;
    });
    if (!session) {
      std::fprintf(stderr, "%s\n", sentenceOf(session.error()).c_str());
      std::exit(2);
    }
    session_ = std::move(*session);
    static_cast<void>(session_->platform().feeds().follow());
    installPlatform(
        std::make_shared<simulation::RecordingPlatform>(session_->platform(), recording_.recorder()));
    panel_ = std::make_unique<Panel>(*session_, *screen_, *options.locale, Panel::Options{}, &recording_);
    panel_->window().show();
  }
  ~LoadedPanel() { panel_ = nullptr; }
  LoadedPanel(const LoadedPanel&) = delete;
  LoadedPanel& operator=(const LoadedPanel&) = delete;

  /// Waits for the answer of the fetch that the panel starts when it appears.
  void awaitFirstList() {
    if (!panel_->window().controller().transitLineItemResult()) awaitAnswer();
  }
  /// Moves the clock to the next update, and waits for it.
  void update() {
    session_->platform().mainLoop().skip(kLongestRefresh);
    awaitAnswer();
  }
  /// Ends the widget's session and starts the next: a session keeps what it has shown until its end.
  void startSession() {
    panel_->window().hide();
    settle();
    panel_->window().show();
    awaitAnswer();
  }
  void expand() {
    panel_->window().setExpanded(true);
    settle();
  }
  desktop::RowSurface& rows() { return panel_->window().rows(); }
  /// Writes the recording as text, as the panel does once a minute if it is to keep a file.
  std::size_t recordingBytes() { return recording_.recorder()->scenario().value_or("").size(); }
  std::size_t favoriteCount() {
    const auto favorites = session_->platform().favorites().lines();
    return favorites ? favorites->size() : 0;
  }

 private:
  static void settle() {
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
  }
  void awaitAnswer() {
    const auto& controller = panel_->window().controller();
    const auto last = controller.transitLineItemResult();
    while (controller.transitLineItemResult() == last || controller.request())
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    settle();
  }

  PanelRecording recording_{/*isAnonymous=*/false};
  std::shared_ptr<desktop::DrawingScreen> screen_ =
      std::make_shared<desktop::DrawingScreen>(desktop::ScreenSettings());
  std::unique_ptr<Session> session_;
  std::unique_ptr<Panel> panel_;
};

/// The alerts of an update: other lines, other texts.
std::string alertsOf(int update) {
  FeedSketch feed{.timestamp = 1795507200 + static_cast<std::uint64_t>(update) * 130};
  for (int line = update % 3; line < kLines; line += 3) {
    const std::string number = std::to_string(line);
    feed.alerts.push_back({.id = number + "-" + std::to_string(update / 7),
                           .selectors = {{.route = "r" + number}},
                           .header = {{"Works " + std::to_string(update) + " on line " + number, "en"}},
                           .description = {{"Replacement buses run until the evening.", "en"}}});
  }
  return bytesOf(feed);
}

int checkMemory(int updates) {
  const TemporaryFolder folder;
  std::string routes = "route_id,route_short_name,route_type\n";
  CommonOptions options;
  for (int line = 0; line < kLines; ++line) {
    routes += "r" + std::to_string(line) + "," + std::to_string(line) + ",3\n";
    options.favorites.push_back("r" + std::to_string(line));
  }
  const auto alerts = folder.path() / "alerts.pb";
  writeFile(folder.path() / "routes.txt", routes);
  writeFile(alerts, alertsOf(0));
  options.locale = UserLocale::parse("en");
  options.now = Date(Seconds(1795507200));
  options.feed.gtfs = {folder.path().string()};
  options.feed.alerts = {alerts.string()};
  LoadedPanel panel(options);
  panel.awaitFirstList();
  panel.expand();
  double settled = 0;
  std::string shown;
  int changes = 0;
  const auto start = Stopwatch::now();
  for (int update = 1; update <= updates; ++update) {
    writeFile(alerts, alertsOf(update));
    panel.update();
    if (update % kUpdatesOfSession == 0) panel.startSession();
    const std::string now =
        panel.rows().wordsOf(0).name.toStdString() + panel.rows().wordsOf(1).name.toStdString();
    if (std::exchange(shown, now) != now) ++changes;
    if (update == kSettled) settled = residentMebibytes();
    if (update == kSettled || update % (updates / 5) == 0)
      std::printf("after %d updates %.1f MiB\n", update, residentMebibytes());
  }
  const double growth = residentMebibytes() - settled;
  std::printf("%d updates, %d changes of the first rows, %.0f s; %.1f MiB more than after %d\n", updates,
              changes, millisecondsSince(start) / 1000, growth, kSettled);
  const auto before = Stopwatch::now();
  const std::size_t bytes = panel.recordingBytes();
  std::printf("a recording of %zu KiB is made in %.1f ms\n", bytes >> 10, millisecondsSince(before));
  return growth <= kMostGrowth && changes > updates / 2 ? 0 : 1;
}

int checkWindow(const std::string& stateFolder) {
  CommonOptions options;
  options.locale = UserLocale::parse("en");
  options.stateDir = stateFolder;
  auto start = Stopwatch::now();
  const double busyAtStart = busyMilliseconds();
  LoadedPanel panel(options);
  std::printf("%-16s%8.0f ms, %.0f ms of processor time until there is a window\n", "start",
              millisecondsSince(start), busyMilliseconds() - busyAtStart);
  AnswerTimes times;
  start = Stopwatch::now();
  bool isQuick = true;
  double longestBuild = 0;
  const auto note = [&](const char* what) {
    const auto [longest, second] = times.take();
    std::printf("%-16s%8.0f ms, of which the window did not answer for %.0f ms, then %.0f ms at most\n", what,
                millisecondsSince(start), longest, second);
    start = Stopwatch::now();
    isQuick = isQuick && second <= kLongestAnswer;
    return longest;
  };
  const double favorites = static_cast<double>(panel.favoriteCount());
  panel.awaitFirstList();
  longestBuild = note("first list");
  panel.update();
  longestBuild = std::max(longestBuild, note("update"));
  panel.expand();
  isQuick = note("expansion") <= kLongestAnswer && isQuick;
  std::printf("%.0f favourites, %zu rows: at most %.2f ms a favourite; %.0f MiB\n", favorites,
              panel.rows().rowCount(), longestBuild / favorites, residentMebibytes());
  return isQuick && longestBuild <= std::max(kLongestAnswer, kBuildPerFavorite * favorites) ? 0 : 1;
}

}  // namespace
}  // namespace linewatch::app

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv, argv + argc);
  static char platformOption[] = "-platform", platform[] = "offscreen";
  static char* arguments[] = {argv[0], platformOption, platform, nullptr};
  int count = 3;
  const QApplication application(count, arguments);
  if (words.size() == 3 && words[1] == "memory" && std::atoi(argv[2]) >= 200)
    return linewatch::app::checkMemory(std::atoi(argv[2]));
  if (words.size() == 3 && words[1] == "window") return linewatch::app::checkWindow(words[2]);
  std::fprintf(stderr, "usage: panel_load memory UPDATES (200 or more) | panel_load window FOLDER\n");
  return 2;
}
