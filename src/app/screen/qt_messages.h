#pragma once

namespace linewatch::app {

/// Sends Qt's messages to the log. They are shown only when it is verbose, because most concern developers,
/// such as a missing runtime folder. A message that ends the process is always shown.
void logQtMessages(bool isVerbose);

}  // namespace linewatch::app
