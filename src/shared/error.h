#pragma once

#include <cstdint>
#include <string>

#include "shared/value.h"

namespace linewatch {

/// The key of an error's info under which a sentence for developers stands.
inline constexpr const char* kDebugDescriptionKey = "debugDescription";
/// The key of an error's info under which a sentence for the user stands: what failed, where and why.
inline constexpr const char* kLocalizedDescriptionKey = "localizedDescription";

/// A failure as a value: who reports it, which one of theirs, and what is known about it.
struct Error {
  std::string domain;
  std::int64_t code = 0;
  Dictionary info;

  bool operator==(const Error&) const = default;
  /// "domain code (the info's sentence, if any)".
  std::string description() const;
};

}  // namespace linewatch
