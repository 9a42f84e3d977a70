#include "app/commands.h"
#include "app/opened_text.h"

namespace linewatch::app {

Report open(Session& session, const OpenCommand& command) {
  auto text = openedText(command.file, session.platform().keyedArchiver());
  if (!text) return refused(text.error());
  return {.output = std::move(*text), .complaint = {}};
}

}  // namespace linewatch::app
