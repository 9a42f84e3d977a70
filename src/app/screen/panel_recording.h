#pragma once

#include <memory>
#include <optional>
#include <string>

#include "shared/error.h"
#include "simulation/recording/session_recorder.h"

namespace linewatch::app {

/// Records the last hour of the panel and saves it as a scenario. Main thread.
class PanelRecording {
 public:
  /// If `isAnonymous`, the saved scenario has stand-ins for names, texts and identifiers.
  explicit PanelRecording(bool isAnonymous) : isAnonymous_(isAnonymous) {}

  /// The recorder. The panel reports its calls to the widget to it, the recording platform reports its
  /// answers.
  const std::shared_ptr<simulation::SessionRecorder>& recorder() const { return recorder_; }
  /// Writes the scenario. The error says which file cannot be written, or that there is nothing to save.
  std::optional<Error> save(const std::string& file);

 private:
  std::shared_ptr<simulation::SessionRecorder> recorder_ = simulation::SessionRecorder::make();
  bool isAnonymous_;
};

}  // namespace linewatch::app
