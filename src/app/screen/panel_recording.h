#pragma once

#include <memory>
#include <optional>
#include <string>

#include "feeds/background_queue.h"
#include "shared/date.h"
#include "shared/error.h"
#include "simulation/recording/session_recorder.h"

namespace linewatch::app {

/// Records the last hour of the panel and saves it as a scenario. Main thread. Must outlive the panel.
class PanelRecording {
 public:
  /// If `isAnonymous`, the saved scenario has stand-ins for names, texts and identifiers.
  explicit PanelRecording(bool isAnonymous) : isAnonymous_(isAnonymous) {}

  /// The recorder. The panel reports its calls to the widget to it, the recording platform reports its
  /// answers.
  const std::shared_ptr<simulation::SessionRecorder>& recorder() const { return recorder_; }
  /// Writes the scenario. The error says which file cannot be written, or that there is nothing to save.
  std::optional<Error> save(const std::string& file);

  /// Also writes the scenario to `file` while the panel runs, so that a crash leaves it: at the first answer,
  /// then with each answer, but at most once a minute. Writing does not hold up the panel.
  void keepIn(const std::string& file);
  /// Writes the file of `keepIn` for the last time.
  std::optional<Error> finish();

 private:
  void keep();

  std::shared_ptr<simulation::SessionRecorder> recorder_ = simulation::SessionRecorder::make();
  bool isAnonymous_;
  std::string file_;
  std::optional<Date> kept_;
  BackgroundQueue writing_;
};

}  // namespace linewatch::app
