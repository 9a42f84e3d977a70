#pragma once

#include <cstdlib>
#include <functional>
#include <string>

namespace linewatch {

/// Gives the value of an environment variable; null when it is not set.
using Environment = std::function<const char*(const char* name)>;

/// The environment of this process.
inline const char* processEnvironment(const char* name) { return std::getenv(name); }

/// The value of a variable; empty when it is not set.
inline std::string valueOf(const Environment& environment, const char* name) {
  const char* const value = environment(name);
  return value ? value : "";
}

}  // namespace linewatch
