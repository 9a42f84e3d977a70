#pragma once

namespace linewatch::app {

/// Writes Qt's messages to the log. Most of them are for developers, e.g. a missing runtime folder, and are
/// shown only if `isVerbose`. A message that ends the process is always shown.
void logQtMessages(bool isVerbose);

}  // namespace linewatch::app
