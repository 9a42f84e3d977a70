#include "feeds/command_keys.h"

#include "shared/failure.h"

namespace linewatch {

Outcome<std::string> CommandKeys::keyOf(const std::string& command, const std::stop_token& stop) {
  if (!run_) return failure(FailureCode::unsupported, "", "", "a key command cannot be run here");
  const MutexLock lock(mutex_);
  if (const auto known = keys_.find(command); known != keys_.end()) return known->second;
  auto key = run_(command, stop);
  if (key) keys_.emplace(command, *key);
  return key;
}

void CommandKeys::forget(const std::string& command) {
  const MutexLock lock(mutex_);
  keys_.erase(command);
}

}  // namespace linewatch
