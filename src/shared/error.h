#pragma once

#include <cstdint>
#include <string>

#include "shared/value.h"

namespace linewatch {

/// The key of the sentence for developers in an error's info.
inline constexpr const char* kDebugDescriptionKey = "debugDescription";
/// The key of the sentence for the user in an error's info: what failed, where and why.
inline constexpr const char* kLocalizedDescriptionKey = "localizedDescription";

/// A failure as a value. A code means something within its domain only.
struct Error {
  std::string domain;
  std::int64_t code = 0;
  Dictionary info;

  bool operator==(const Error&) const = default;
  /// "domain code (sentence)", or "domain code" without a sentence in the info.
  std::string description() const;
};

}  // namespace linewatch
