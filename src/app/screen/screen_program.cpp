#include "app/screen/screen_program.h"

#include "app/program.h"
#include "app/report.h"
#include "app/screen/panel_command.h"
#include "app/screen/qt_messages.h"
#include "app/screen/render_command.h"
#include "app/screen/scenario_picture.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

struct Dispatch {
  const CommonOptions& options;

  Report operator()(const RenderCommand& command) const { return render(options, command); }
  Report operator()(const PanelCommand& command) const { return panel(options, command); }
  Report operator()(const SimulateCommand& command) const { return drawScenario(options, command); }
  template <class Other>
  Report operator()(const Other&) const {
    return refused(failure("linewatch-screen", "", "it only draws; use linewatch for this command"));
  }
};

}  // namespace

int runOnScreen(int argc, char** argv) {
  return runCommandLine(argc, argv, [](const CommandLine& line) {
    logQtMessages(line.common.verbose);
    return std::visit(Dispatch{line.common}, line.command);
  });
}

}  // namespace linewatch::app
