#include "app/screen/panel_recording.h"

#include "shared/failure.h"
#include "shared/file_contents.h"
#include "simulation/scenario/anonymous_scenario.h"

namespace linewatch::app {

std::optional<Error> PanelRecording::save(const std::string& file) {
  const auto scenario = recorder_->scenario();
  if (!scenario) return failure(file, "", "nothing was recorded, or one answer was too large to be kept");
  if (!isAnonymous_) return writeWhole(file, *scenario);
  const auto anonymous = simulation::anonymousScenario(*scenario);
  return anonymous ? writeWhole(file, *anonymous) : failure(file, "", sentenceOf(anonymous.error()));
}

}  // namespace linewatch::app
