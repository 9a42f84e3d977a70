#pragma once

#include <functional>
#include <map>
#include <stop_token>
#include <string>
#include <utility>

#include "shared/mutex.h"
#include "shared/outcome.h"

namespace linewatch {

/// The keys that the user's commands have printed. Each command runs when its key is first needed, and again
/// after `forget`; a command that failed runs again at the next call. Any thread; a call waits for the
/// command that another call runs.
class CommandKeys {
 public:
  /// Runs a command and gives the first line of its output.
  using Runner = std::function<Outcome<std::string>(const std::string& command, std::stop_token stop)>;

  explicit CommandKeys(Runner run) : run_(std::move(run)) {}

  Outcome<std::string> keyOf(const std::string& command, const std::stop_token& stop)
      LINEWATCH_EXCLUDES(mutex_);
  /// For a key that a server has refused: the user may have changed it.
  void forget(const std::string& command) LINEWATCH_EXCLUDES(mutex_);

 private:
  const Runner run_;
  Mutex mutex_;
  std::map<std::string, std::string> keys_ LINEWATCH_GUARDED_BY(mutex_);
};

}  // namespace linewatch
