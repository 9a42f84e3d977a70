#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shared/value.h"

namespace linewatch {

/// A store of named values that outlives the process. Store objects of one suite see the same values. Main
/// thread.
class PreferencesStore {
 public:
  virtual ~PreferencesStore() = default;

  /// The value of the key, or none.
  virtual std::optional<Value> objectForKey(std::string_view key) const = 0;
  /// False for a value that could not be written, which is logged; the old one stays.
  virtual bool setObject(Value value, std::string_view key) = 0;
  virtual void removeObject(std::string_view key) = 0;

  /// The key's value as a boolean: a boolean itself, a number other than 0, or a text that starts as a yes
  /// does (Y, y, T, t or 1 to 9). Absent and everything else is false.
  bool boolForKey(std::string_view key) const;
};

}  // namespace linewatch
