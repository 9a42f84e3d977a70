#pragma once

#include <memory>
#include <optional>
#include <string>

#include "shared/error.h"
#include "simulation/recording/session_recorder.h"

namespace linewatch::app {

/// What has happened in the panel during the last hour, to be saved as a scenario. Main thread.
class PanelRecording {
 public:
  /// If `isAnonymous`, the saved scenario has stand-ins for names, texts and identifiers.
  explicit PanelRecording(bool isAnonymous) : isAnonymous_(isAnonymous) {}

  /// To be told what the panel does with the widget, and what the platform answers.
  const std::shared_ptr<simulation::SessionRecorder>& recorder() const { return recorder_; }
  /// Writes the scenario. The error says which file cannot be written, or that there is nothing to save.
  std::optional<Error> save(const std::string& file);

 private:
  std::shared_ptr<simulation::SessionRecorder> recorder_ = simulation::SessionRecorder::make();
  bool isAnonymous_;
};

}  // namespace linewatch::app
