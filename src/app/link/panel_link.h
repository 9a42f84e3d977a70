#pragma once

#include <memory>
#include <optional>
#include <string>

#include "shared/environment.h"

namespace linewatch::app {

/// The panel that runs with the same saved state, over the session bus. It is never started. Each function
/// waits at most two seconds; after a bus that does not answer, all of them fail at once. One thread.
class PanelLink {
 public:
  virtual ~PanelLink() = default;

  /// The panel's status, the JSON text of `statusForm`. Absent when no panel answers.
  virtual std::optional<std::string> document() = 0;
  /// Lets the panel fetch the news now. False when there is none.
  virtual bool refresh() = 0;
  /// Announces changes from now on. The result is a file descriptor, which can be read when
  /// `takeMessages` has something to take; negative when that is not possible.
  virtual int follow() = 0;
  /// Takes the messages that have come. True if the panel has other news, or has started or ended. Absent
  /// when the bus has ended; this object is then of no use any more.
  virtual std::optional<bool> takeMessages() = 0;
};

/// Null without a session bus in the environment, and when it cannot be used. `busName` is that of the panel.
std::unique_ptr<PanelLink> connectToPanel(const std::string& busName, const Environment& environment);

}  // namespace linewatch::app
