#pragma once

#include <cstdlib>
#include <string_view>

#include "shared/failure.h"

namespace linewatch {

/// Ends a fuzzer with a finding unless the condition holds.
inline void require(bool holds) {
  if (!holds) std::abort();
}

/// A message for the user is one line.
inline void requireOneLine(std::string_view message) {
  require(!message.empty() && message.find('\n') == std::string_view::npos);
}
inline void requireOneLine(const Error& error) { requireOneLine(sentenceOf(error)); }

}  // namespace linewatch
