#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "shared/mutex.h"
#include "shared/value.h"

namespace linewatch {

/// The preferences that were set or removed and are not in the database yet. Any thread.
class PendingPreferences {
 public:
  /// Distinguishes a change from a later one of the same key.
  using Ticket = std::uint64_t;

  /// No value: the preference was removed.
  Ticket add(std::string_view suite, std::string_view key, std::optional<Value> value)
      LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    changes_.insert_or_assign(nameOf(suite, key), Change{std::move(value), ++lastTicket_});
    return lastTicket_;
  }
  /// Forgets the change, which is in the database or has failed. A later change of the same key remains.
  void settle(std::string_view suite, std::string_view key, Ticket ticket) LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    const auto change = changes_.find(nameOf(suite, key));
    if (change != changes_.end() && change->second.ticket == ticket) changes_.erase(change);
  }
  /// Absent when no change is pending. The inner value is absent when the change removes the preference.
  std::optional<std::optional<Value>> find(std::string_view suite, std::string_view key) const
      LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    const auto change = changes_.find(nameOf(suite, key));
    // In place, because std::optional(optional) copies the optional instead of wrapping it.
    if (change == changes_.end()) return std::nullopt;
    return std::optional<std::optional<Value>>(std::in_place, change->second.value);
  }

 private:
  using Name = std::pair<std::string, std::string>;
  struct Change {
    std::optional<Value> value;
    Ticket ticket;
  };

  static Name nameOf(std::string_view suite, std::string_view key) {
    return {std::string(suite), std::string(key)};
  }

  mutable Mutex mutex_;
  std::map<Name, Change> changes_ LINEWATCH_GUARDED_BY(mutex_);
  Ticket lastTicket_ LINEWATCH_GUARDED_BY(mutex_) = 0;
};

}  // namespace linewatch
