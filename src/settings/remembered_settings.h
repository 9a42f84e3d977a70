#pragma once

#include <optional>
#include <string>

#include "settings/setting_table.h"

namespace linewatch {

/// Choices that the user made before there was a settings file. They serve until the file has a value, and
/// are forgotten when the setting is written or removed. Main thread.
class RememberedSettings {
 public:
  virtual ~RememberedSettings() = default;

  /// The value's text; absent if nothing is remembered.
  virtual std::optional<std::string> find(const Setting& setting) const = 0;
  virtual void forget(const Setting& setting) = 0;
};

}  // namespace linewatch
