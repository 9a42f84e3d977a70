#pragma once

#include <functional>

namespace linewatch::desktop {

/// The value of an environment variable; null when it is not set. The program's own is `std::getenv`.
using Environment = std::function<const char*(const char* name)>;

}  // namespace linewatch::desktop
