#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shared/value.h"

namespace linewatch {

/// Named values that outlive the process. All store objects of a suite see the same values. Main thread.
class PreferencesStore {
 public:
  virtual ~PreferencesStore() = default;

  /// The value of the key; absent when it has none or the store cannot be read.
  virtual std::optional<Value> objectForKey(std::string_view key) const = 0;
  /// Stores the value. When it cannot be written, this returns false, logs why, and the old value stays.
  virtual bool setObject(Value value, std::string_view key) = 0;
  /// Removes the key's value, if there is one. A failure is logged and the value stays.
  virtual void removeObject(std::string_view key) = 0;

  /// The key's value as a boolean. True for true, for a number other than 0, and for a text that starts with
  /// Y, y, T, t or a digit from 1 to 9; false for everything else and without a value.
  bool boolForKey(std::string_view key) const;
};

}  // namespace linewatch
