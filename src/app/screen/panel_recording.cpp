#include "app/screen/panel_recording.h"

#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "shared/failure.h"
#include "shared/file_contents.h"
#include "simulation/scenario/anonymous_scenario.h"

namespace linewatch::app {

namespace {

constexpr Seconds kKeepInterval{60};

/// `scenario`: the recorder's; absent when there is none. Any thread.
std::optional<Error> write(const std::string& file, const std::optional<std::string>& scenario,
                           bool isAnonymous) {
  if (!scenario) return failure(file, "", "nothing was recorded, or one answer was too large to be kept");
  if (!isAnonymous) return writeWhole(file, *scenario);
  const auto anonymous = simulation::anonymousScenario(*scenario);
  return anonymous ? writeWhole(file, *anonymous) : failure(file, "", sentenceOf(anonymous.error()));
}

}  // namespace

std::optional<Error> PanelRecording::save(const std::string& file) {
  return write(file, recorder_->scenario(), isAnonymous_);
}

void PanelRecording::keepIn(const std::string& file) {
  file_ = file;
  recorder_->setAnswerHandler([this] { keep(); });
}

void PanelRecording::keep() {
  const Date now = platform().mainLoop().now();
  // A clock that was set back must not stop the writing.
  if (kept_ && now >= *kept_ && now - *kept_ < kKeepInterval) return;
  auto scenario = recorder_->scenario();
  if (!scenario) return;
  kept_ = now;
  writing_.post([file = file_, scenario = std::move(scenario), isAnonymous = isAnonymous_] {
    const auto error = write(file, scenario, isAnonymous);
    if (error) return logError("%@", {sentenceOf(*error)});
    logDebug("The recording is in %@", {file});
  });
}

std::optional<Error> PanelRecording::finish() {
  writing_.finish();
  return file_.empty() ? std::nullopt : save(file_);
}

}  // namespace linewatch::app
