#pragma once

namespace linewatch::app {

/// From now on what Qt has to say goes to the log, where it is seen when that is verbose: a missing folder of
/// the session is nothing that the user of a picture needs to know. What ends the process is always said.
void logQtMessages(bool isVerbose);

}  // namespace linewatch::app
