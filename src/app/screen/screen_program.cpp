#include "app/screen/screen_program.h"

#include <cstdio>

#include "app/commands.h"
#include "app/screen/panel_command.h"
#include "app/screen/qt_messages.h"
#include "app/screen/render_command.h"

namespace linewatch::app {

namespace {

struct Dispatch {
  const CommonOptions& options;

  Report operator()(const RenderCommand& command) const { return render(options, command); }
  Report operator()(const PanelCommand& command) const { return panel(options, command); }
  template <class Other>
  Report operator()(const Other&) const {
    return refused(desktop::failure("linewatch-screen", "", "draws and does nothing else: use linewatch"));
  }
};

}  // namespace

int runOnScreen(int argc, char** argv) {
  const auto parsed = parseCommandLine(argc, argv);
  if (const auto* const answer = std::get_if<Answer>(&parsed)) {
    std::fputs(answer->text.c_str(), answer->status == 0 ? stdout : stderr);
    return answer->status;
  }
  const auto& line = std::get<CommandLine>(parsed);
  logQtMessages(line.common.verbose);
  return finish(std::visit(Dispatch{line.common}, line.command));
}

}  // namespace linewatch::app
