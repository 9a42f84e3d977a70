#pragma once

#include <cstdlib>
#include <functional>
#include <string>

namespace linewatch {

/// The value of an environment variable; null when it is not set.
using Environment = std::function<const char*(const char* name)>;

/// The program's own.
inline const char* processEnvironment(const char* name) { return std::getenv(name); }

/// Empty also when it is not set.
inline std::string valueOf(const Environment& environment, const char* name) {
  const char* const value = environment(name);
  return value ? value : "";
}

}  // namespace linewatch
