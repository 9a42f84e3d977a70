#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "list_model.h"
#include "simulation/scenario/scenario.h"
#include "simulation/simulated_platform.h"

namespace linewatch::worlds {

/// What the widget's controller must do in a simulated world, written plainly: one queue, one list of timers,
/// and every list built anew. It performs the steps of a scenario and predicts the calls between the widget
/// and its host, in order, one text each.
class WidgetModel {
 public:
  /// The part of a controller's state that outlives a step.
  struct Controller {
    std::uint64_t number = 0;
    bool hosted = true;
    bool visible = false;
    bool expanded = false;
    double rowHeight = 110;
    double width = 0;
    std::uint64_t limit = 0;
    /// The result that the list is built from, the list, and the result of the last fetch.
    FetchModel held;
    Value list = noValue();
    std::optional<FetchModel> fetched;
    /// Present while an updater runs: the dates at which the list changes.
    std::optional<std::set<Date>> dates;
    bool fetching = false;
  };

  /// Performs a step that the platform's host has performed already. `resizeShows` says whether a resize
  /// changed the artwork column, which this model does not compute.
  void perform(const simulation::Step& step, const simulation::SimulatedPlatform& platform, bool resizeShows);

  /// The predicted calls since the last time.
  std::vector<std::string> takeCalls() { return std::exchange(calls_, {}); }
  const std::optional<Controller>& controller() const { return controller_; }
  /// The fetches that have not ended, those of controllers that are gone included.
  std::size_t fetchCount() const { return fetches_.size(); }

 private:
  struct Performer;
  struct Fetch {
    std::uint64_t controller;
    std::vector<MapItemIdentifier> identifiers;
    std::vector<std::string> waiting;
  };
  using SharedFetch = std::shared_ptr<Fetch>;
  enum class JobKind { readFavorites, answer, deliverNothing };
  struct Job {
    JobKind kind;
    SharedFetch fetch;
  };
  enum class TimerKind { answer, refresh, date };
  struct Timer {
    double due;
    std::uint64_t number;
    TimerKind kind;
    SharedFetch fetch;
  };
  struct SavedState {
    FetchModel result;
    bool expanded;
  };

  const simulation::World& world() const { return platform_->world(); }
  Date now() const { return world().start + Seconds(time_) + world().clockOffset; }
  void call(const std::string& text);

  void load();
  void appear();
  void disappear();
  void displayModeChanged();
  void resize(double width, bool shows);
  void textSizeChanged();
  void worldChanged();
  void restart();

  void fetch(const std::optional<std::string>& id);
  void advance(double seconds);
  void runJobs();
  void run(const Job& job);
  void fire(Timer timer);
  void readFavorites(const SharedFetch& fetch);
  FetchModel answerTo(const Fetch& fetch) const;
  void deliver(const SharedFetch& fetch, const FetchModel& result);

  void startUpdater();
  void stopUpdater();
  void armDateTimer();
  void addTimer(TimerKind kind, double interval, SharedFetch fetch = nullptr);

  std::uint64_t rowLimit() const;
  double compactHeight() const;
  void updateGeometry();
  void rebuild();
  std::size_t expandedRowCount() const;
  void tellLargestMode();
  void contentChanged();

  const simulation::SimulatedPlatform* platform_ = nullptr;
  double time_ = 0;
  std::uint64_t controllerCount_ = 0, timerCount_ = 0;
  std::optional<Controller> controller_;
  SharedFetch fetch_;
  std::vector<SharedFetch> fetches_;
  std::deque<Job> jobs_;
  std::vector<Timer> timers_;
  std::optional<SavedState> saved_;
  ui::TextSizeCategory textSize_ = ui::kDefaultTextSizeCategory;
  std::vector<std::string> calls_;
};

/// The recorded event in the form of the predicted calls; absent for an event that the model does not
/// predict.
std::optional<std::string> callOf(const simulation::TranscriptEvent& event);

}  // namespace linewatch::worlds
