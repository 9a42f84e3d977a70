#include "app/screen/scenario_picture.h"

#include <QGuiApplication>
#include <optional>
#include <utility>

#include "app/session.h"
#include "desktop/drawing/drawing_screen.h"
#include "desktop/drawing/offscreen_application.h"
#include "desktop/drawing/picture.h"
#include "localization/icu_localization.h"
#include "platform/platform_wrapper.h"
#include "shared/failure.h"
#include "shared/file_contents.h"
#include "simulation/scenario/scenario_run.h"
#include "widget/transit_incidents_view_controller.h"

namespace linewatch::app {

namespace {

/// A simulated platform with real texts and drawing.
class DrawnSimulation final : public PlatformWrapper {
 public:
  DrawnSimulation(Platform& simulated, const UserLocale& locale)
      : PlatformWrapper(simulated), localization_(locale), screen_(desktop::ScreenSettings()) {}

  Localization& localization() override { return localization_; }
  ui::TextEngine& textEngine() override { return screen_.textEngine(); }
  ui::ImageSource& imageSource() override { return screen_.imageSource(); }
  std::shared_ptr<IconManager> makeIconManager() override { return screen_.makeIconManager(); }
  std::shared_ptr<ShieldManager> makeShieldManager() override { return screen_.makeShieldManager(); }

 private:
  IcuLocalization localization_;
  desktop::DrawingScreen screen_;
};

std::optional<Error> drawWidget(RVTransitIncidentsViewController& controller, double scale,
                                const std::string& file) {
  const auto& dataSource = *controller.dataSource();
  const auto& host = controller.extensionContext();
  const Size maximum =
      host ? host->maximumSizeForDisplayMode(host->activeDisplayMode()) : controller.view().bounds().size();
  const Size size = dataSource.preferredContentSizeForExpanded(dataSource.isExpanded(), maximum);
  return desktop::savePicture(controller.view(), {.size = {maximum.width, size.height}, .scale = scale},
                              file);
}

}  // namespace

Report drawScenario(const CommonOptions& options, const SimulateCommand& command) {
  const auto text = contentsOf(command.scenario);
  if (!text) return refused(text.error());
  const auto application = desktop::makeOffscreenApplication();
  std::optional<Error> error = failure(command.scenario, "", "there is no widget to draw at that moment");
  const auto run = simulation::runScenarioUntil(
      *text, endOf(command),
      {.wrap = [locale = localeOf(options)](Platform& simulated) -> std::shared_ptr<Platform> {
         return std::make_shared<DrawnSimulation>(simulated, locale);
       },
       .didEnd = [&](RVTransitIncidentsViewController& controller,
                     double scale) { error = drawWidget(controller, scale, command.output); }});
  if (!run) return refused(failure(command.scenario, "", sentenceOf(run.error())));
  return error ? refused(*error) : Report();
}

}  // namespace linewatch::app
