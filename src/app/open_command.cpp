#include "app/commands.h"
#include "app/opened_text.h"

namespace linewatch::app {

Report open(Session& session, const OpenCommand& command) {
  auto text = openedText(command.file, session.platform().keyedArchiver());
  if (!text) return refused(text.error());
  return Report::of(std::move(*text));
}

}  // namespace linewatch::app
