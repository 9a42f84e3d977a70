#pragma once

#include <span>
#include <string_view>

#include "platform/localization.h"

namespace linewatch::simulation {

/// A key of a string table.
struct StringKey {
  StringTable table;
  std::string_view key;

  bool operator==(const StringKey&) const = default;
};

/// The keys of both string tables, from resources/strings.
std::span<const StringKey> stringKeys();

}  // namespace linewatch::simulation
